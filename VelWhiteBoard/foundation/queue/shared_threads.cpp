#include "VelWhiteBoard/foundation/queue/shared_threads.h"

#include <memory>
#include <type_traits>
#include <utility>

#include "VelWhiteBoard/foundation/queue/queue_state.h"

namespace VelWhiteBoard {
namespace {

// How many operations added during the end are awaited, beyond as many as were added before it. An
// operation may add itself again without end.
constexpr std::size_t kMostFollowUps = 1000;

}  // namespace

// A static object with a destructor would be gone before the last operations run.
static_assert(std::is_trivially_destructible_v<Mutex>);
constinit Mutex SharedThreads::mutex;

SharedThreads::SharedThreads(std::size_t maxThreads, ThreadStarter startThread)
    : maxThreads_(maxThreads), startThread_(std::move(startThread)) {
  workers_.reserve(maxThreads_);  // so that starting a thread moves no other
}

SharedThreads::~SharedThreads() { drain(); }

void SharedThreads::admit(Operation& operation, const Operation* adder) {
  operation.number = ++lastNumber_;
  operation.isAwaited = !isEnding_ || (adder != nullptr && adder->isAwaited && followUps_ > 0);
  if (!operation.isAwaited) return;
  ++awaited_;
  if (isEnding_) --followUps_;
}

void SharedThreads::dismiss(const Operation& operation) {
  if (operation.isAwaited && --awaited_ == 0) drained_.notifyAll();
}

void SharedThreads::settle(QueueState& queue) {
  Queues* list = &queue.place_;
  if (queue.canStart()) list = queue.pending_.first()->isAwaited ? &ready_ : &late_;
  if (list != queue.list_) {
    list->splice(list->end(), *queue.list_, queue.position_);
    queue.list_ = list;
    if (list != &queue.place_) callThread();
  }
  if (queue.isIdle()) queue.self_.reset();
}

void SharedThreads::settleStarted(QueueState& queue) {
  queue.place_.splice(queue.place_.end(), *queue.list_, queue.position_);
  queue.list_ = &queue.place_;
  settle(queue);
}

void SharedThreads::callThread() {
  if (ready_.size() > idle_) grow();
  // A thread that is awake looks for work before it sleeps.
  if (ready_.size() + late_.size() > idle_ - sleeping_) wake_.notifyOne();
  if (isEnding_) drained_.notifyAll();
}

void SharedThreads::grow() {
  if (hasEnded_ || workers_.size() >= maxThreads_) return;
  Worker& worker = workers_.emplace_back();
  try {
    auto work = [this, &worker] { this->work(worker); };
    worker.thread = startThread_ ? startThread_(work) : std::thread(work);
    ++idle_;
  } catch (...) {
    // The system grants no more threads. The existing ones do the work; without any, the adding
    // thread does it.
    workers_.pop_back();
  }
}

QueueState* SharedThreads::nextQueue() const {
  if (!ready_.empty()) return ready_.front();
  return late_.empty() ? nullptr : late_.front();
}

void SharedThreads::work(Worker& worker) {
  mutex.lock();
  while (!hasEnded_) {
    if (nextQueue() == nullptr) {
      ++sleeping_;
      wake_.wait(mutex);
      --sleeping_;
      continue;
    }
    QueueState& queue = *nextQueue();
    --idle_;
    worker.isInside = true;
    queue.runFirst();
    worker.isInside = false;
    ++idle_;  // first, because this thread is free for what the queue may start next
    settle(queue);
  }
  mutex.unlock();
}

void SharedThreads::takeTurn(QueueState& queue) {
  queue.runFirst();
  settle(queue);
}

bool SharedThreads::runInBackground(const Operation& operation) const {
  return isEnding_ ? operation.isAwaited : !workers_.empty();
}

void SharedThreads::workHere(QueueState& queue, const Operation& operation) {
  if (!isEnding_) {
    // There is no other thread, so this one also runs what its operations add.
    while (!ready_.empty()) takeTurn(*ready_.front());
    return;
  }
  // Awaited operations are left to the end: they may need a lock that the adding thread holds.
  if (!hasEnded_ && queue.pending_.first() != &operation) return;
  const std::shared_ptr<Operation> kept = operation.self;
  while (kept->stage == Operation::Stage::kWaiting && queue.canStart()) takeTurn(queue);
  for (std::size_t turn = 0; hasEnded_ && turn < kMostFollowUps && !late_.empty(); ++turn) {
    takeTurn(*late_.front());
  }
}

void SharedThreads::drain() {
  QueueState::leaveOperationsOfThisThread();
  {
    const MutexHold hold(mutex);
    if (!isEnding_) {
      isEnding_ = true;
      endNumber_ = lastNumber_;
      followUps_ = awaited_ + kMostFollowUps;
    }
    while (awaited_ > 0) {
      if (ready_.empty()) {
        drained_.wait(mutex);
      } else {
        takeTurn(*ready_.front());
      }
    }
    hasEnded_ = true;
    wake_.notifyAll();
  }
  endThreads();
}

void SharedThreads::endThreads() {
  for (std::size_t at = 0;; ++at) {
    std::thread ending;
    {
      const MutexHold hold(mutex);
      if (at == workers_.size()) return;
      Worker& worker = workers_[at];
      if (!worker.thread.joinable()) continue;
      // Inside there is a late operation, or the one that ends the process on this very thread.
      if (worker.isInside) {
        worker.thread.detach();
        continue;
      }
      ending = std::move(worker.thread);
    }
    ending.join();
  }
}

}  // namespace VelWhiteBoard
