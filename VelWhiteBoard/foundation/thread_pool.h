/// @file
/// The threads that all operation queues share.
#pragma once

#include <cstddef>
#include <functional>
#include <list>
#include <memory>
#include <thread>
#include <vector>

#include "VelWhiteBoard/foundation/mutex.h"

namespace VelWhiteBoard {

/// Something that a pool's threads work on, a turn at a time.
class PooledTask {
 public:
  virtual ~PooledTask() = default;

  /// Works for one turn; throws nothing. Answers whether another turn is wanted, which comes after
  /// the turns of those who already wait.
  virtual bool workOneTurn() = 0;
};

/// A pool of threads that starts a thread only when there is work and nobody to do it.
///
/// It grows as soon as a task would have to wait and the bound allows: the tasks are file writes,
/// any of which may hang on a dead disk, and nothing tells a thread that hangs from one that is
/// busy. Threads stay until `drain`; a sleeping one costs little. The bound keeps a disk that kills
/// every write from eating a thread for each.
///
/// When no thread can be started at all, `post` works on the calling thread; what is posted from
/// inside such a turn is worked on behind it, before the outermost `post` returns. Every member
/// function may be called from any thread, tasks included.
class ThreadPool {
 public:
  /// A list of one task. The caller makes it, so that handing it over allocates nothing and cannot
  /// fail.
  using Ticket = std::list<std::shared_ptr<PooledTask>>;
  /// Starts a thread that runs the function; throws when it cannot.
  using ThreadStarter = std::function<std::thread(std::function<void()>)>;

  static constexpr std::size_t kMaxThreads = 8;

  explicit ThreadPool(std::size_t maxThreads = kMaxThreads, ThreadStarter startThread = nullptr);
  ~ThreadPool();
  ThreadPool(const ThreadPool&) = delete;
  ThreadPool& operator=(const ThreadPool&) = delete;

  /// Gives the task turns until it wants no more. After `drain` they are taken at once, on the
  /// calling thread.
  void post(Ticket ticket);

  /// Returns when no task wants another turn, and has ended all threads then. The calling thread
  /// helps. A task that calls it is not waited for, and neither is its thread.
  void drain();

  /// Whether this thread is inside a task's turn, of whichever pool.
  static bool isThisThreadAtWork();

 private:
  class Slot;
  class PostedHere;

  void workHere(Ticket& waiting) VELWHITEBOARD_EXCLUDES(mutex_);
  void grow() VELWHITEBOARD_REQUIRES(mutex_);
  void workOnFirst() VELWHITEBOARD_REQUIRES(mutex_);
  void workUntilDrained() VELWHITEBOARD_EXCLUDES(mutex_);

  const std::size_t maxThreads_;
  const ThreadStarter startThread_;

  Mutex mutex_;
  Condition wake_;      // a task is ready, or the pool is closed; awaited by idle threads
  Condition progress_;  // something became ready or was finished; awaited by drain
  Ticket ready_ VELWHITEBOARD_GUARDED_BY(mutex_);
  std::vector<std::thread> threads_ VELWHITEBOARD_GUARDED_BY(mutex_);
  std::size_t idle_ VELWHITEBOARD_GUARDED_BY(mutex_) = 0;  // threads outside a turn
  std::size_t busy_ VELWHITEBOARD_GUARDED_BY(mutex_) = 0;  // turns being taken, by whichever thread
  bool isClosed_ VELWHITEBOARD_GUARDED_BY(mutex_) = false;
};

}  // namespace VelWhiteBoard
