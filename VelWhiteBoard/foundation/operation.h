/// @file
/// What stands behind `OperationQueue::Operation`.
#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <utility>

#include "VelWhiteBoard/foundation/mutex.h"
#include "VelWhiteBoard/foundation/operation_queue.h"
#include "VelWhiteBoard/foundation/shared_threads.h"

namespace VelWhiteBoard {

/// A piece of work, and its place in the lists of a queue. The place is made with the operation and
/// moves from list to list, so that adding, starting and removing it allocate nothing.
class OperationQueue::Operation {
 public:
  using List = std::list<std::shared_ptr<Operation>>;

  explicit Operation(std::function<void()> block) : work(std::move(block)) {}
  Operation(const Operation&) = delete;
  Operation& operator=(const Operation&) = delete;

  /// Before the operation is added it belongs to the caller, from then on to the running thread.
  std::function<void()> work;

  /// One empty element until the operation is added, and none from then on.
  List place VELWHITEBOARD_GUARDED_BY(SharedThreads::mutex) = List(1);
  List::iterator position VELWHITEBOARD_GUARDED_BY(SharedThreads::mutex) = place.begin();
  /// The queue in which it waits or runs, which it keeps alive; null before and after.
  std::shared_ptr<QueueState> queue VELWHITEBOARD_GUARDED_BY(SharedThreads::mutex);
  bool isRunning VELWHITEBOARD_GUARDED_BY(SharedThreads::mutex) = false;
  bool isAwaited VELWHITEBOARD_GUARDED_BY(SharedThreads::mutex) = false;  // by the end
  std::uint64_t number VELWHITEBOARD_GUARDED_BY(SharedThreads::mutex) = 0;

  bool isWaiting() const VELWHITEBOARD_REQUIRES(SharedThreads::mutex) {
    return queue != nullptr && !isRunning;
  }
};

}  // namespace VelWhiteBoard
