// The record classes of the library as Python classes.
#pragma once

#include <pybind11/pybind11.h>

namespace bindings {

/// `Record`, and every record class under the library's name for it.
void defineRecords(pybind11::module_& module);

}  // namespace bindings
