/// @file
/// Free-form values that are copied and destroyed safely while memory runs out.
///
/// The destructor of a value that nests arrays or objects asks for memory, and ends the process
/// when there is none. So values are built inside an object that is dismantled as a whole, and no
/// part is destroyed before.
#pragma once

#include <optional>
#include <utility>

#include "VelWhiteBoard/foundation/values/value.h"

namespace VelWhiteBoard {

/// Dismantles a value when the scope ends, by return or exception.
class DismantledAtEnd {
 public:
  explicit DismantledAtEnd(Value& value) noexcept : value_(value) {}
  ~DismantledAtEnd() { dismantle(value_); }
  DismantledAtEnd(const DismantledAtEnd&) = delete;
  DismantledAtEnd& operator=(const DismantledAtEnd&) = delete;

 private:
  Value& value_;
};

/// Copies the elements of `source` to the end of `copy`.
inline void copyElements(const Array& source, Array& copy);

/// Replaces a null value by a copy of `source`.
inline void copyInto(Value& place, const Value& source) {
  if (const auto* const array = source.get_ptr<const Array*>()) {
    place = Array();
    copyElements(*array, place.get_ref<Array&>());
  } else if (const auto* const members = source.get_ptr<const Dictionary*>()) {
    place = Dictionary();
    auto& copy = place.get_ref<Dictionary&>();
    for (const auto& [key, member] : *members) {
      copyInto(copy.try_emplace(copy.end(), key)->second, member);
    }
  } else {
    place = source;
  }
}

inline void copyElements(const Array& source, Array& copy) {
  copy.reserve(source.size());
  for (const Value& element : source) copyInto(copy.emplace_back(), element);
}

/// Holds an optional array that is on its way into a record. Neither the destructor nor a copy that
/// fails half-way needs memory.
class ArrayOwner {
 public:
  ArrayOwner() noexcept = default;
  /// Holds a copy.
  explicit ArrayOwner(const Array& source) : ArrayOwner() {
    copyElements(source, array_.emplace());  // when it throws, the destructor runs all the same
  }
  ArrayOwner(ArrayOwner&& other) noexcept : array_(std::exchange(other.array_, std::nullopt)) {}
  ArrayOwner& operator=(ArrayOwner&& other) noexcept {
    other.swap(array_);
    return *this;
  }
  ~ArrayOwner() {
    if (array_) dismantle(*array_);
  }

  bool hasArray() const noexcept { return array_.has_value(); }
  /// Exchanges the arrays.
  void swap(std::optional<Array>& other) noexcept { array_.swap(other); }

 private:
  std::optional<Array> array_;
};

}  // namespace VelWhiteBoard
