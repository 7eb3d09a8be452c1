// A clock that stands until a benchmark steps it: saves fall due without waiting for them.
#pragma once

#include <atomic>
#include <chrono>

#include "VelWhiteBoard/VelWhiteBoard.h"
#include "VelWhiteBoard/foundation/values/clock.h"

namespace benchmarks {

class SteppedClock : public VelWhiteBoard::ClockSource {
 public:
  /// Makes the next timed save due, which comes more than 20 seconds after the last.
  void stepBeyondSaveInterval() { seconds_ += 21; }

  std::chrono::system_clock::time_point wallTime() const override {
    return std::chrono::system_clock::time_point(std::chrono::seconds(seconds_));
  }
  double mediaTime() const override { return static_cast<double>(seconds_); }

 private:
  std::atomic<std::int64_t> seconds_{1'700'000'000};
};

}  // namespace benchmarks
