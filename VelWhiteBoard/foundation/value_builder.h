/// @file
/// A free-form value that arrives piece by piece.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "VelWhiteBoard/foundation/scalar.h"
#include "VelWhiteBoard/foundation/value.h"

namespace VelWhiteBoard {

/// Builds an array of free-form values. Nesting costs no stack; what is nested deeper than
/// `kMaximumValueDepth` makes the whole value unusable.
class ValueBuilder {
 public:
  /// Starts a new array; what was built before is gone.
  void begin();
  /// The key of the next element of the dictionary that is open.
  void setKey(std::string_view key) { key_ = key; }
  /// Adds a scalar; none stands for what JSON has no name for, and is left out.
  void add(const std::optional<Scalar>& scalar);
  void beginContainer(bool isDictionary);
  void endContainer();
  /// The whole array; none when it was nested too deep.
  std::optional<Value> take();

 private:
  Value& place(Value value);

  Value top_;
  /// The open containers, outermost first. An element's address holds as long as it is open, since
  /// its parent does not grow meanwhile.
  std::vector<Value*> open_;
  /// How many containers are open beyond the bound.
  std::size_t beyond_ = 0;
  bool tooDeep_ = false;
  std::string key_;
};

}  // namespace VelWhiteBoard
