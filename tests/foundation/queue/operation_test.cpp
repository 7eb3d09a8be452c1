// Operations that are made before they are added: adding, removing, and what a queue tells of them.
#include <atomic>
#include <cstdint>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/queue/operation_queue.h"
#include "VelWhiteBoard/foundation/queue/queue_state.h"
#include "VelWhiteBoard/foundation/queue/shared_threads.h"

#include "tests/support/gate.h"

namespace VelWhiteBoard {
namespace {

using OperationPtr = OperationQueue::OperationPtr;

static_assert(noexcept(std::declval<OperationQueue&>().addOperation(OperationPtr())));
static_assert(noexcept(std::declval<OperationQueue&>().removeOperation(OperationPtr())));

/// A queue whose only turn is taken until the gate opens, so that what is added waits.
class BlockedQueue {
 public:
  BlockedQueue() {
    queue_.addOperationWithBlock([this] {
      begun_.open();
      gate_.pass();
    });
    begun_.pass();
  }
  ~BlockedQueue() { finish(); }
  BlockedQueue(const BlockedQueue&) = delete;
  BlockedQueue& operator=(const BlockedQueue&) = delete;

  OperationQueue& queue() { return queue_; }
  /// Lets everything run that waits.
  void finish() {
    gate_.open();
    queue_.waitUntilAllOperationsAreFinished();
  }

 private:
  Gate begun_;
  Gate gate_;
  OperationQueue queue_;
};

// ---- Adding

TEST(Operation, RunsWhenItHasBeenAddedAndNotBefore) {
  OperationQueue queue;
  bool hasRun = false;
  const OperationPtr operation = OperationQueue::makeOperation([&] { hasRun = true; });
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_FALSE(hasRun);
  queue.addOperation(operation);
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(hasRun);
}

TEST(Operation, IsNullWhenItsFunctionIs) {
  EXPECT_EQ(OperationQueue::makeOperation(nullptr), nullptr);
}

TEST(Operation, IsIgnoredWhenItIsNull) {
  OperationQueue queue;
  queue.addOperation(nullptr);
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(queue.progress(), OperationQueue().progress());
}

TEST(Operation, RunsOnceHoweverOftenItIsAdded) {
  BlockedQueue blocked;
  int count = 0;
  const OperationPtr operation = OperationQueue::makeOperation([&] { ++count; });
  blocked.queue().addOperation(operation);
  blocked.queue().addOperation(operation);
  OperationQueue().addOperation(operation);
  blocked.finish();
  blocked.queue().addOperation(operation);
  blocked.queue().waitUntilAllOperationsAreFinished();
  EXPECT_EQ(count, 1);
}

TEST(Operation, RunsBehindWhatWasAddedBeforeByWhicheverCall) {
  OperationQueue queue;
  std::vector<int> order;
  const OperationPtr last = OperationQueue::makeOperation([&] { order.push_back(2); });
  const OperationPtr second = OperationQueue::makeOperation([&] { order.push_back(1); });
  queue.addOperationWithBlock([&] { order.push_back(0); });
  queue.addOperation(second);
  queue.addOperation(last);
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(order, (std::vector<int>{0, 1, 2}));
}

TEST(Operation, ReleasesWhatItHoldsWhenItIsNeverAdded) {
  auto held = std::make_shared<int>(7);
  const std::weak_ptr<int> watched = held;
  OperationPtr operation = OperationQueue::makeOperation([held = std::move(held)] {});
  EXPECT_FALSE(watched.expired());
  operation.reset();
  EXPECT_TRUE(watched.expired());
}

TEST(Operation, ReleasesWhatItHoldsWhenItHasRunThoughItIsStillReferredTo) {
  OperationQueue queue;
  auto held = std::make_shared<int>(7);
  const std::weak_ptr<int> watched = held;
  const OperationPtr operation = OperationQueue::makeOperation([held = std::move(held)] {});
  queue.addOperation(operation);
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(watched.expired());
}

// ---- Removing

TEST(Operation, DoesNotRunWhenItIsRemovedAndTheOthersKeepTheirOrder) {
  BlockedQueue blocked;
  std::vector<OperationPtr> operations;
  std::vector<int> order;
  for (int i = 0; i < 5; ++i) {
    operations.push_back(OperationQueue::makeOperation([&, i] { order.push_back(i); }));
    blocked.queue().addOperation(operations.back());
  }
  for (const std::size_t at : {0U, 2U, 4U}) {
    EXPECT_TRUE(blocked.queue().removeOperation(operations[at])) << at;
  }
  blocked.finish();
  EXPECT_EQ(order, (std::vector<int>{1, 3}));
}

TEST(Operation, IsRemovedOnceAndNotAddedAgain) {
  BlockedQueue blocked;
  bool hasRun = false;
  const OperationPtr operation = OperationQueue::makeOperation([&] { hasRun = true; });
  blocked.queue().addOperation(operation);
  EXPECT_TRUE(blocked.queue().removeOperation(operation));
  EXPECT_FALSE(blocked.queue().removeOperation(operation));
  blocked.queue().addOperation(operation);
  blocked.finish();
  EXPECT_FALSE(hasRun);
}

TEST(Operation, IsNotRemovedWhileItRuns) {
  OperationQueue queue;
  Gate begun;
  Gate gate;
  const OperationPtr operation = OperationQueue::makeOperation([&] {
    begun.open();
    gate.pass();
  });
  queue.addOperation(operation);
  begun.pass();
  EXPECT_FALSE(queue.removeOperation(operation));
  gate.open();
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_FALSE(queue.removeOperation(operation));  // nor when it has run
}

TEST(Operation, IsRemovedOnlyFromTheQueueInWhichItWaits) {
  BlockedQueue blocked;
  OperationQueue other;
  bool hasRun = false;
  const OperationPtr operation = OperationQueue::makeOperation([&] { hasRun = true; });
  EXPECT_FALSE(blocked.queue().removeOperation(operation));
  blocked.queue().addOperation(operation);
  EXPECT_FALSE(other.removeOperation(operation));
  EXPECT_FALSE(blocked.queue().removeOperation(nullptr));
  blocked.finish();
  EXPECT_TRUE(hasRun);
}

TEST(Operation, ReleasesWhatItHoldsWithItsLastReferenceWhenItWasRemoved) {
  BlockedQueue blocked;
  auto held = std::make_shared<int>(7);
  const std::weak_ptr<int> watched = held;
  OperationPtr operation = OperationQueue::makeOperation([held = std::move(held)] {});
  blocked.queue().addOperation(operation);
  EXPECT_TRUE(blocked.queue().removeOperation(operation));
  EXPECT_FALSE(watched.expired());
  operation.reset();
  EXPECT_TRUE(watched.expired());
}

TEST(Operation, MayRemoveTheOneBehindIt) {
  BlockedQueue blocked;
  bool wasRemoved = false;
  bool hasRun = false;
  const OperationPtr next = OperationQueue::makeOperation([&] { hasRun = true; });
  blocked.queue().addOperationWithBlock(
      [&] { wasRemoved = blocked.queue().removeOperation(next); });
  blocked.queue().addOperation(next);
  blocked.finish();
  EXPECT_TRUE(wasRemoved);
  EXPECT_FALSE(hasRun);
}

TEST(Operation, IsNoLongerWaitedForWhenItIsRemoved) {
  Gate gate;  // outlives the thread that passes it
  // The only thread is blocked, so nothing but the removal can end the wait.
  SharedThreads threads(1);
  const auto blocked = std::make_shared<QueueState>(threads);
  blocked->add(OperationQueue::makeOperation([&] { gate.pass(); }));
  for (int round = 0; round < 200; ++round) {
    const auto queue = std::make_shared<QueueState>(threads);
    const OperationPtr operation = OperationQueue::makeOperation([] {});
    queue->add(operation);
    Gate begun;
    std::thread waiting([&] {
      begun.open();
      queue->waitUntilIdle();
    });
    begun.pass();
    EXPECT_TRUE(queue->remove(operation));
    waiting.join();
  }
  gate.open();
}

// ---- Progress

TEST(Progress, ChangesWhenAnOperationEnds) {
  OperationQueue queue;
  const std::uint64_t before = queue.progress();
  queue.addOperationWithBlock([] {});
  queue.waitUntilAllOperationsAreFinished();
  const std::uint64_t after = queue.progress();
  EXPECT_NE(after, before);
  queue.addOperationWithBlock([] { throw std::runtime_error("broken"); });
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_NE(queue.progress(), after);
}

TEST(Progress, StaysWhileAnOperationHangsAndOthersAreAdded) {
  BlockedQueue blocked;
  const std::uint64_t before = blocked.queue().progress();
  blocked.queue().addOperationWithBlock([] {});
  EXPECT_EQ(blocked.queue().progress(), before);
}

TEST(Progress, ChangesWhenARunningOperationReportsIt) {
  OperationQueue queue;
  bool hasChanged = false;
  queue.addOperationWithBlock([&] {
    const std::uint64_t before = queue.progress();
    OperationQueue::reportProgress();
    hasChanged = queue.progress() != before;
  });
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(hasChanged);
}

TEST(Progress, IsReportedForTheQueueOfTheOperationOnly) {
  OperationQueue outer;
  OperationQueue inner;
  BlockedQueue other;
  const std::uint64_t othersBefore = other.queue().progress();
  std::uint64_t outerBefore = 0;
  std::uint64_t outerAfter = 0;
  outer.addOperationWithBlock([&] {
    outerBefore = outer.progress();
    inner.addOperationWithBlock([] { OperationQueue::reportProgress(); });
    inner.waitUntilAllOperationsAreFinished();  // runs it on this thread or on another
    outerAfter = outer.progress();
  });
  outer.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(outerAfter, outerBefore);
  EXPECT_EQ(other.queue().progress(), othersBefore);
}

TEST(Progress, IsNotReportedOutsideAnOperation) {
  OperationQueue queue;
  queue.addOperationWithBlock([] {});
  queue.waitUntilAllOperationsAreFinished();
  const std::uint64_t before = queue.progress();
  OperationQueue::reportProgress();
  EXPECT_EQ(queue.progress(), before);
}

// ---- Being inside

TEST(OperationQueue, KnowsWhetherTheCallingThreadIsInsideAnOperationOfIt) {
  OperationQueue queue;
  OperationQueue other;
  bool isInside = false;
  bool isInsideOther = true;
  EXPECT_FALSE(queue.isThisThreadInside());
  queue.addOperationWithBlock([&] {
    isInside = queue.isThisThreadInside();
    isInsideOther = other.isThisThreadInside();
  });
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(isInside);
  EXPECT_FALSE(isInsideOther);
  EXPECT_FALSE(queue.isThisThreadInside());
}

TEST(OperationQueue, TellsThatAThreadIsInsideWhileItRunsAnotherQueuesOperationThere) {
  SharedThreads threads(1);  // so that whoever waits runs the other queue itself
  const auto outer = std::make_shared<QueueState>(threads);
  const auto inner = std::make_shared<QueueState>(threads);
  bool isInsideBoth = false;
  outer->add(OperationQueue::makeOperation([&] {
    inner->add(OperationQueue::makeOperation(
        [&] { isInsideBoth = inner->isThisThreadInside() && outer->isThisThreadInside(); }));
    inner->waitUntilIdle();
  }));
  outer->waitUntilIdle();
  EXPECT_TRUE(isInsideBoth);
}

}  // namespace
}  // namespace VelWhiteBoard
