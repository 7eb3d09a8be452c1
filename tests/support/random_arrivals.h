/// @file
/// Vectors as they come from the participants of a lesson, at random.
#pragma once

#include <cstdint>
#include <random>
#include <string>

#include "VelWhiteBoard/foundation/values/value.h"

namespace VelWhiteBoard {

/// Chances that follow from a seed, the same on every platform.
class Chances {
 public:
  explicit Chances(std::uint64_t seed) : engine_(seed) {}
  int below(int limit) { return static_cast<int>(engine_() % static_cast<std::uint64_t>(limit)); }
  bool oneIn(int chances) { return below(chances) == 0; }
  template <class Choices>
  const auto& of(const Choices& choices) {
    return choices[static_cast<std::size_t>(below(static_cast<int>(choices.size())))];
  }

 private:
  std::mt19937_64 engine_;
};

/// The dictionary form of a vector of any type, with few identifiers, so that vectors meet.
Dictionary randomArrival(Chances& chances);

}  // namespace VelWhiteBoard
