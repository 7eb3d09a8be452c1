/// @file
/// Operations in order, on the threads of a pool.
#pragma once

#include <cstddef>
#include <functional>
#include <list>
#include <memory>

#include "VelWhiteBoard/foundation/mutex.h"
#include "VelWhiteBoard/foundation/thread_pool.h"

namespace VelWhiteBoard {

/// What stands behind an operation queue; see there for what its operations promise.
///
/// A strand with work holds tickets of the pool, as many as operations may run at once. A ticket is
/// only an invitation to look: a turn that finds nothing to start gives its ticket back. Always
/// true between two steps: when an operation could start, there is a ticket, or a thread inside the
/// strand that will look again.
///
/// Owned by its queue and by its tickets, so it lives until its last operation has run. Make it
/// with `std::make_shared`.
class Strand : public PooledTask, public std::enable_shared_from_this<Strand> {
 public:
  /// @param pool must outlive the strand.
  explicit Strand(ThreadPool& pool) : pool_(pool) {}

  void add(std::function<void()> operation);
  /// @param limit how many operations may run at the same time, at least 1.
  void setLimit(std::size_t limit);
  void waitUntilIdle();

  bool workOneTurn() override;

  /// For a thread that will never return to the operations it is inside of, because one of them
  /// called `std::exit`: they count as finished, and what waits behind them runs now.
  static void leaveOperationsOfThisThread();

 private:
  using Operations = std::list<std::function<void()>>;
  class Frame;

  /// Whether one more ticket is of use when so many operations more will be pending.
  bool needsTicket(std::size_t added) const VELWHITEBOARD_REQUIRES(mutex_);
  bool startNext(Operations& operation) VELWHITEBOARD_REQUIRES(mutex_);
  void finishOne() VELWHITEBOARD_REQUIRES(mutex_);
  void run(Operations& operation, bool hasTicket) VELWHITEBOARD_EXCLUDES(mutex_);

  ThreadPool& pool_;
  Mutex mutex_;
  Condition changed_;
  // A list: an empty one costs nothing, which ten thousand idle queues need, and a waiting
  // operation moves to the thread that runs it without an allocation that could fail.
  Operations pending_ VELWHITEBOARD_GUARDED_BY(mutex_);
  std::size_t limit_ VELWHITEBOARD_GUARDED_BY(mutex_) = 1;
  std::size_t active_ VELWHITEBOARD_GUARDED_BY(mutex_) = 0;   // operations that run
  std::size_t tickets_ VELWHITEBOARD_GUARDED_BY(mutex_) = 0;  // waiting in the pool or being used
  std::size_t waiters_ VELWHITEBOARD_GUARDED_BY(mutex_) = 0;  // threads in waitUntilIdle
  std::size_t helpers_ VELWHITEBOARD_GUARDED_BY(mutex_) = 0;  // those of them that help
};

}  // namespace VelWhiteBoard
