/// @file
/// The threads that all operation queues share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <thread>
#include <vector>

#include "VelWhiteBoard/foundation/queue/mutex.h"
#include "VelWhiteBoard/foundation/queue/operation_queue.h"

namespace VelWhiteBoard {

class QueueState;

/// The queues that have work, and the threads that run it: one operation of a queue, then the next
/// queue.
///
/// A thread is started when an operation would otherwise have to wait for one, up to the maximum:
/// operations write files, any of which may hang on a dead disk, and a thread that hangs cannot be
/// told from a busy one. Threads stay until `drain`; a sleeping one costs little. The maximum
/// limits how many threads a dead disk can block.
///
/// One lock guards the threads, the queues and the operations. It is held briefly, never while an
/// operation runs. Every member function may be called from any thread, inside operations too.
///
/// The end begins with `drain`. It waits for the operations that were added before, and for a
/// bounded number of those that these add: the *awaited* operations. All others are *late*. An idle
/// thread runs late operations when no queue has an awaited one to start; the end does not wait for
/// them.
class SharedThreads {
 public:
  using Operation = OperationQueue::Operation;
  using Queues = std::list<QueueState*>;
  /// Starts a thread that runs the function; throws when it cannot.
  using ThreadStarter = std::function<std::thread(std::function<void()>)>;

  static constexpr std::size_t kMaxThreads = 8;

  /// The one lock. A static member, so that the compiler can check who holds it.
  static Mutex mutex;

  /// Must outlive the queues and any late operations.
  explicit SharedThreads(std::size_t maxThreads = kMaxThreads, ThreadStarter startThread = nullptr);
  ~SharedThreads();
  SharedThreads(const SharedThreads&) = delete;
  SharedThreads& operator=(const SharedThreads&) = delete;

  // ---- For queues, which hold the lock

  /// An operation was added.
  /// @param adder the operation that adds it; null when the thread is not inside an operation.
  void admit(Operation& operation, const Operation* adder) VELWHITEBOARD_REQUIRES(mutex);
  /// An admitted operation has run or was removed.
  void dismiss(const Operation& operation) VELWHITEBOARD_REQUIRES(mutex);
  /// Puts the queue into the lists of queues that have work, or takes it out. To be called after
  /// each change of what it may start.
  void settle(QueueState& queue) VELWHITEBOARD_REQUIRES(mutex);
  /// The same after the queue has started an operation: its next one takes its turn behind the
  /// other queues.
  void settleStarted(QueueState& queue) VELWHITEBOARD_REQUIRES(mutex);
  /// Whether another thread than the adding one runs the operation.
  bool runInBackground(const Operation& operation) const VELWHITEBOARD_REQUIRES(mutex);
  /// Works on the calling thread, which has just added the operation.
  void workHere(QueueState& queue, const Operation& operation) VELWHITEBOARD_REQUIRES(mutex);

  // ---- The end

  /// Runs everything that was added. Returns when the awaited operations have ended; the calling
  /// thread helps. The operations that it is inside of count as finished. From then on no thread
  /// works in the background. A second call changes nothing.
  void drain() VELWHITEBOARD_EXCLUDES(mutex);

  bool isEnding() const VELWHITEBOARD_REQUIRES(mutex) { return isEnding_; }
  /// Every operation has a number, higher than those of all that were added before.
  std::uint64_t lastNumber() const VELWHITEBOARD_REQUIRES(mutex) { return lastNumber_; }
  /// The number of the last operation before the end began.
  std::uint64_t lastNumberBeforeEnd() const VELWHITEBOARD_REQUIRES(mutex) { return endNumber_; }

 private:
  struct Worker {
    std::thread thread;
    bool isInside = false;  // an operation
  };

  QueueState* nextQueue() const VELWHITEBOARD_REQUIRES(mutex);
  void callThread() VELWHITEBOARD_REQUIRES(mutex);
  void grow() VELWHITEBOARD_REQUIRES(mutex);
  void work(Worker& worker) VELWHITEBOARD_EXCLUDES(mutex);
  void takeTurn(QueueState& queue) VELWHITEBOARD_REQUIRES(mutex);
  void endThreads() VELWHITEBOARD_EXCLUDES(mutex);

  const std::size_t maxThreads_;
  const ThreadStarter startThread_;

  Condition wake_;     // a queue has work, or the threads are to end; awaited by idle threads
  Condition drained_;  // an awaited operation can start, or all have ended; awaited by drain
  Queues ready_ VELWHITEBOARD_GUARDED_BY(mutex);  // queues whose first operation is awaited
  Queues late_ VELWHITEBOARD_GUARDED_BY(mutex);   // those whose first operation is late
  std::vector<Worker> workers_ VELWHITEBOARD_GUARDED_BY(mutex);
  std::size_t idle_ VELWHITEBOARD_GUARDED_BY(mutex) = 0;      // workers outside an operation
  std::size_t sleeping_ VELWHITEBOARD_GUARDED_BY(mutex) = 0;  // those of them that wait for work
  std::size_t awaited_ VELWHITEBOARD_GUARDED_BY(mutex) = 0;   // awaited operations, waiting or not
  std::uint64_t lastNumber_ VELWHITEBOARD_GUARDED_BY(mutex) = 0;
  bool isEnding_ VELWHITEBOARD_GUARDED_BY(mutex) = false;
  bool hasEnded_ VELWHITEBOARD_GUARDED_BY(mutex) = false;
  std::uint64_t endNumber_ VELWHITEBOARD_GUARDED_BY(mutex) = 0;
  std::size_t followUps_ VELWHITEBOARD_GUARDED_BY(mutex) = 0;  // how many more are awaited
};

}  // namespace VelWhiteBoard
