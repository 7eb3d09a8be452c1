#include "VelWhiteBoard/foundation/strand.h"

#include <utility>

namespace VelWhiteBoard {
namespace {

// Operations of one queue that a thread runs before it looks at the other queues. Enough to make
// the pool's lock cheap, few enough that a long queue does not hold up the others.
constexpr int kOperationsPerTurn = 8;

}  // namespace

/// Marks that this thread is inside an operation of the strand. Frames nest where a thread waits
/// for another strand and helps it.
class Strand::Frame {
 public:
  Frame(Strand& strand, bool hasTicket)
      : strand_(strand), hasTicket_(hasTicket), outer_(innermost) {
    innermost = this;
  }
  ~Frame() { innermost = outer_; }
  Frame(const Frame&) = delete;
  Frame& operator=(const Frame&) = delete;

  static bool isInside(const Strand& strand) {
    const Frame* frame = innermost;
    while (frame != nullptr && &frame->strand_ != &strand) frame = frame->outer_;
    return frame != nullptr;
  }

  Strand& strand() const { return strand_; }
  bool hasTicket() const { return hasTicket_; }
  const Frame* outer() const { return outer_; }

  static thread_local const Frame* innermost;

 private:
  Strand& strand_;
  const bool hasTicket_;
  const Frame* const outer_;
};

thread_local const Strand::Frame* Strand::Frame::innermost = nullptr;

void Strand::add(std::function<void()> operation) {
  if (!operation) return;
  // Everything that may run out of memory comes before the first change.
  Operations added;
  added.push_back(std::move(operation));
  ThreadPool::Ticket ticket;
  {
    const MutexHold hold(mutex_);
    if (needsTicket(1)) {
      ticket.push_back(shared_from_this());
      ++tickets_;
    }
    pending_.splice(pending_.end(), added);
    if (helpers_ > 0) changed_.notifyAll();
  }
  if (!ticket.empty()) pool_.post(std::move(ticket));
}

void Strand::setLimit(std::size_t limit) {
  {
    const MutexHold hold(mutex_);
    limit_ = limit;
    if (helpers_ > 0) changed_.notifyAll();
  }
  for (;;) {
    ThreadPool::Ticket ticket;
    ticket.push_back(shared_from_this());
    {
      const MutexHold hold(mutex_);
      if (!needsTicket(0)) return;
      ++tickets_;
    }
    pool_.post(std::move(ticket));
  }
}

bool Strand::needsTicket(std::size_t added) const {
  return tickets_ < limit_ && tickets_ < pending_.size() + active_ + added;
}

bool Strand::startNext(Operations& operation) {
  if (pending_.empty() || active_ >= limit_) return false;
  operation.splice(operation.begin(), pending_, pending_.begin());
  ++active_;
  return true;
}

void Strand::finishOne() {
  --active_;
  const bool isIdle = active_ == 0 && pending_.empty();
  if (isIdle ? waiters_ > 0 : helpers_ > 0) changed_.notifyAll();
}

void Strand::run(Operations& operation, bool hasTicket) {
  const Frame frame(*this, hasTicket);
  try {
    operation.front()();
  } catch (...) {
    // Nobody is there to hear of it, and the operations behind this one must run all the same.
  }
  operation.clear();
}

bool Strand::workOneTurn() {
  Operations operation;
  for (int finished = 0;; ++finished) {
    {
      const MutexHold hold(mutex_);
      if (finished > 0) finishOne();
      if (finished == kOperationsPerTurn && !pending_.empty()) return true;
      if (!startNext(operation)) {
        --tickets_;
        return false;
      }
    }
    run(operation, true);
  }
}

void Strand::waitUntilIdle() {
  if (Frame::isInside(*this)) return;
  // A pool's thread that waits here is one that works nowhere. Were all of them to wait for a
  // strand that none of them runs, they would do so for ever; so each runs what it waits for.
  const bool helps = ThreadPool::isThisThreadAtWork();
  Operations operation;
  mutex_.lock();
  ++waiters_;
  if (helps) ++helpers_;
  while (active_ > 0 || !pending_.empty()) {
    if (helps && startNext(operation)) {
      mutex_.unlock();
      run(operation, false);
      mutex_.lock();
      finishOne();
    } else {
      changed_.wait(mutex_);
    }
  }
  if (helps) --helpers_;
  --waiters_;
  mutex_.unlock();
}

void Strand::leaveOperationsOfThisThread() {
  for (const Frame* frame = Frame::innermost; frame != nullptr; frame = frame->outer()) {
    Strand& strand = frame->strand();
    {
      const MutexHold hold(strand.mutex_);
      strand.finishOne();
      if (!frame->hasTicket()) ++strand.tickets_;  // the turn below gives one back
    }
    while (strand.workOneTurn()) {
    }
  }
}

}  // namespace VelWhiteBoard
