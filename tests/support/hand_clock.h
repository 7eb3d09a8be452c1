#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>

#include "VelWhiteBoard/foundation/values/clock.h"

namespace VelWhiteBoard {

/// Clocks that stand still until they are advanced, both at once. Hours pass without waiting.
class HandClock final : public ClockSource {
 public:
  void advance(std::chrono::milliseconds time) { now_ += time.count(); }
  std::int64_t milliseconds() const { return now_; }
  static std::int64_t milliseconds(std::chrono::system_clock::time_point date) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(date.time_since_epoch()).count();
  }

  std::chrono::system_clock::time_point wallTime() const override {
    return std::chrono::system_clock::time_point(std::chrono::milliseconds(now_));
  }
  double mediaTime() const override { return static_cast<double>(now_) / 1000.0; }

 private:
  std::atomic<std::int64_t> now_{1'700'000'000'000};  // milliseconds since 1970
};

}  // namespace VelWhiteBoard
