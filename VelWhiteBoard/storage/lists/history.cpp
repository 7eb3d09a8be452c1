#include "VelWhiteBoard/storage/lists/history.h"

#include <array>
#include <iterator>

namespace VelWhiteBoard {

History::Capture History::take(const std::shared_ptr<History>& history) {
  const MutexHold hold(history->mutex_);
  const Epoch epoch = history->newest_ + 1;
  history->captures_.emplace_hint(history->captures_.end(), epoch, kEnd);
  history->newest_ = epoch;
  history->isWatching_.store(true, std::memory_order_relaxed);
  return {history, epoch};
}

void History::aboutToChange(const VectorPtr& vector) {
  if (!isWatching_.load(std::memory_order_acquire)) return;
  const MutexHold hold(mutex_);
  if (captures_.empty()) return;
  auto& [epoch, first] = *captures_.rbegin();
  const Key key(vector.get(), epoch);
  const auto place = kept_.lower_bound(key);
  if (place != kept_.end() && place->first.first == key.first) return;
  kept_.emplace_hint(place, key, Kept{vector, vector->copyWithZone(), first});
  first = key;
}

void History::Capture::copyAsCaptured(std::vector<std::shared_ptr<const Record>>& vectors) const {
  const MutexHold hold(history_->mutex_);
  for (auto& vector : vectors) {
    // Of the copies that were made since, the oldest is the vector as it was then.
    const auto kept = history_->kept_.lower_bound({vector.get(), epoch_});
    if (kept != history_->kept_.end() && kept->first.first == vector.get()) {
      vector = kept->second.copy;
    } else {
      vector = static_cast<const VelWbBaseVector&>(*vector).copyWithZone();
    }
  }
}

/// Passes one vector that was kept for the finished capture on to the capture before it, if that
/// one needs it. Answers false when none is left.
bool History::finishOne(Epoch epoch, Key& next, KeptVectors::node_type& dropped) noexcept {
  if (next == kEnd) return false;
  const auto kept = kept_.find(next);
  const Key key = next;
  next = kept->second.next;
  const auto above = captures_.lower_bound(epoch);
  if (above == captures_.begin()) {
    dropped = kept_.extract(kept);
    return true;
  }
  auto& [earlier, firstOfEarlier] = *std::prev(above);
  const auto older = kept == kept_.begin() ? kept_.end() : std::prev(kept);
  const bool hasOlder =
      older != kept_.end() && older->first.first == key.first && older->first.second >= earlier;
  auto node = kept_.extract(kept);
  if (hasOlder) {
    dropped = std::move(node);
    return true;
  }
  node.key().second = earlier;
  node.mapped().next = std::exchange(firstOfEarlier, node.key());
  kept_.insert(std::move(node));
  return true;
}

void History::finish(Epoch epoch) noexcept {
  // The pen may be waiting for the lock: a few vectors at a time.
  constexpr std::size_t kAtATime = 16;
  Key next = kEnd;
  {
    const MutexHold hold(mutex_);
    const auto capture = captures_.find(epoch);
    next = capture->second;
    captures_.erase(capture);
    if (captures_.empty()) isWatching_.store(false, std::memory_order_release);
  }
  while (next != kEnd) {
    std::array<KeptVectors::node_type, kAtATime> dropped;  // freed without the lock
    const MutexHold hold(mutex_);
    for (auto& each : dropped) {
      if (!finishOne(epoch, next, each)) break;
    }
  }
}

}  // namespace VelWhiteBoard
