/// @file
/// Dynamic values: everything that JSON can express, in a type that C++ clients know.
#pragma once

#include <cstddef>
#include <cstdint>

#include <nlohmann/json.hpp>

#include "VelWhiteBoard/foundation/export.h"

namespace VelWhiteBoard {

/// @addtogroup values
/// @{

/// Any JSON value. Signed integers, unsigned integers and doubles are kept apart and exact.
using Value = nlohmann::json;
/// A JSON array.
using Array = Value::array_t;
/// A JSON object: keys in byte order, the form in which records are exchanged.
using Dictionary = Value::object_t;

/// The layout of a `Value` on which library and client must agree.
namespace value_layout {

/// What a value consists of: its kind and its content. Only for the check below.
struct KindAndContent {
  std::uint8_t kind;  ///< Which of JSON's types.
  /// What it takes for the largest content.
  union {
    void* container;       ///< A string, an array or an object, elsewhere.
    std::int64_t integer;  ///< An integer, signed or not, or a boolean.
    double real;           ///< A number that is no integer.
  } content;               ///< The value itself.
};

}  // namespace value_layout

// Records are made in the library and copied in clients, so both must agree on the layout of a
// value. Some options of nlohmann/json add members to it.
static_assert(sizeof(Value) == sizeof(value_layout::KindAndContent),
              "VelWhiteBoard needs nlohmann::json without additional members: compile client and "
              "library without JSON_DIAGNOSTICS and JSON_DIAGNOSTIC_POSITIONS");

/// The maximum nesting of arrays and objects in a value that the library stores.
///
/// Records come from other machines. The limit keeps recursion over a value within any thread's
/// stack, and is far above what a drawing program needs. The scalars inside the innermost container
/// do not count as a level.
inline constexpr std::size_t kMaximumValueDepth = 256;

/// Whether two values are equal. Numbers are compared by value, whatever their type; 0 equals -0,
/// and a NaN equals a NaN.
VELWHITEBOARD_EXPORT bool sameValue(const Value& left, const Value& right);
/// A hash of `value`; equal values have equal hashes.
VELWHITEBOARD_EXPORT std::size_t hashOfValue(const Value& value);
/// A hash of a number as `sameValue` compares it.
VELWHITEBOARD_EXPORT std::size_t hashOfNumber(double number);

/// Empties a value without allocating memory: an array or object loses its elements, any other
/// value stays as it is.
///
/// The destructor of a value that nests arrays or objects allocates memory, and terminates the
/// process when that fails. After this call it needs no memory. What is nested deeper than
/// `kMaximumValueDepth` is left to the destructor.
VELWHITEBOARD_EXPORT void dismantle(Value& value) noexcept;
/// The same for what an array holds.
VELWHITEBOARD_EXPORT void dismantle(Array& array) noexcept;
/// The same for what an object holds.
VELWHITEBOARD_EXPORT void dismantle(Dictionary& dictionary) noexcept;

/// Whether `value` nests arrays and objects deeper than `kMaximumValueDepth`. Does not recurse.
VELWHITEBOARD_EXPORT bool nestsTooDeep(const Value& value);

/// @}

}  // namespace VelWhiteBoard
