#pragma once

#include <cstdint>

namespace VelWhiteBoard {

/// A small generator of a thread's own: what it gives follows from the thread's number.
class Dice {
 public:
  explicit Dice(int thread) : state_(static_cast<std::uint64_t>(thread) * 2'654'435'761U + 1) {}
  int below(int limit) {
    state_ = state_ * 6'364'136'223'846'793'005U + 1'442'695'040'888'963'407U;
    return static_cast<int>((state_ >> 33U) % static_cast<std::uint64_t>(limit));
  }

 private:
  std::uint64_t state_;
};

}  // namespace VelWhiteBoard
