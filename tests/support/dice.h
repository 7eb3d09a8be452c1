#pragma once

#include <cstdint>

namespace VelWhiteBoard {

/// A small generator of random numbers: the same seed gives the same numbers on every platform.
class Dice {
 public:
  explicit Dice(std::uint64_t seed) : state_(seed * 2'654'435'761U + 1) {}
  /// 0 to `limit` - 1.
  int below(int limit) {
    state_ = state_ * 6'364'136'223'846'793'005U + 1'442'695'040'888'963'407U;
    return static_cast<int>((state_ >> 33U) % static_cast<std::uint64_t>(limit));
  }
  bool oneIn(int chances) { return below(chances) == 0; }

 private:
  std::uint64_t state_;
};

}  // namespace VelWhiteBoard
