/// @file
/// A mutex with thread-safety annotations, which Clang checks (-Wthread-safety).
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

// Only Clang has the attributes; elsewhere the macros are empty.
#if defined(__clang__)
#define VELWHITEBOARD_THREAD_ANNOTATION(attribute) __attribute__((attribute))
#else
#define VELWHITEBOARD_THREAD_ANNOTATION(attribute)
#endif

/// The field may be touched only while the given lock is held.
#define VELWHITEBOARD_GUARDED_BY(lock) VELWHITEBOARD_THREAD_ANNOTATION(guarded_by(lock))
/// The function may be called only while the given lock is held.
#define VELWHITEBOARD_REQUIRES(...) \
  VELWHITEBOARD_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
/// The function may be called only while the given lock is not held.
#define VELWHITEBOARD_EXCLUDES(...) VELWHITEBOARD_THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))

namespace VelWhiteBoard {

/// A mutex for short sections: spins first, since waking costs more than the usual hold.
class VELWHITEBOARD_THREAD_ANNOTATION(capability("mutex")) Mutex {
 public:
  void lock() VELWHITEBOARD_THREAD_ANNOTATION(acquire_capability()) {
    constexpr int kTries = 300;
    for (int i = 0; i < kTries; ++i) {
      if (mutex_.try_lock()) return;
    }
    waiting_.fetch_add(1, std::memory_order_relaxed);
    mutex_.lock();
    waiting_.fetch_sub(1, std::memory_order_relaxed);
  }
  void unlock() VELWHITEBOARD_THREAD_ANNOTATION(release_capability()) { mutex_.unlock(); }

  /// Yields until threads that sleep waiting for the mutex have had it. To be called without the
  /// mutex, by a thread that locks it repeatedly.
  void giveWay() const {
    constexpr int kTries = 1000;
    std::this_thread::yield();
    for (int i = 0; i < kTries && waiting_.load(std::memory_order_relaxed) > 0; ++i) {
      std::this_thread::yield();
    }
  }

 private:
  friend class Condition;
  std::mutex mutex_;
  std::atomic<int> waiting_ = 0;
};

/// A condition variable for a `Mutex`. Unlike `std::condition_variable_any` it adds no lock and no
/// allocation.
class Condition {
 public:
  /// Releases the mutex while waiting. May wake spuriously: test the condition in a loop.
  void wait(Mutex& mutex) VELWHITEBOARD_REQUIRES(mutex) {
    std::unique_lock<std::mutex> lock(mutex.mutex_, std::adopt_lock);
    condition_.wait(lock);
    lock.release();  // the caller still holds the mutex
  }
  /// The same for at most this long.
  void waitFor(Mutex& mutex, std::chrono::milliseconds longest) VELWHITEBOARD_REQUIRES(mutex) {
    std::unique_lock<std::mutex> lock(mutex.mutex_, std::adopt_lock);
    condition_.wait_for(lock, longest);
    lock.release();
  }
  void notifyOne() { condition_.notify_one(); }
  void notifyAll() { condition_.notify_all(); }

 private:
  std::condition_variable condition_;
};

/// Holds a mutex for a scope.
class VELWHITEBOARD_THREAD_ANNOTATION(scoped_lockable) MutexHold {
 public:
  explicit MutexHold(Mutex& mutex) VELWHITEBOARD_THREAD_ANNOTATION(acquire_capability(mutex))
      : mutex_(mutex) {
    mutex_.lock();
  }
  ~MutexHold() VELWHITEBOARD_THREAD_ANNOTATION(release_capability()) { mutex_.unlock(); }
  MutexHold(const MutexHold&) = delete;
  MutexHold& operator=(const MutexHold&) = delete;

 private:
  Mutex& mutex_;
};

}  // namespace VelWhiteBoard
