#include "VelWhiteBoard/foundation/queue_state.h"

namespace VelWhiteBoard {

/// Marks that this thread is inside an operation. Frames nest where an operation waits for another
/// queue and helps it.
class QueueState::Frame {
 public:
  Frame(QueueState& queue, Operation& operation)
      : queue_(queue), operation_(operation), outer_(innermost) {
    innermost = this;
  }
  ~Frame() { innermost = outer_; }
  Frame(const Frame&) = delete;
  Frame& operator=(const Frame&) = delete;

  QueueState& queue() const { return queue_; }
  Operation& operation() const { return operation_; }
  const Frame* outer() const { return outer_; }

  static constinit thread_local const Frame* innermost;

 private:
  QueueState& queue_;
  Operation& operation_;
  const Frame* const outer_;
};

constinit thread_local const QueueState::Frame* QueueState::Frame::innermost = nullptr;

QueueState::QueueState(SharedThreads& threads)
    : threads_(threads), place_(1, this), position_(place_.begin()) {}

void QueueState::reportProgress() noexcept {
  if (Frame::innermost == nullptr) return;
  Frame::innermost->queue().progress_.fetch_add(1, std::memory_order_relaxed);
}

bool QueueState::isThisThreadInside() const noexcept {
  const Frame* frame = Frame::innermost;
  while (frame != nullptr && &frame->queue() != this) frame = frame->outer();
  return frame != nullptr;
}

bool QueueState::isIdle() const { return pending_.empty() && running_.empty(); }

bool QueueState::canStart() const { return !pending_.empty() && running_.size() < limit_; }

void QueueState::add(const OperationPtr& operation) noexcept {
  if (!operation) return;
  const MutexHold hold(SharedThreads::mutex);
  if (operation->place.empty()) return;  // was added before
  operation->place.front() = operation;
  operation->queue = shared_from_this();
  pending_.splice(pending_.end(), operation->place);
  threads_.countAdded();
  threads_.settle(*this);
  if (helpers_ > 0) changed_.notifyAll();
  // Inside an operation its thread works on when the operation has ended. Run at once, operations
  // that add one another would pile up on the stack.
  if (threads_.hasNoThread() && Frame::innermost == nullptr) threads_.workHere();
}

bool QueueState::remove(const OperationPtr& operation) noexcept {
  if (!operation) return false;
  // What may be the last references to the two; released after the lock.
  Operation::List removed;
  std::shared_ptr<QueueState> queue;
  const MutexHold hold(SharedThreads::mutex);
  if (operation->queue.get() != this || operation->isRunning) return false;
  removed.splice(removed.end(), pending_, operation->position);
  queue.swap(operation->queue);
  threads_.countGone();
  threads_.settle(*this);
  if (waiters_ > 0 && isIdle()) changed_.notifyAll();
  return true;
}

void QueueState::setLimit(std::size_t limit) {
  const MutexHold hold(SharedThreads::mutex);
  limit_ = limit;
  threads_.settle(*this);
  if (helpers_ > 0) changed_.notifyAll();
}

void QueueState::runFirst() {
  const OperationPtr operation = pending_.front();
  running_.splice(running_.end(), pending_, pending_.begin());
  operation->isRunning = true;
  threads_.settleStarted(*this);
  SharedThreads::mutex.unlock();
  {
    const Frame frame(*this, *operation);
    try {
      operation->work();
    } catch (...) {
      // There is no caller to hear of it, and the operations behind this one must run all the same.
    }
    operation->work = nullptr;
  }
  SharedThreads::mutex.lock();
  finish(*operation);
}

void QueueState::finish(Operation& operation) {
  running_.erase(operation.position);
  operation.queue.reset();
  progress_.fetch_add(1, std::memory_order_relaxed);
  threads_.countGone();
  if (isIdle() ? waiters_ > 0 : helpers_ > 0) changed_.notifyAll();
}

void QueueState::waitUntilIdle() {
  if (isThisThreadInside()) return;
  // A thread that waits inside an operation works on nothing else. If all of them waited for queues
  // that none of them runs, they would do so for ever; so each runs the queue that it waits for.
  const bool helps = Frame::innermost != nullptr;
  const MutexHold hold(SharedThreads::mutex);
  ++waiters_;
  if (helps) ++helpers_;
  while (!isIdle()) {
    if (helps && canStart()) {
      runFirst();
      threads_.settle(*this);
    } else {
      changed_.wait(SharedThreads::mutex);
    }
  }
  if (helps) --helpers_;
  --waiters_;
}

void QueueState::leaveOperationsOfThisThread() {
  const MutexHold hold(SharedThreads::mutex);
  for (const Frame* frame = Frame::innermost; frame != nullptr; frame = frame->outer()) {
    const std::shared_ptr<QueueState> queue = frame->queue().shared_from_this();
    queue->finish(frame->operation());
    queue->threads_.settle(*queue);
  }
  Frame::innermost = nullptr;
}

}  // namespace VelWhiteBoard
