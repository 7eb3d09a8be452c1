/// @file
/// The writes that wait in a storage's queue.
#pragma once

#include <list>
#include <memory>
#include <string>
#include <unordered_map>

#include "VelWhiteBoard/foundation/queue/operation_queue.h"
#include "VelWhiteBoard/storage/files/queued_write.h"

namespace VelWhiteBoard {

/// Queues writes, and drops old ones when a disk hangs.
///
/// - Up to sixteen writes of the same files wait, and the queue runs each of them in its turn.
/// - Beyond that the oldest that waits is dropped. No write ever takes the turn of another.
/// - Queueing is the last step: it either happens or, by an exception, changes nothing.
///
/// Threads: as the storage guards it.
class WriteBacklog {
 public:
  /// A write that is ready to be queued; dropped unless it is. To be destroyed without a lock.
  class Prepared;

  /// Makes a write ready. `files` names the files that it writes, together.
  Prepared prepare(const std::string& files, std::unique_ptr<QueuedWrite> write,
                   std::shared_ptr<OperationQueue> queue);
  void queue(Prepared& prepared) noexcept;

 private:
  struct Waiting {
    std::weak_ptr<QueuedWrite> write;
    OperationQueue::OperationPtr operation;
    std::shared_ptr<OperationQueue> queue;
  };
  using WaitingWrites = std::list<Waiting>;

  std::unordered_map<std::string, WaitingWrites> waiting_;
};

class WriteBacklog::Prepared {
 public:
  Prepared() = default;

 private:
  friend class WriteBacklog;
  /// The write, and then what queueing it has made superfluous.
  WaitingWrites write_;
  WaitingWrites* place_ = nullptr;
};

}  // namespace VelWhiteBoard
