#include "VelWhiteBoard/foundation/queue/queue_state.h"

#include <algorithm>
#include <utility>

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

bool QueueState::isWaitingForThread() const noexcept {
  const MutexHold hold(SharedThreads::mutex);
  return canStart() && !threads_.isEnding();
}

bool QueueState::isThisThreadInside() const noexcept {
  const Frame* frame = Frame::innermost;
  while (frame != nullptr && &frame->queue() != this) frame = frame->outer();
  return frame != nullptr;
}

bool QueueState::isIdle() const { return pending_.isEmpty() && running_.isEmpty(); }

bool QueueState::canStart() const { return !pending_.isEmpty() && running_.size() < limit_; }

void QueueState::add(OperationPtr operation) noexcept {
  if (!operation) return;
  const MutexHold hold(SharedThreads::mutex);
  Operation& added = *operation;
  if (added.stage != Operation::Stage::kNew) return;
  const Frame* const frame = Frame::innermost;
  threads_.admit(added, frame == nullptr ? nullptr : &frame->operation());
  added.stage = Operation::Stage::kWaiting;
  added.queue = this;
  added.self = std::move(operation);
  pending_.append(added);
  if (!self_) self_ = shared_from_this();
  threads_.settle(*this);
  if (helpers_ > 0) changed_.notifyAll();
  // Called inside an operation: the same thread runs this one after that operation has ended.
  // Operations that add one another and ran at once would use up the stack.
  if (frame == nullptr && !threads_.runInBackground(added)) threads_.workHere(*this, added);
}

bool QueueState::remove(const OperationPtr& operation) noexcept {
  if (!operation) return false;
  OperationPtr removed;  // may be the last reference; released after the lock
  const MutexHold hold(SharedThreads::mutex);
  if (operation->queue != this || operation->stage != Operation::Stage::kWaiting) return false;
  if (threads_.isEnding() && operation->isAwaited) return false;
  removed.swap(operation->self);
  pending_.remove(*removed);
  dismiss(*removed);
  threads_.settle(*this);
  return true;
}

void QueueState::setLimit(std::size_t limit) {
  const MutexHold hold(SharedThreads::mutex);
  limit_ = limit;
  threads_.settle(*this);
  if (helpers_ > 0) changed_.notifyAll();
}

void QueueState::runFirst() {
  const OperationPtr operation = std::move(pending_.first()->self);
  pending_.remove(*operation);
  running_.append(*operation);
  operation->stage = Operation::Stage::kRunning;
  threads_.settleStarted(*this);
  SharedThreads::mutex.unlock();
  {
    const Frame frame(*this, *operation);
    try {
      operation->work();
    } catch (...) {
      // There is no caller to report it to, and the operations behind this one must still run.
    }
    operation->work = nullptr;
  }
  SharedThreads::mutex.lock();
  finish(*operation);
}

void QueueState::finish(Operation& operation) {
  running_.remove(operation);
  progress_.fetch_add(1, std::memory_order_relaxed);
  dismiss(operation);
}

void QueueState::dismiss(Operation& operation) {
  operation.stage = Operation::Stage::kGone;
  operation.queue = nullptr;
  threads_.dismiss(operation);
  if (waiters_ == 0) return;
  if (isIdle() || helpers_ > 0 || threads_.isEnding()) changed_.notifyAll();
}

void QueueState::waitUntilIdle() {
  if (isThisThreadInside()) return;
  const bool isInsideAnother = Frame::innermost != nullptr;
  const MutexHold hold(SharedThreads::mutex);
  const std::uint64_t number = threads_.lastNumber();
  while (!isWaitOver(number)) {
    // A thread that waits inside an operation runs nothing else. If every thread waited for a queue
    // that no thread runs, all would wait without end, so each runs the queue that it waits for.
    // While the process ends there may be no other thread to do so.
    const bool helps = isInsideAnother || threads_.isEnding();
    if (helps && canStart()) {
      runFirst();
      threads_.settle(*this);
    } else {
      wait(helps);
    }
  }
}

bool QueueState::isWaitOver(std::uint64_t number) const {
  if (isIdle()) return true;
  if (!threads_.isEnding()) return false;
  // Another thread may go on adding while the process ends, so that the queue is never idle again.
  const std::uint64_t last = std::max(number, threads_.lastNumberBeforeEnd());
  if (!pending_.isEmpty() && pending_.first()->number <= last) return false;
  const Operation* operation = running_.first();
  while (operation != nullptr && operation->number > last) operation = operation->next;
  return operation == nullptr;
}

void QueueState::wait(bool helps) {
  ++waiters_;
  if (helps) ++helpers_;
  changed_.wait(SharedThreads::mutex);
  if (helps) --helpers_;
  --waiters_;
}

void QueueState::leaveOperationsOfThisThread() {
  const MutexHold hold(SharedThreads::mutex);
  for (const Frame* frame = Frame::innermost; frame != nullptr; frame = frame->outer()) {
    QueueState& queue = frame->queue();
    queue.finish(frame->operation());
    queue.threads_.settle(queue);
  }
  Frame::innermost = nullptr;
}

}  // namespace VelWhiteBoard
