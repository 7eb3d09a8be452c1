/// @file
/// The two clocks: what time it is, and how much time has passed.
#pragma once

#include <chrono>

#include "VelWhiteBoard/foundation/export.h"

namespace VelWhiteBoard {

/// The wall clock: seconds since 1970-01-01 00:00 UTC. Jumps when the clock is set.
/// Safe from any thread.
VELWHITEBOARD_EXPORT double currentTime();

/// The same moment in the clock's own resolution, for spans that are compared with exact limits.
/// Safe from any thread.
VELWHITEBOARD_EXPORT std::chrono::system_clock::time_point currentDate();

/// The media clock: seconds that never run backwards and never jump, counted from a moment that is
/// fixed for this process. Only differences mean anything. Safe from any thread.
VELWHITEBOARD_EXPORT double currentMediaTime();

/// Where the two clocks read the time. Only tests and simulations derive from it: they let hours
/// pass without waiting. Both functions may be called from any thread at once.
class VELWHITEBOARD_EXPORT ClockSource {
 public:
  virtual ~ClockSource();

  /// What `currentDate` answers, and `currentTime` in seconds.
  virtual std::chrono::system_clock::time_point wallTime() const = 0;
  /// What `currentMediaTime` answers.
  virtual double mediaTime() const = 0;

 protected:
  ClockSource() = default;
  ClockSource(const ClockSource&) = default;
  ClockSource& operator=(const ClockSource&) = default;
};

/// Puts another source behind both clocks, for the whole process and for a scope; the end of the
/// scope brings back the source from before. Scopes nest and must end in the reverse order.
///
/// Other threads may read the clocks meanwhile, and see either source while it changes. The source
/// is not owned: it must outlive the scope and every reading that another thread began inside it.
class VELWHITEBOARD_EXPORT ScopedClock {
 public:
  explicit ScopedClock(const ClockSource& source);
  ~ScopedClock();
  ScopedClock(const ScopedClock&) = delete;
  ScopedClock& operator=(const ScopedClock&) = delete;

 private:
  const ClockSource* previous_;
};

}  // namespace VelWhiteBoard
