#include "VelWhiteBoard/foundation/values/clock.h"

#include <atomic>

namespace VelWhiteBoard {
namespace {

// Null means the system's clocks, which then work before any static object exists and cost no
// virtual call.
std::atomic<const ClockSource*> replacedClock{nullptr};

double inSeconds(std::chrono::system_clock::time_point date) {
  // Whole seconds and the rest are converted separately. As one count of nanoseconds the time would
  // be rounded once more, which could move it to another hundredth of a second, the unit of
  // identifiers.
  const auto sinceEpoch = date.time_since_epoch();
  const auto whole = std::chrono::duration_cast<std::chrono::seconds>(sinceEpoch);
  const std::chrono::duration<double> rest = sinceEpoch - whole;
  return static_cast<double>(whole.count()) + rest.count();
}

}  // namespace

ClockSource::~ClockSource() = default;

double currentTime() { return inSeconds(currentDate()); }

std::chrono::system_clock::time_point currentDate() {
  const ClockSource* const replaced = replacedClock.load(std::memory_order_acquire);
  return replaced != nullptr ? replaced->wallTime() : std::chrono::system_clock::now();
}

double currentMediaTime() {
  const ClockSource* const replaced = replacedClock.load(std::memory_order_acquire);
  if (replaced != nullptr) return replaced->mediaTime();
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration<double>(now).count();
}

ScopedClock::ScopedClock(const ClockSource& newSource)
    : previous_(replacedClock.exchange(&newSource, std::memory_order_acq_rel)) {}

ScopedClock::~ScopedClock() { replacedClock.store(previous_, std::memory_order_release); }

}  // namespace VelWhiteBoard
