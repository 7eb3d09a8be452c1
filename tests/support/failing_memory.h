/// @file
/// Memory that runs out where a test wants it to, in an executable that links failing_memory.cpp.
///
///     const std::size_t failures = failEachAllocation(
///         [] { return makeSubject(); },
///         [](auto& subject) { subject->operation(); },
///         [](auto& subject, bool threw) { EXPECT_EQ(*subject, threw ? before : after); });
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <new>

namespace VelWhiteBoard {

/// Whose requests for memory are counted and may fail.
enum class Requests : std::uint8_t {
  kOfThisThread,   ///< `operator new` on the thread that made the scope
  kOfAllThreads,   ///< `operator new` on every thread of the process
  kOfCLibraryToo,  ///< on this thread, and `malloc`, `calloc` and `realloc` as well. No sanitizer
};

/// As a number of requests that fail: memory has run out and stays so.
inline constexpr std::size_t kForGood = std::numeric_limits<std::size_t>::max();

/// While it lives, requests for memory are counted and some of them fail: `operator new` throws
/// `std::bad_alloc` (its nothrow forms answer null), `malloc` answers null. One scope for a thread
/// and one for all threads may live at a time.
class FailingAllocations {
 public:
  /// Fails the request number `first`, counted from 1, and the `times` - 1 requests that follow.
  explicit FailingAllocations(std::size_t first, Requests requests = Requests::kOfThisThread,
                              std::size_t times = 1);
  ~FailingAllocations();
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;

  /// How many requests there were so far, failed ones included.
  std::size_t count() const;
  /// How many bytes they asked for together.
  std::size_t bytes() const;
  /// Whether one of them failed.
  bool hasFailed() const;

 private:
  Requests requests_;
};

/// Counts requests for memory; none fails.
class CountedAllocations : public FailingAllocations {
 public:
  explicit CountedAllocations(Requests requests = Requests::kOfThisThread)
      : FailingAllocations(1, requests, 0) {}
};

/// Runs `operation` on a fresh subject of `prepare`, with the first request for memory failing,
/// then with the second, and so on, until it gets by without a failure. After each run calls
/// `check(subject, threw)`. Answers how many runs had a failure.
template <class Prepare, class Operation, class Check>
std::size_t failEachAllocation(const Prepare& prepare, const Operation& operation,
                               const Check& check, Requests requests = Requests::kOfThisThread) {
  std::size_t places = 0;
  for (const std::size_t times : {std::size_t{1}, kForGood}) {
    bool failed = true;
    for (std::size_t first = 1; failed; ++first) {
      auto subject = prepare();
      bool threw = false;
      {
        const FailingAllocations failing(first, requests, times);
        try {
          operation(subject);
        } catch (const std::bad_alloc&) {
          threw = true;
        }
        failed = failing.hasFailed();
      }
      check(subject, threw);
      places = first - 1;
    }
  }
  return places;
}

}  // namespace VelWhiteBoard
