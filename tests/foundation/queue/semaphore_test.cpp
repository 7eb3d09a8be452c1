#include "VelWhiteBoard/foundation/queue/semaphore.h"

#include <memory>
#include <thread>
#include <type_traits>

#include <gtest/gtest.h>

namespace VelWhiteBoard {
namespace {

static_assert(!std::is_copy_constructible_v<SemaphoreHold>);
static_assert(!std::is_copy_assignable_v<SemaphoreHold>);

bool isFree(Semaphore& semaphore) {
  if (!semaphore.try_acquire()) return false;
  semaphore.release();
  return true;
}

TEST(Semaphore, WaitingOnAFreeOneTakesIt) {
  Semaphore semaphore(1);
  waitOn(semaphore);
  EXPECT_FALSE(isFree(semaphore));
}

TEST(Semaphore, WaitingTakesOneAtATime) {
  Semaphore semaphore(3);
  waitOn(semaphore);
  waitOn(semaphore);
  EXPECT_TRUE(semaphore.try_acquire());
  EXPECT_FALSE(semaphore.try_acquire());
}

TEST(Semaphore, WaitingLastsUntilAnotherThreadSignals) {
  Semaphore semaphore(0);
  int written = 0;
  std::thread signaller([&] {
    written = 42;
    semaphore.release();
  });
  waitOn(semaphore);
  EXPECT_EQ(written, 42);
  EXPECT_FALSE(isFree(semaphore));
  signaller.join();
}

TEST(SemaphoreHold, HoldsForItsScope) {
  const auto semaphore = std::make_shared<Semaphore>(1);
  {
    const SemaphoreHold hold(semaphore);
    EXPECT_FALSE(isFree(*semaphore));
  }
  EXPECT_TRUE(isFree(*semaphore));
}

TEST(SemaphoreHold, SignalsWhenAnExceptionEndsTheScope) {
  const auto semaphore = std::make_shared<Semaphore>(1);
  try {
    const SemaphoreHold hold(semaphore);
    throw 1;
  } catch (int) {
  }
  EXPECT_TRUE(isFree(*semaphore));
}

TEST(SemaphoreHold, KeepsTheSemaphoreAlive) {
  auto semaphore = std::make_shared<Semaphore>(1);
  const std::weak_ptr<Semaphore> watched = semaphore;
  {
    const SemaphoreHold hold(semaphore);
    semaphore.reset();
    EXPECT_FALSE(watched.expired());
  }
  EXPECT_TRUE(watched.expired());
}

TEST(SemaphoreHold, OfANullPointerHoldsNothing) {
  // Fails by crashing, at either end of the scope.
  const SemaphoreHold hold(nullptr);
}

}  // namespace
}  // namespace VelWhiteBoard
