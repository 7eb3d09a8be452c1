/// @file
/// Work that runs in the background, in order.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "VelWhiteBoard/foundation/export.h"

namespace VelWhiteBoard {

/// @addtogroup queue
/// @{

class QueueState;

/// A queue of operations that run in the background in the order in which they were added.
///
/// All queues share a few threads, started when first needed: one for each queue that has work, at
/// most 8. An operation that hangs, on a dead disk for instance, thus holds up its own queue and
/// one thread, not the others. An idle queue takes a few hundred bytes.
///
/// Destroying a queue cancels nothing: what was added still runs, and each operation must own what
/// it works on. A queue may be destroyed by one of its own operations.
///
/// When the process ends by returning from `main` or by `std::exit`, the end begins with the
/// destructors of static objects. What was added before then, to any queue, runs before the process
/// is gone, so an operation that never ends keeps the process alive. Work of other threads does
/// not. From then on:
/// - What these operations add runs too, behind them, up to as many as there were and a thousand
///   more; so an operation that adds itself repeatedly does not keep the process alive.
/// - What any other thread adds runs on that thread before the call returns, unless its queue has
///   work. Then it runs behind that work, on any thread, if the process still exists.
/// - `removeOperation` does not take back what was added before.
/// - `waitUntilAllOperationsAreFinished` does not wait for what is added after the call.
///
/// Operations that destructors of static objects add later run on the adding thread before the call
/// returns. Objects of static storage made after the first queue are gone when the last operations
/// run. `std::_Exit`, `std::quick_exit` and `abort` wait for nothing. Forking is not supported: a
/// child process must not use queues; it neither runs nor awaits what its parent added.
///
/// Every member function may be called from any thread, from inside an operation too.
class VELWHITEBOARD_EXPORT OperationQueue {
 public:
  /// An operation that is made before it is added, so that adding it needs no memory.
  class Operation;
  using OperationPtr = std::shared_ptr<Operation>;  ///< Shared by the queue and who made it.

  /// An empty queue that runs one operation at a time.
  OperationQueue();
  ~OperationQueue();  ///< Waits for nothing; operations that wait still run.
  OperationQueue(const OperationQueue&) = delete;
  OperationQueue& operator=(const OperationQueue&) = delete;

  /// Adds an operation behind those already there and returns without waiting for it. The same as
  /// `addOperation(makeOperation(work))`.
  void addOperationWithBlock(std::function<void()> work);

  /// Makes an operation that belongs to no queue yet. Null when the function is null. Throws
  /// `std::bad_alloc`, as copying the function may, and nothing else.
  static OperationPtr makeOperation(std::function<void()> work);

  /// Adds an operation behind those already there and returns without waiting for it. It takes no
  /// memory and cannot fail. Each operation is added once; null, and an operation that was added
  /// before, are ignored.
  ///
  /// An exception that leaves the operation is swallowed, and the queue goes on with the next. What
  /// the operation holds is released as soon as it has run, before it counts as finished. When the
  /// system grants no background thread at all, the operation runs on the adding thread before the
  /// call returns; an operation that it adds runs after it. So never add an operation while holding
  /// a lock that it takes.
  void addOperation(const OperationPtr& operation) noexcept;

  /// Takes an operation back. True: it had not begun, and will not run; what it holds is released
  /// with the last reference to it. False: it has begun or has run, is not of this queue, or stays
  /// because the process ends. Takes the same time however many operations wait.
  bool removeOperation(const OperationPtr& operation) noexcept;

  /// How many operations may run at the same time; initially 1. A count below 1 is taken as 1.
  /// Above 1, operations are started in order but may end in any. Operations that already run are
  /// not affected.
  void setMaxConcurrentOperationCount(int count);

  /// Returns when the queue is empty and none of its operations runs; operations added meanwhile
  /// are awaited, too. Inside an operation of this queue it returns at once, since waiting would
  /// never end.
  void waitUntilAllOperationsAreFinished();

  /// A number that changes whenever an operation of this queue ends, and whenever a running one
  /// reports progress. A caller that sees it unchanged for a while knows that the queue is stuck.
  std::uint64_t progress() const noexcept;

  /// Whether an operation of this queue could begin but no thread is free to run it, because the
  /// operations of other queues take their time. False while the process ends.
  bool isWaitingForThread() const noexcept;

  /// Called by an operation, on the thread that runs it, to report that the work goes on, for
  /// instance because a block was written. Very cheap. Has no effect outside operations.
  static void reportProgress() noexcept;

  /// Whether the calling thread is inside an operation of this queue.
  bool isThisThreadInside() const noexcept;

 private:
  std::shared_ptr<QueueState> state_;
};

/// @}

}  // namespace VelWhiteBoard
