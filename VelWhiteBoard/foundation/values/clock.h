/// @file
/// The two clocks: the time of day, and elapsed time.
#pragma once

#include <chrono>

#include "VelWhiteBoard/foundation/export.h"

namespace VelWhiteBoard {

/// @addtogroup clocks
/// @{

/// The wall clock: seconds since 1970-01-01 00:00 UTC. Jumps when the clock is set.
/// Safe from any thread.
VELWHITEBOARD_EXPORT double currentTime();

/// The wall clock in its own resolution, for comparing spans with exact limits. Safe from any
/// thread.
VELWHITEBOARD_EXPORT std::chrono::system_clock::time_point currentDate();

/// The media clock: seconds since a moment that is fixed for this process. It never runs backwards
/// and never jumps; only differences are meaningful. Safe from any thread.
VELWHITEBOARD_EXPORT double currentMediaTime();

/// The source of both clocks. Only tests and simulations derive from it, to let hours pass without
/// waiting. Both functions may be called from any thread at once.
class VELWHITEBOARD_EXPORT ClockSource {
 public:
  virtual ~ClockSource();  ///< Not while a `ScopedClock` refers to the source.

  /// The value of `currentDate`, and of `currentTime` in seconds.
  virtual std::chrono::system_clock::time_point wallTime() const = 0;
  /// The value of `currentMediaTime`.
  virtual double mediaTime() const = 0;

 protected:
  ClockSource() = default;                               ///< Holds nothing of its own.
  ClockSource(const ClockSource&) = default;             ///< For derived classes that are copied.
  ClockSource& operator=(const ClockSource&) = default;  ///< For derived classes that are copied.
};

/// Replaces the source of both clocks in the whole process for a scope; the end of the scope
/// restores the previous source. Scopes nest and must end in reverse order.
///
/// Other threads may read the clocks meanwhile; during the change they see either source. The
/// source is not owned: it must outlive the scope and every reading that another thread began
/// inside it.
class VELWHITEBOARD_EXPORT ScopedClock {
 public:
  /// From here on both clocks read `source`.
  explicit ScopedClock(const ClockSource& source);
  ~ScopedClock();  ///< Restores the source that was there when the scope began.
  ScopedClock(const ScopedClock&) = delete;
  ScopedClock& operator=(const ScopedClock&) = delete;

 private:
  const ClockSource* previous_;
};

/// @}

}  // namespace VelWhiteBoard
