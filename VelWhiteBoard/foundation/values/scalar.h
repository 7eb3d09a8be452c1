/// @file
/// A value other than an array or object, before it is put into a property.
#pragma once

#include <cstdint>
#include <string_view>
#include <variant>

namespace VelWhiteBoard {

/// Null, a boolean, an integer, a real number or a non-owning view of a string.
using Scalar =
    std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double, std::string_view>;

}  // namespace VelWhiteBoard
