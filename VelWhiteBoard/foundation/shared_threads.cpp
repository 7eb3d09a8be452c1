#include "VelWhiteBoard/foundation/shared_threads.h"

#include <memory>
#include <type_traits>
#include <utility>

#include "VelWhiteBoard/foundation/queue_state.h"

namespace VelWhiteBoard {

// A static object with a destructor would be gone before the last operations run.
static_assert(std::is_trivially_destructible_v<Mutex>);
constinit Mutex SharedThreads::mutex;

SharedThreads::SharedThreads(std::size_t maxThreads, ThreadStarter startThread)
    : maxThreads_(maxThreads), startThread_(std::move(startThread)) {
  threads_.reserve(maxThreads_);  // so that a thread that has been started always finds its place
}

SharedThreads::~SharedThreads() { drain(); }

void SharedThreads::countAdded() { ++unfinished_; }

void SharedThreads::countGone() {
  if (--unfinished_ == 0) drained_.notifyAll();
}

void SharedThreads::settle(QueueState& queue) {
  const bool isReady = queue.canStart();
  if (isReady == queue.isReady_) return;
  queue.isReady_ = isReady;
  if (!isReady) {
    queue.place_.splice(queue.place_.end(), ready_, queue.position_);
    return;
  }
  ready_.splice(ready_.end(), queue.place_);
  callThread();
}

void SharedThreads::settleStarted(QueueState& queue) {
  if (queue.isReady_ && queue.canStart()) {  // more than one at a time
    ready_.splice(ready_.end(), ready_, queue.position_);
    callThread();
  } else {
    settle(queue);
  }
}

void SharedThreads::callThread() {
  if (ready_.size() > idle_) grow();
  // A thread that is awake looks for work before it sleeps.
  if (ready_.size() > idle_ - sleeping_) wake_.notifyOne();
  drained_.notifyAll();
}

void SharedThreads::grow() {
  if (isClosed_ || threads_.size() >= maxThreads_) return;
  try {
    auto work = [this] { this->work(); };
    threads_.push_back(startThread_ ? startThread_(work) : std::thread(work));
    ++idle_;
  } catch (...) {
    // The system grants no more threads. Those there are do the work, or the caller when there are
    // none.
  }
}

void SharedThreads::takeTurn(QueueState& queue) {
  const std::shared_ptr<QueueState> kept = queue.shared_from_this();
  queue.runFirst();
  settle(queue);
}

void SharedThreads::work() {
  mutex.lock();
  while (!ready_.empty() || !isClosed_) {
    if (ready_.empty()) {
      ++sleeping_;
      wake_.wait(mutex);
      --sleeping_;
      continue;
    }
    const std::shared_ptr<QueueState> queue = ready_.front()->shared_from_this();
    --idle_;
    queue->runFirst();
    ++idle_;  // first, because this thread is free for what the queue may start next
    settle(*queue);
  }
  mutex.unlock();
}

void SharedThreads::workHere() {
  while (!ready_.empty()) takeTurn(*ready_.front());
}

void SharedThreads::drain() {
  QueueState::leaveOperationsOfThisThread();
  std::vector<std::thread> threads;
  mutex.lock();
  while (unfinished_ > 0) {
    if (ready_.empty()) {
      drained_.wait(mutex);
    } else {
      takeTurn(*ready_.front());
    }
  }
  isClosed_ = true;
  threads.swap(threads_);
  wake_.notifyAll();
  mutex.unlock();
  for (std::thread& thread : threads) {
    if (thread.get_id() == std::this_thread::get_id()) {
      thread.detach();
    } else {
      thread.join();
    }
  }
}

}  // namespace VelWhiteBoard
