#include "VelWhiteBoard/foundation/thread_pool.h"

#include <exception>
#include <utility>

namespace VelWhiteBoard {

/// Marks that this thread is inside a turn. Turns nest: a task may drain the pool, or work on the
/// calling thread where there is no other.
class ThreadPool::Slot {
 public:
  explicit Slot(const ThreadPool& pool) : pool_(pool), outer_(innermost) { innermost = this; }
  ~Slot() { innermost = outer_; }
  Slot(const Slot&) = delete;
  Slot& operator=(const Slot&) = delete;

  static std::size_t countOf(const ThreadPool& pool) {
    std::size_t count = 0;
    for (const Slot* slot = innermost; slot != nullptr; slot = slot->outer_) {
      if (&slot->pool_ == &pool) ++count;
    }
    return count;
  }

  static thread_local const Slot* innermost;

 private:
  const ThreadPool& pool_;
  const Slot* const outer_;
};

thread_local const ThreadPool::Slot* ThreadPool::Slot::innermost = nullptr;

/// Marks that this thread takes the turns of what it posts, because nobody else would. What is
/// posted from inside such a turn waits for that turn to end: taken at once, tasks that post one
/// another would pile up on the stack.
class ThreadPool::PostedHere {
 public:
  PostedHere(const ThreadPool& pool, Ticket& waiting)
      : pool_(pool), waiting_(waiting), outer_(innermost) {
    innermost = this;
  }
  ~PostedHere() { innermost = outer_; }
  PostedHere(const PostedHere&) = delete;
  PostedHere& operator=(const PostedHere&) = delete;

  /// The list of what waits for this thread; null when it takes no turns for the pool.
  static Ticket* waitingFor(const ThreadPool& pool) {
    return innermost != nullptr && &innermost->pool_ == &pool ? &innermost->waiting_ : nullptr;
  }

  static thread_local const PostedHere* innermost;

 private:
  const ThreadPool& pool_;
  Ticket& waiting_;
  const PostedHere* const outer_;
};

thread_local const ThreadPool::PostedHere* ThreadPool::PostedHere::innermost = nullptr;

ThreadPool::ThreadPool(std::size_t maxThreads, ThreadStarter startThread)
    : maxThreads_(maxThreads), startThread_(std::move(startThread)) {
  threads_.reserve(maxThreads_);  // so that a thread that has been started always finds its place
}

ThreadPool::~ThreadPool() { drain(); }

bool ThreadPool::isThisThreadAtWork() { return Slot::innermost != nullptr; }

void ThreadPool::post(Ticket ticket) {
  {
    const MutexHold hold(mutex_);
    if (!isClosed_ && ready_.size() >= idle_) grow();
    if (!isClosed_ && !threads_.empty()) {
      ready_.splice(ready_.end(), ticket);
      wake_.notifyOne();
      progress_.notifyAll();
      return;
    }
    if (Ticket* const waiting = PostedHere::waitingFor(*this)) {
      waiting->splice(waiting->end(), ticket);
      return;
    }
    ++busy_;
  }
  workHere(ticket);
  const MutexHold hold(mutex_);
  --busy_;
  progress_.notifyAll();
}

void ThreadPool::workHere(Ticket& waiting) {
  const Slot slot(*this);
  const PostedHere here(*this, waiting);
  while (!waiting.empty()) {
    Ticket ticket;
    ticket.splice(ticket.begin(), waiting, waiting.begin());
    if (ticket.front()->workOneTurn()) waiting.splice(waiting.end(), ticket);
  }
}

void ThreadPool::grow() {
  if (threads_.size() >= maxThreads_) return;
  try {
    auto work = [this] { workUntilDrained(); };
    threads_.push_back(startThread_ ? startThread_(work) : std::thread(work));
    ++idle_;
  } catch (const std::exception&) {
    // The system grants no more threads. Those there are do the work, or the caller when there are
    // none.
  }
}

void ThreadPool::workOnFirst() {
  Ticket ticket;
  ticket.splice(ticket.begin(), ready_, ready_.begin());
  ++busy_;
  mutex_.unlock();
  {
    const Slot slot(*this);
    // The last reference to a task may be this one: let go of it outside the lock.
    if (!ticket.front()->workOneTurn()) ticket.clear();
  }
  mutex_.lock();
  ready_.splice(ready_.end(), ticket);
  --busy_;
  progress_.notifyAll();
}

void ThreadPool::workUntilDrained() {
  mutex_.lock();
  while (!ready_.empty() || !isClosed_) {
    if (ready_.empty()) {
      wake_.wait(mutex_);
    } else {
      --idle_;
      workOnFirst();
      ++idle_;
    }
  }
  mutex_.unlock();
}

void ThreadPool::drain() {
  std::vector<std::thread> threads;
  mutex_.lock();
  // The turns that this thread is inside of may never end (see `drain`'s promise): what waits for
  // them is worked on below, and later posts are not to wait for them.
  if (Ticket* const waiting = PostedHere::waitingFor(*this)) ready_.splice(ready_.end(), *waiting);
  PostedHere::innermost = nullptr;
  const std::size_t own = Slot::countOf(*this);
  while (!ready_.empty() || busy_ > own) {
    if (!ready_.empty()) {
      workOnFirst();
    } else {
      progress_.wait(mutex_);
    }
  }
  isClosed_ = true;
  threads.swap(threads_);
  wake_.notifyAll();
  mutex_.unlock();
  for (std::thread& thread : threads) {
    if (thread.get_id() == std::this_thread::get_id()) {
      thread.detach();
    } else {
      thread.join();
    }
  }
}

}  // namespace VelWhiteBoard
