/// @file
/// The operations of one queue.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>

#include "VelWhiteBoard/foundation/queue/mutex.h"
#include "VelWhiteBoard/foundation/queue/operation.h"
#include "VelWhiteBoard/foundation/queue/operation_queue.h"
#include "VelWhiteBoard/foundation/queue/shared_threads.h"

namespace VelWhiteBoard {

/// The implementation of an `OperationQueue`; see there for the contract of its operations.
///
/// Owned by its queue and, while it has operations, by itself, so it lives until the last of them
/// has run. Make it with `std::make_shared`. The caller of a member function keeps it alive.
class QueueState : public std::enable_shared_from_this<QueueState> {
 public:
  using Operation = OperationQueue::Operation;
  using OperationPtr = OperationQueue::OperationPtr;

  /// @param threads must outlive the queue.
  explicit QueueState(SharedThreads& threads);
  QueueState(const QueueState&) = delete;
  QueueState& operator=(const QueueState&) = delete;

  void add(OperationPtr operation) noexcept VELWHITEBOARD_EXCLUDES(SharedThreads::mutex);
  bool remove(const OperationPtr& operation) noexcept VELWHITEBOARD_EXCLUDES(SharedThreads::mutex);
  /// @param limit how many operations may run at the same time, at least 1.
  void setLimit(std::size_t limit) VELWHITEBOARD_EXCLUDES(SharedThreads::mutex);
  void waitUntilIdle() VELWHITEBOARD_EXCLUDES(SharedThreads::mutex);

  std::uint64_t progress() const noexcept { return progress_.load(std::memory_order_relaxed); }
  bool isWaitingForThread() const noexcept VELWHITEBOARD_EXCLUDES(SharedThreads::mutex);
  static void reportProgress() noexcept;
  bool isThisThreadInside() const noexcept;

  /// Whether a waiting operation may start now.
  bool canStart() const VELWHITEBOARD_REQUIRES(SharedThreads::mutex);
  /// Runs the first operation on this thread and releases the lock meanwhile. The caller settles
  /// the queue afterwards.
  void runFirst() VELWHITEBOARD_REQUIRES(SharedThreads::mutex);

  /// For a thread that will never return to the operations it is inside of, because one of them
  /// called `std::exit`: they count as finished, so that what waits behind them can run.
  static void leaveOperationsOfThisThread() VELWHITEBOARD_EXCLUDES(SharedThreads::mutex);

 private:
  friend class SharedThreads;  // keeps its list of queues
  class Frame;

  bool isIdle() const VELWHITEBOARD_REQUIRES(SharedThreads::mutex);
  /// Whether a thread that began to wait when `number` was the last operation may stop waiting.
  bool isWaitOver(std::uint64_t number) const VELWHITEBOARD_REQUIRES(SharedThreads::mutex);
  void wait(bool helps) VELWHITEBOARD_REQUIRES(SharedThreads::mutex);
  /// To be called when the operation has run or was removed; wakes the threads that wait for it.
  void dismiss(Operation& operation) VELWHITEBOARD_REQUIRES(SharedThreads::mutex);
  void finish(Operation& operation) VELWHITEBOARD_REQUIRES(SharedThreads::mutex);

  SharedThreads& threads_;
  Condition changed_;  // the queue became idle, or a waiting thread may be able to help
  std::atomic<std::uint64_t> progress_{0};
  OperationList pending_ VELWHITEBOARD_GUARDED_BY(SharedThreads::mutex);
  OperationList running_ VELWHITEBOARD_GUARDED_BY(SharedThreads::mutex);
  std::shared_ptr<QueueState> self_ VELWHITEBOARD_GUARDED_BY(SharedThreads::mutex);
  std::size_t limit_ VELWHITEBOARD_GUARDED_BY(SharedThreads::mutex) = 1;
  // Threads that sleep in waitUntilIdle, and those of them that run operations.
  std::size_t waiters_ VELWHITEBOARD_GUARDED_BY(SharedThreads::mutex) = 0;
  std::size_t helpers_ VELWHITEBOARD_GUARDED_BY(SharedThreads::mutex) = 0;

  // The queue's node in the lists of queues that have work, made with the queue so that joining a
  // list allocates nothing. `list_` is the list that holds the node; it is `place_` when the queue
  // has no work.
  SharedThreads::Queues place_ VELWHITEBOARD_GUARDED_BY(SharedThreads::mutex);
  SharedThreads::Queues* list_ VELWHITEBOARD_GUARDED_BY(SharedThreads::mutex) = &place_;
  const SharedThreads::Queues::iterator position_;
};

}  // namespace VelWhiteBoard
