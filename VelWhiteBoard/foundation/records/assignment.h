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

/// Compares two names of properties. They are a few bytes long, so that a call to compare memory
/// would cost more than the comparison.
inline bool isSameName(std::string_view left, std::string_view right) {
  if (left.size() != right.size()) return false;
  for (std::size_t index = 0; index < left.size(); ++index) {
    if (left[index] != right[index]) return false;
  }
  return true;
}

/// Finds the property of a name. Records list their keys in the order of the declaration nearly
/// always, so the search starts where the last one ended.
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

/// Puts a scalar into a property; one that the property cannot take puts it back to its default, as
/// does null. Of a key that occurs twice only the last value counts, useful or not.
void assign(const Property& property, Record& record, const Scalar& scalar);

/// Puts any value into a property, likewise, and empties it. An array that a property of free-form
/// values takes over must not be nested too deep.
void assign(const Property& property, Record& record, Value&& value);

/// Puts a value from outside into a property that is at its default. Free-form values that are
/// nested too deep leave it there. Of a path, positions that are not arrays of numbers are dropped;
/// of a list of records, elements that are not dictionaries, and each element is judged by itself.
void assignFromOutside(const Property& property, Record& record, const Value& value);

/// The path that an array of positions is; a position that is not an array of numbers is dropped.
Path pathWithArray(const Array& positions);
/// Puts a path, as an array of positions, in the place of a null value.
void putPath(Value& place, const Path& path);

/// The value that says the same as a scalar.
Value valueWithScalar(const Scalar& scalar);
/// A scalar that refers to `value`, which must not be an array, an object or binary.
std::optional<Scalar> scalarWithValue(const Value& value);

}  // namespace VelWhiteBoard
