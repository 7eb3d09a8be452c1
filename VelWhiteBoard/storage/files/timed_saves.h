/// @file
/// When a timed save is due: more than 20 seconds after the last save.
#pragma once

#include <chrono>

namespace VelWhiteBoard {

/// Measures the time since the last save, by the wall clock and, should that be set back, by a
/// clock that is never set.
///
/// Threads: as the storage guards it.
class TimedSaves {
 public:
  using Date = std::chrono::system_clock::time_point;

  /// When the last save was.
  Date lastSaveDate() const { return lastSaveDate_; }
  void setLastSaveDate(Date date);

  /// Whether a timed save is due at `now`, the present date.
  bool isDue(Date now);

 private:
  Date lastSaveDate_;
  /// The last save by the media clock, in seconds.
  double lastSaveTime_ = 0.0;
  /// The date of the last look; an earlier date after it means that the clock has been set back.
  Date lastLook_;
  bool wasSetBack_ = false;
};

}  // namespace VelWhiteBoard
