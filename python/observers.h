// What a storage tells, told to Python functions.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <memory>
#include <pybind11/pybind11.h>

namespace bindings {

/// The classes of the reports.
void defineReports(pybind11::module_& module);

/// Takes the functions of all observers away, whoever has the observers. Otherwise a function,
/// which refers to the variables of its module, would keep them from being finalised: files that
/// the module has open would not be flushed. To be called with the interpreter's lock, when the
/// gate is closed.
void forgetObservers();

/// An observer that calls a Python function with a report whose entries are copies; none for
/// `None`. An exception of the function goes to `sys.unraisablehook`.
/// @param semphore the storage's.
VelWhiteBoard::ChangeObserver changeObserver(const pybind11::object& function,
                                             std::shared_ptr<VelWhiteBoard::Semaphore> semphore);

/// The same for the storage's files.
VelWhiteBoard::WriteObserver writeObserver(const pybind11::object& function);

}  // namespace bindings
