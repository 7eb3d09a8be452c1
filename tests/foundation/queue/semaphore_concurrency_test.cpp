#include <atomic>
#include <memory>
#include <mutex>
#include <utility>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/queue/semaphore.h"

#include "tests/support/together.h"

namespace VelWhiteBoard {
namespace {

TEST(SemaphoreConcurrency, OnlyOneThreadAtATimeHoldsASemaphoreOfCountOne) {
  const auto semaphore = std::make_shared<Semaphore>(1);
  int count = 0;  // without a lock of its own
  together(4, [&](int) {
    for (int i = 0; i < 5000; ++i) {
      const SemaphoreHold hold(semaphore);
      ++count;
    }
  });
  EXPECT_EQ(count, 20'000);
}

TEST(SemaphoreConcurrency, NoSignalIsMissedHoweverCloseToTheWaitItComes) {
  // Each signal answers the other thread's, so one that is missed stops both for ever.
  Semaphore ping(0);
  Semaphore pong(0);
  int rounds = 0;
  together(2, [&](int number) {
    for (int i = 0; i < 20'000; ++i) {
      if (number == 0) {
        ping.release();
        waitOn(pong);
      } else {
        waitOn(ping);
        ++rounds;
        pong.release();
      }
    }
  });
  EXPECT_EQ(rounds, 20'000);
}

TEST(SemaphoreConcurrency, AHeldSemaphoreMayBeReplacedByItsOwner) {
  std::mutex mutex;
  auto owned = std::make_shared<Semaphore>(1);
  std::atomic<int> holds{0};
  together(4, [&](int) {
    for (int i = 0; i < 2000; ++i) {
      std::shared_ptr<Semaphore> current;
      {
        const std::lock_guard<std::mutex> guard(mutex);
        current = owned;
      }
      const SemaphoreHold hold(std::move(current));
      ++holds;
      const std::lock_guard<std::mutex> guard(mutex);
      owned = std::make_shared<Semaphore>(1);
    }
  });
  EXPECT_EQ(holds, 8000);
}

}  // namespace
}  // namespace VelWhiteBoard
