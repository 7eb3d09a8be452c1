#include "VelWhiteBoard/storage/files/timed_saves.h"

#include "VelWhiteBoard/foundation/values/clock.h"

namespace VelWhiteBoard {

namespace {

/// A page is written at most this often, unless a save is forced.
constexpr std::chrono::seconds kSaveInterval{20};

using Seconds = std::chrono::duration<double>;

}  // namespace

void TimedSaves::setLastSaveDate(Date date) {
  const Date now = currentDate();
  lastSaveDate_ = date;
  // A client may set any date, and the difference must not overflow.
  const Seconds sinceSave = Seconds(now.time_since_epoch()) - Seconds(date.time_since_epoch());
  lastSaveTime_ = currentMediaTime() - sinceSave.count();
  lastLook_ = now;
  wasSetBack_ = false;
}

bool TimedSaves::isDue(Date now) {
  // Not `now - lastSaveDate_`, which may overflow.
  if (lastSaveDate_ < now - kSaveInterval) return true;
  // Reading the second clock takes a pen's piece a quarter longer, so it is read only after a jump.
  if (now < lastLook_) wasSetBack_ = true;
  lastLook_ = now;
  return wasSetBack_ && currentMediaTime() - lastSaveTime_ > Seconds(kSaveInterval).count();
}

}  // namespace VelWhiteBoard
