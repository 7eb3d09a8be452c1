/// @file
/// Puts values that came from outside into properties, as leniently as possible without guessing.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "VelWhiteBoard/foundation/records/record.h"
#include "VelWhiteBoard/foundation/values/path.h"
#include "VelWhiteBoard/foundation/values/scalar.h"
#include "VelWhiteBoard/foundation/values/value.h"

namespace VelWhiteBoard {

/// Compares two names of properties. They are so short that a call to `memcmp` would cost more than
/// this loop.
inline bool isSameName(std::string_view left, std::string_view right) {
  if (left.size() != right.size()) return false;
  for (std::size_t index = 0; index < left.size(); ++index) {
    if (left[index] != right[index]) return false;
  }
  return true;
}

/// Finds properties by name. Keys nearly always come in the order of declaration, so each search
/// starts where the last one ended.
class PropertyFinder {
 public:
  explicit PropertyFinder(const RecordClass& recordClass) : properties_(recordClass.properties) {}

  /// Null when the class has no property of that name.
  const Property* find(std::string_view name) {
    const std::size_t count = properties_.size();
    for (std::size_t step = 0; step < count; ++step) {
      const Property& candidate = properties_[next_];
      next_ = next_ + 1 == count ? 0 : next_ + 1;
      if (isSameName(candidate.name, name)) return &candidate;
    }
    return nullptr;
  }

 private:
  std::span<const Property> properties_;
  std::size_t next_ = 0;
};

/// Puts a scalar into a property. Null, and a scalar that the property cannot take, set it to its
/// default. So of a key that occurs twice only the last value counts, even when the property cannot
/// take it.
void assign(const Property& property, Record& record, const Scalar& scalar);

/// The same for any value, which is emptied. An array that a property of free-form values takes
/// over must not be nested too deep.
void assign(const Property& property, Record& record, Value&& value);

/// Puts a value from outside into a property that is at its default. A free-form value that is
/// nested too deep changes nothing. In a path, positions that are not arrays of numbers are
/// dropped; in a list of records, elements that are not dictionaries. Each element of such a list
/// is checked separately.
void assignFromOutside(const Property& property, Record& record, const Value& value);

/// Converts an array of positions to a path; drops positions that are not arrays of numbers.
Path pathWithArray(const Array& positions);
/// Replaces a null value by a path, as an array of positions.
void putPath(Value& place, const Path& path);

/// Converts a scalar to a value; a string is copied.
Value valueWithScalar(const Scalar& scalar);
/// A scalar that refers to `value`, which must not be an array, an object or binary.
std::optional<Scalar> scalarWithValue(const Value& value);

}  // namespace VelWhiteBoard
