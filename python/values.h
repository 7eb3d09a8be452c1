// Single values between Python and the library: exactly, or not at all.
#pragma once

#include <VelWhiteBoard/foundation/values/path.h>
#include <VelWhiteBoard/foundation/values/value.h>
#include <cstdint>
#include <pybind11/pybind11.h>
#include <string>
#include <string_view>

namespace bindings {

/// To Python. Bytes of a text that are not UTF-8 become half surrogates, as Python's own error
/// handler `surrogateescape` makes them, and the same bytes again on the way back.
pybind11::object toPython(const std::string& text);
pybind11::object toPython(double number);
pybind11::object toPython(std::int64_t number);
pybind11::object toPython(std::uint64_t number);
pybind11::object toPython(bool value);
/// A list of positions, each a list of floats.
pybind11::object toPython(const VelWhiteBoard::Path& path);
/// Null and binary values become `None`.
pybind11::object toPython(const VelWhiteBoard::Value& value);
pybind11::object toPython(const VelWhiteBoard::Array& array);
pybind11::object toPython(const VelWhiteBoard::Dictionary& dictionary);

/// From Python. A value of another type is a TypeError: nothing is converted but an int that a
/// double can hold to a float. An int that the type cannot hold is an OverflowError.
void fromPython(pybind11::handle value, std::string& text);
void fromPython(pybind11::handle value, double& number);
void fromPython(pybind11::handle value, std::int64_t& number);
void fromPython(pybind11::handle value, std::uint64_t& number);
void fromPython(pybind11::handle value, bool& result);
/// A sequence of sequences of numbers.
void fromPython(pybind11::handle value, VelWhiteBoard::Path& path);
/// None, bool, int, float, str, list, tuple, dict with keys of type str. What is nested deeper than
/// `kMaximumValueDepth`, or in itself, is a ValueError.
void fromPython(pybind11::handle value, VelWhiteBoard::Array& array);
void fromPython(pybind11::handle value, VelWhiteBoard::Dictionary& dictionary);

/// Throws the TypeError for a value that is none of what is needed.
[[noreturn]] void refuse(std::string_view needed, pybind11::handle value);

}  // namespace bindings
