#include "VelWhiteBoard/foundation/queue/operation_queue.h"

#include <cstddef>
#include <unistd.h>
#include <utility>

#include <simdjson.h>

#include "VelWhiteBoard/foundation/queue/operation.h"
#include "VelWhiteBoard/foundation/queue/queue_state.h"
#include "VelWhiteBoard/foundation/queue/shared_threads.h"

namespace VelWhiteBoard {
namespace {

/// Runs what was added before the process ends.
class DrainAtExit {
 public:
  explicit DrainAtExit(SharedThreads& threads) : threads_(threads) {}
  ~DrainAtExit() {
    // A forked child has a copy of the queues but not the threads. Its parent runs the operations;
    // the child has no thread to wait for.
    if (::getpid() == owner_) threads_.drain();
  }
  DrainAtExit(const DrainAtExit&) = delete;
  DrainAtExit& operator=(const DrainAtExit&) = delete;

 private:
  SharedThreads& threads_;
  const ::pid_t owner_ = ::getpid();
};

SharedThreads& sharedThreads() {
  // Never destroyed: static objects may add operations from their destructors.
  static auto* const threads = new SharedThreads;
  // The JSON parser's library makes static objects when it is first used. Used before the drain is
  // made, they outlive it, so that the last operations can parse. Once only: later calls may come
  // when they are destroyed.
  [[maybe_unused]] static const bool isUsed = simdjson::validate_utf8("", 0);
  static const DrainAtExit drain(*threads);
  return *threads;
}

}  // namespace

OperationQueue::OperationQueue() : state_(std::make_shared<QueueState>(sharedThreads())) {}

OperationQueue::~OperationQueue() = default;

// Each of the following keeps the state alive: the queue may be destroyed before the call returns.

void OperationQueue::addOperationWithBlock(std::function<void()> work) {
  const std::shared_ptr<QueueState> state = state_;
  if (work) state->add(std::make_shared<Operation>(std::move(work)));
}

OperationQueue::OperationPtr OperationQueue::makeOperation(std::function<void()> work) {
  return work ? std::make_shared<Operation>(std::move(work)) : nullptr;
}

void OperationQueue::addOperation(const OperationPtr& operation) noexcept {
  const std::shared_ptr<QueueState> state = state_;
  state->add(operation);
}

bool OperationQueue::removeOperation(const OperationPtr& operation) noexcept {
  const std::shared_ptr<QueueState> state = state_;
  return state->remove(operation);
}

void OperationQueue::setMaxConcurrentOperationCount(int count) {
  const std::shared_ptr<QueueState> state = state_;
  state->setLimit(count < 1 ? 1 : static_cast<std::size_t>(count));
}

void OperationQueue::waitUntilAllOperationsAreFinished() {
  const std::shared_ptr<QueueState> state = state_;
  state->waitUntilIdle();
}

std::uint64_t OperationQueue::progress() const noexcept { return state_->progress(); }

bool OperationQueue::isWaitingForThread() const noexcept { return state_->isWaitingForThread(); }

void OperationQueue::reportProgress() noexcept { QueueState::reportProgress(); }

bool OperationQueue::isThisThreadInside() const noexcept { return state_->isThisThreadInside(); }

}  // namespace VelWhiteBoard
