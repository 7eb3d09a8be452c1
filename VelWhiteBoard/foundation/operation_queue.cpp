#include "VelWhiteBoard/foundation/operation_queue.h"

#include <cstddef>
#include <unistd.h>
#include <utility>

#include "VelWhiteBoard/foundation/strand.h"
#include "VelWhiteBoard/foundation/thread_pool.h"

namespace VelWhiteBoard {
namespace {

/// Lets nothing that was added get lost when the process ends.
class DrainAtExit {
 public:
  explicit DrainAtExit(ThreadPool& pool) : pool_(pool) {}
  ~DrainAtExit() {
    // A forked child has a copy of the queues but not the threads. Its parent runs the operations;
    // here there is nobody to wait for.
    if (::getpid() != owner_) return;
    Strand::leaveOperationsOfThisThread();
    pool_.drain();
  }
  DrainAtExit(const DrainAtExit&) = delete;
  DrainAtExit& operator=(const DrainAtExit&) = delete;

 private:
  ThreadPool& pool_;
  const ::pid_t owner_ = ::getpid();
};

ThreadPool& sharedPool() {
  // The pool itself is never destroyed: static objects may add operations from their destructors.
  static auto* const pool = new ThreadPool;
  static const DrainAtExit drain(*pool);
  return *pool;
}

}  // namespace

OperationQueue::OperationQueue() : strand_(std::make_shared<Strand>(sharedPool())) {}

OperationQueue::~OperationQueue() = default;

// Each of the three keeps the strand alive by itself: the queue may be gone before the call
// returns.

void OperationQueue::addOperationWithBlock(std::function<void()> operation) {
  const std::shared_ptr<Strand> strand = strand_;
  strand->add(std::move(operation));
}

void OperationQueue::setMaxConcurrentOperationCount(int count) {
  const std::shared_ptr<Strand> strand = strand_;
  strand->setLimit(count < 1 ? 1 : static_cast<std::size_t>(count));
}

void OperationQueue::waitUntilAllOperationsAreFinished() {
  const std::shared_ptr<Strand> strand = strand_;
  strand->waitUntilIdle();
}

}  // namespace VelWhiteBoard
