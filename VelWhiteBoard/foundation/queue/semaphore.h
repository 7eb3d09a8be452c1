/// @file
/// The semaphore that guards shared state, and how to wait for it safely.
#pragma once

#include <chrono>
#include <memory>
#include <semaphore>
#include <utility>

namespace VelWhiteBoard {

/// @addtogroup queue
/// @{

/// A counting semaphore. The library makes its own with count 1 and uses them as locks that are not
/// re-entrant.
using Semaphore = std::counting_semaphore<>;

/// Decrements the semaphore, waiting without limit until it can. Use it instead of `acquire`.
///
/// The `acquire` of GCC 12's library can miss its wake-up: it reads the value to sleep on before it
/// tests whether it may go on, so when a signal arrives in between it sleeps although the semaphore
/// is free, without end if no other signal follows. A wait with a timeout wakes up and tests again,
/// so the loop turns a missed wake-up from a hang into a delay of a millisecond. Without contention
/// the first `try_acquire` succeeds and no clock is read.
inline void waitOn(Semaphore& semaphore) {
  constexpr std::chrono::milliseconds kLongestSleep{1};
  if (semaphore.try_acquire()) return;
  while (!semaphore.try_acquire_for(kLongestSleep)) {
  }
}

/// Holds a semaphore for a scope: waits for it without limit, signals it at the end, and keeps it
/// alive in between, so its owner may replace it meanwhile.
class SemaphoreHold {
 public:
  /// A null pointer holds nothing.
  explicit SemaphoreHold(std::shared_ptr<Semaphore> semaphore) : semaphore_(std::move(semaphore)) {
    if (semaphore_) waitOn(*semaphore_);
  }
  /// Signals the semaphore.
  ~SemaphoreHold() {
    if (semaphore_) semaphore_->release();
  }
  SemaphoreHold(const SemaphoreHold&) = delete;
  SemaphoreHold& operator=(const SemaphoreHold&) = delete;

 private:
  std::shared_ptr<Semaphore> semaphore_;
};

/// @}

}  // namespace VelWhiteBoard
