// A queue that a disk holds up: what is added to it waits.
#pragma once

#include <latch>
#include <memory>

#include "VelWhiteBoard/VelWhiteBoard.h"

namespace benchmarks {

/// Holds a queue up until this object ends, and then waits for the queue.
class HeldQueue {
 public:
  explicit HeldQueue(std::shared_ptr<VelWhiteBoard::OperationQueue> queue)
      : queue_(std::move(queue)) {
    queue_->addOperationWithBlock([this] {
      begun_.count_down();
      released_.wait();
    });
    begun_.wait();
  }
  ~HeldQueue() {
    released_.count_down();
    queue_->waitUntilAllOperationsAreFinished();
  }
  HeldQueue(const HeldQueue&) = delete;
  HeldQueue& operator=(const HeldQueue&) = delete;

 private:
  std::shared_ptr<VelWhiteBoard::OperationQueue> queue_;
  std::latch begun_{1};
  std::latch released_{1};
};

}  // namespace benchmarks
