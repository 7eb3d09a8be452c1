#include "VelWhiteBoard/foundation/queue/operation_queue.h"

#include <functional>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/gate.h"

namespace VelWhiteBoard {
namespace {

static_assert(std::is_nothrow_destructible_v<OperationQueue>);
static_assert(!std::is_copy_constructible_v<OperationQueue>);
static_assert(!std::is_copy_assignable_v<OperationQueue>);

std::vector<int> upTo(int count) {
  std::vector<int> numbers(static_cast<std::size_t>(count));
  std::iota(numbers.begin(), numbers.end(), 0);
  return numbers;
}

// ---- Order

TEST(OperationQueue, RunsItsOperationsInTheOrderInWhichTheyWereAdded) {
  OperationQueue queue;
  std::vector<int> order;  // without a lock: one at a time
  for (int i = 0; i < 5000; ++i) queue.addOperationWithBlock([&order, i] { order.push_back(i); });
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(order, upTo(5000));
}

TEST(OperationQueue, AddingDoesNotWaitForTheOperation) {
  OperationQueue queue;
  Gate gate;
  bool hasRun = false;
  queue.addOperationWithBlock([&] {
    gate.pass();
    hasRun = true;
  });
  gate.open();  // reached only because adding returned first
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(hasRun);
}

TEST(OperationQueue, RunsItsOperationsOnAnotherThreadThanTheAdding) {
  OperationQueue queue;
  std::thread::id thread;
  queue.addOperationWithBlock([&] { thread = std::this_thread::get_id(); });
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_NE(thread, std::thread::id());
  EXPECT_NE(thread, std::this_thread::get_id());
}

TEST(OperationQueue, WorksOnAfterItWasIdle) {
  OperationQueue queue;
  int count = 0;
  for (int round = 1; round <= 1000; ++round) {
    queue.addOperationWithBlock([&] { ++count; });
    queue.waitUntilAllOperationsAreFinished();
    ASSERT_EQ(count, round);
  }
}

TEST(OperationQueue, AnOperationMayAddToItsOwnQueueAndIsNotOvertaken) {
  OperationQueue queue;
  Gate gate;
  std::vector<int> order;
  queue.addOperationWithBlock([&] {
    gate.pass();
    order.push_back(0);
    queue.addOperationWithBlock([&] { order.push_back(2); });
    order.push_back(1);
  });
  gate.open();
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(order, upTo(3));
}

TEST(OperationQueue, WaitingCoversWhatOperationsAdd) {
  OperationQueue queue;
  int depth = 0;
  std::function<void()> goDeeper = [&] {
    if (++depth < 1000) queue.addOperationWithBlock(goDeeper);
  };
  queue.addOperationWithBlock(goDeeper);
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(depth, 1000);
}

TEST(OperationQueue, WaitingOnAnEmptyQueueReturnsAtOnce) {
  OperationQueue queue;
  queue.waitUntilAllOperationsAreFinished();
  queue.addOperationWithBlock(nullptr);
  queue.waitUntilAllOperationsAreFinished();
}

// ---- Bad operations

TEST(OperationQueue, IgnoresANullFunction) {
  OperationQueue queue;
  int count = 0;
  queue.addOperationWithBlock([&] { ++count; });
  queue.addOperationWithBlock(nullptr);
  queue.addOperationWithBlock(std::function<void()>());
  queue.addOperationWithBlock([&] { ++count; });
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(count, 2);
}

TEST(OperationQueue, SwallowsWhatAnOperationThrowsAndGoesOn) {
  OperationQueue queue;
  int count = 0;
  queue.addOperationWithBlock([] { throw std::runtime_error("broken"); });
  queue.addOperationWithBlock([&] { ++count; });
  queue.addOperationWithBlock([] { throw 42; });
  queue.addOperationWithBlock([&] { ++count; });
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(count, 2);
}

TEST(OperationQueue, WaitingInsideAnOperationOfTheQueueReturnsAtOnce) {
  OperationQueue queue;
  std::vector<int> order;
  queue.addOperationWithBlock([&] {
    queue.addOperationWithBlock([&] { order.push_back(1); });
    queue.waitUntilAllOperationsAreFinished();
    order.push_back(0);
  });
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(order, upTo(2));
}

// ---- Lifetime

TEST(OperationQueue, DroppingAQueueCancelsNothing) {
  Gate gate;
  Gate done;
  std::vector<int> order;
  {
    OperationQueue queue;
    queue.addOperationWithBlock([&] { gate.pass(); });
    for (int i = 0; i < 100; ++i) queue.addOperationWithBlock([&, i] { order.push_back(i); });
    queue.addOperationWithBlock([&] { done.open(); });
  }
  gate.open();
  done.pass();
  EXPECT_EQ(order, upTo(100));
}

TEST(OperationQueue, MayBeDroppedByItsOwnOperation) {
  Gate gate;
  Gate done;
  auto queue = std::make_unique<OperationQueue>();
  queue->addOperationWithBlock([&] {
    gate.pass();
    queue.reset();
  });
  queue->addOperationWithBlock([&] { done.open(); });
  gate.open();
  done.pass();
  EXPECT_EQ(queue, nullptr);
}

TEST(OperationQueue, MayBeHeldByNothingButItsOperation) {
  auto queue = std::make_shared<OperationQueue>();
  const std::weak_ptr<OperationQueue> watched = queue;
  Gate gate;
  Gate done;
  OperationQueue& reference = *queue;
  reference.addOperationWithBlock([queue = std::move(queue), &gate] { gate.pass(); });
  reference.addOperationWithBlock([&] { done.open(); });
  EXPECT_FALSE(watched.expired());
  gate.open();
  done.pass();
  EXPECT_TRUE(watched.expired());
}

TEST(OperationQueue, ReleasesWhatAnOperationHoldsBeforeTheNextRuns) {
  OperationQueue queue;
  Gate gate;
  auto held = std::make_shared<int>(7);
  const std::weak_ptr<int> watched = held;
  bool wasReleased = false;
  queue.addOperationWithBlock([held = std::move(held), &gate] { gate.pass(); });
  queue.addOperationWithBlock([&] { wasReleased = watched.expired(); });
  EXPECT_FALSE(watched.expired());
  gate.open();
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(wasReleased);
}

TEST(OperationQueue, ReleasesWhatAnOperationHoldsBeforeItCountsAsFinished) {
  OperationQueue queue;
  for (int i = 0; i < 1000; ++i) {
    auto held = std::make_shared<int>(i);
    const std::weak_ptr<int> watched = held;
    queue.addOperationWithBlock([held = std::move(held)] {});
    queue.waitUntilAllOperationsAreFinished();
    ASSERT_TRUE(watched.expired()) << i;
  }
}

TEST(OperationQueue, ReleasesWhatAThrowingOperationHolds) {
  OperationQueue queue;
  auto held = std::make_shared<int>(7);
  const std::weak_ptr<int> watched = held;
  queue.addOperationWithBlock([held = std::move(held)] { throw std::runtime_error("broken"); });
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(watched.expired());
}

TEST(OperationQueue, WhatAnOperationHoldsMayWaitForTheQueueWhenReleased) {
  OperationQueue queue;
  bool hasReturned = false;
  const auto wait = [&](void*) {
    queue.waitUntilAllOperationsAreFinished();
    hasReturned = true;
  };
  queue.addOperationWithBlock([held = std::shared_ptr<void>(nullptr, wait)] {});
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(hasReturned);
}

}  // namespace
}  // namespace VelWhiteBoard
