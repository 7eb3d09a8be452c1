/// @file
/// Work that runs in the background, in order.
#pragma once

#include <functional>
#include <memory>

#include "VelWhiteBoard/foundation/export.h"

namespace VelWhiteBoard {

class Strand;

/// A queue of operations that run in the background in the order in which they were added.
///
/// All queues share a few threads, started when first needed: as many as there are queues with work
/// at one time, at most 8. An operation that hangs, on a dead disk for instance, thus holds up its
/// own queue and one thread, not the others. An idle queue is a few hundred bytes.
///
/// Dropping a queue cancels nothing: what was added runs to its end, and each operation must own
/// what it works on. A queue may be dropped by one of its own operations.
///
/// When the process ends by returning from `main` or by `std::exit`, everything that was added, to
/// whichever queue, still runs before the process is gone, so an operation that never ends keeps
/// the process. Operations added later than that, by destructors of static objects, run on the
/// adding thread before the call returns. Objects of static storage made after the first queue are
/// gone when the last operations run. `std::_Exit`, `std::quick_exit` and `abort` wait for nothing.
/// Forking is not supported: a child must not use queues, and neither runs nor awaits what its
/// parent added.
///
/// Every member function may be called from any thread, from inside an operation too.
class VELWHITEBOARD_EXPORT OperationQueue {
 public:
  /// An empty queue that runs one operation at a time.
  OperationQueue();
  ~OperationQueue();
  OperationQueue(const OperationQueue&) = delete;
  OperationQueue& operator=(const OperationQueue&) = delete;

  /// Adds an operation behind those already there and returns without waiting for it.
  ///
  /// A null function is ignored. An exception that leaves the operation is swallowed, and the queue
  /// goes on with the next. What the operation holds is released as soon as it has run, before it
  /// counts as finished. When the system grants the process no background thread at all, the
  /// operation runs on the adding thread before the call returns; one that an operation adds there
  /// runs behind it.
  void addOperationWithBlock(std::function<void()> operation);

  /// How many operations may run at the same time; initially 1. A count below 1 is taken as 1.
  /// Above 1, operations are started in order but may end in any. Operations that already run are
  /// not affected.
  void setMaxConcurrentOperationCount(int count);

  /// Returns when the queue is empty and nothing of it runs; operations added meanwhile are waited
  /// for, too. Inside an operation of this very queue it returns at once: waiting for itself would
  /// never end.
  void waitUntilAllOperationsAreFinished();

 private:
  std::shared_ptr<Strand> strand_;
};

}  // namespace VelWhiteBoard
