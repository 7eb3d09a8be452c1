// What a storage tells, told to Python functions.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <memory>
#include <pybind11/pybind11.h>

namespace bindings {

/// The classes of the reports.
void defineReports(pybind11::module_& module);

/// An observer that calls a Python function with a report whose entries are copies; none for
/// `None`. An exception of the function goes to `sys.unraisablehook`.
/// @param semphore the storage's.
VelWhiteBoard::ChangeObserver changeObserver(const pybind11::object& function,
                                             std::shared_ptr<VelWhiteBoard::Semaphore> semphore);

/// The same for the storage's files.
VelWhiteBoard::WriteObserver writeObserver(const pybind11::object& function);

}  // namespace bindings
