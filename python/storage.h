// A board's storage as a Python class, and functions that read a board.
#pragma once

#include <pybind11/pybind11.h>

namespace bindings {

void defineStorage(pybind11::module_& module);

}  // namespace bindings
