/// @file
/// How vectors were when a page was captured.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "VelWhiteBoard/foundation/queue/mutex.h"
#include "VelWhiteBoard/vectors/base_vector.h"

namespace VelWhiteBoard {

/// Lets a save write its page as it was when the save was queued, although the vectors go on
/// changing. One history serves all saves of a storage.
///
/// - A capture shows every vector as it was when the capture was taken, whatever page it stands on.
/// - A capture copies nothing. The first change of a vector after it keeps one copy.
/// - At most one copy is kept for each vector and unfinished capture; nothing is kept once every
///   capture has finished.
/// - A capture finishes exactly once, when its object ends, however that comes about.
///
/// Threads: any. `take` and `aboutToChange`, with the change that follows it, must not overlap one
/// another; the storage calls them under its guard.
class History : public std::enable_shared_from_this<History> {
 public:
  /// Captures are numbered in the order in which they are taken.
  using Epoch = std::uint64_t;

  class Capture;

  /// Takes a capture.
  static Capture take(const std::shared_ptr<History>& history);

  /// To be called before a vector changes. Keeps the vector as it is, when a capture needs that.
  /// The vector does not change when this throws.
  void aboutToChange(const VectorPtr& vector);

  /// Runs `change`, which must not throw, while no save copies a vector.
  template <class Change>
  void whileNothingIsCopied(const Change& change) noexcept {
    const MutexHold hold(mutex_);
    change();
  }

 private:
  /// A vector as it was; the vector is held so that no other one gets its address.
  struct Kept {
    VectorPtr vector;
    std::shared_ptr<const Record> copy;
    /// The next one that was kept for the same capture.
    std::pair<const Record*, Epoch> next;
  };
  using Key = std::pair<const Record*, Epoch>;
  using KeptVectors = std::map<Key, Kept>;
  static constexpr Key kEnd{nullptr, 0};

  void finish(Epoch epoch) noexcept;
  bool finishOne(Epoch epoch, Key& next, KeptVectors::node_type& dropped) noexcept
      VELWHITEBOARD_REQUIRES(mutex_);

  Mutex mutex_;
  /// Whether there is an unfinished capture, to be looked at without the lock.
  std::atomic<bool> isWatching_ = false;
  Epoch newest_ VELWHITEBOARD_GUARDED_BY(mutex_) = 0;
  /// Unfinished capture -> the first vector that was kept for it: changed after it was taken, and
  /// before the next one was.
  std::map<Epoch, Key> captures_ VELWHITEBOARD_GUARDED_BY(mutex_);
  KeptVectors kept_ VELWHITEBOARD_GUARDED_BY(mutex_);
};

/// One captured instant; ends with its object.
class History::Capture {
 public:
  Capture() = default;
  Capture(Capture&& other) noexcept : history_(std::move(other.history_)), epoch_(other.epoch_) {}
  Capture& operator=(Capture&& other) noexcept {
    std::swap(history_, other.history_);
    std::swap(epoch_, other.epoch_);
    return *this;
  }
  ~Capture() {
    if (history_) history_->finish(epoch_);
  }
  Capture(const Capture&) = delete;
  Capture& operator=(const Capture&) = delete;

  /// Replaces each of the vectors by a copy as it was at the instant of the capture. The storage
  /// may have to wait meanwhile, so there should be just a few.
  void copyAsCaptured(std::vector<std::shared_ptr<const Record>>& vectors) const;

 private:
  friend class History;
  Capture(std::shared_ptr<History> history, Epoch epoch)
      : history_(std::move(history)), epoch_(epoch) {}

  std::shared_ptr<History> history_;
  Epoch epoch_ = 0;
};

}  // namespace VelWhiteBoard
