/// @file
/// The threads that all operation queues share.
#pragma once

#include <cstddef>
#include <functional>
#include <list>
#include <thread>
#include <vector>

#include "VelWhiteBoard/foundation/mutex.h"

namespace VelWhiteBoard {

class QueueState;

/// The queues that have work, and the threads that do it: one operation a turn, then the next
/// queue.
///
/// A thread is started when an operation would have to wait for one and the bound allows:
/// operations write files, any of which may hang on a dead disk, and nothing tells a thread that
/// hangs from one that is busy. Threads stay until `drain`; a sleeping one costs little. The bound
/// limits how many threads a dead disk can block.
///
/// One lock guards the threads, the queues and the operations. It is held for moments only, never
/// while an operation runs. Every member function may be called from any thread, operations too.
class SharedThreads {
 public:
  using Queues = std::list<QueueState*>;
  /// Starts a thread that runs the function; throws when it cannot.
  using ThreadStarter = std::function<std::thread(std::function<void()>)>;

  static constexpr std::size_t kMaxThreads = 8;

  /// The one lock. A static member, so that the compiler can check who holds it.
  static Mutex mutex;

  explicit SharedThreads(std::size_t maxThreads = kMaxThreads, ThreadStarter startThread = nullptr);
  ~SharedThreads();
  SharedThreads(const SharedThreads&) = delete;
  SharedThreads& operator=(const SharedThreads&) = delete;

  // ---- For queues, which hold the lock

  /// An operation was added.
  void countAdded() VELWHITEBOARD_REQUIRES(mutex);
  /// An operation that was added has run or was removed.
  void countGone() VELWHITEBOARD_REQUIRES(mutex);
  /// Brings the queue in or out of the list of those that have work. To be called after each change
  /// of what it may start.
  void settle(QueueState& queue) VELWHITEBOARD_REQUIRES(mutex);
  /// The same after the queue has started an operation: its next one takes its turn behind the
  /// other queues.
  void settleStarted(QueueState& queue) VELWHITEBOARD_REQUIRES(mutex);

  /// Whether operations run only when an adding thread works.
  bool hasNoThread() const VELWHITEBOARD_REQUIRES(mutex) { return isClosed_ || threads_.empty(); }
  /// Works on the calling thread until no queue has work, since no other thread would.
  void workHere() VELWHITEBOARD_REQUIRES(mutex);

  // ---- The end

  /// Returns when no queue has work and no operation runs, and has ended all threads then. The
  /// calling thread helps. The operations that it is inside of count as finished. From then on
  /// operations run on the thread that adds them.
  void drain() VELWHITEBOARD_EXCLUDES(mutex);

 private:
  void callThread() VELWHITEBOARD_REQUIRES(mutex);
  void grow() VELWHITEBOARD_REQUIRES(mutex);
  void work() VELWHITEBOARD_EXCLUDES(mutex);
  void takeTurn(QueueState& queue) VELWHITEBOARD_REQUIRES(mutex);

  const std::size_t maxThreads_;
  const ThreadStarter startThread_;

  Condition wake_;     // a queue has work, or the threads are to end; awaited by idle threads
  Condition drained_;  // a queue has work, or no operation is left; awaited by drain
  Queues ready_ VELWHITEBOARD_GUARDED_BY(mutex);
  std::vector<std::thread> threads_ VELWHITEBOARD_GUARDED_BY(mutex);
  std::size_t idle_ VELWHITEBOARD_GUARDED_BY(mutex) = 0;        // threads outside an operation
  std::size_t sleeping_ VELWHITEBOARD_GUARDED_BY(mutex) = 0;    // those of them that wait for work
  std::size_t unfinished_ VELWHITEBOARD_GUARDED_BY(mutex) = 0;  // operations that wait or run
  bool isClosed_ VELWHITEBOARD_GUARDED_BY(mutex) = false;
};

}  // namespace VelWhiteBoard
