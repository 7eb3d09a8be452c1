#pragma once

#include <atomic>
#include <chrono>

#include "VelWhiteBoard/foundation/values/clock.h"

namespace VelWhiteBoard {

/// Clocks that stand until a test sets them. They count how often each was asked.
class ManualClock : public ClockSource {
 public:
  void setWallTime(std::chrono::nanoseconds sinceEpoch) { wall_ = sinceEpoch.count(); }
  void setMediaTime(double seconds) { media_ = seconds; }

  int wallReadings() const { return wallReadings_; }
  int mediaReadings() const { return mediaReadings_; }

  std::chrono::system_clock::time_point wallTime() const override {
    ++wallReadings_;
    return std::chrono::system_clock::time_point(
        std::chrono::duration_cast<std::chrono::system_clock::duration>(
            std::chrono::nanoseconds(wall_)));
  }
  double mediaTime() const override {
    ++mediaReadings_;
    return media_;
  }

 private:
  std::atomic<std::chrono::nanoseconds::rep> wall_{0};
  std::atomic<double> media_{0.0};
  mutable std::atomic<int> wallReadings_{0};
  mutable std::atomic<int> mediaReadings_{0};
};

}  // namespace VelWhiteBoard
