/// @file
/// Arrays of free-form values that are copied and destroyed safely when memory runs out.
#pragma once

#include <optional>
#include <utility>

#include "VelWhiteBoard/foundation/value.h"

namespace VelWhiteBoard {

/// Holds an array, or none, on its way into a record. Its destructor asks for no memory, and
/// neither does a copy that fails half way: the destructors of nested values would ask for some,
/// and end the process when there is none.
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
  static void copyElements(const Array& source, Array& copy) {
    copy.reserve(source.size());
    for (const Value& element : source) copyInto(copy.emplace_back(), element);
  }
  /// Copies into a place that is destroyed with the whole, so that nothing is destroyed on the way.
  static void copyInto(Value& place, const Value& source) {
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

  std::optional<Array> array_;
};

}  // namespace VelWhiteBoard
