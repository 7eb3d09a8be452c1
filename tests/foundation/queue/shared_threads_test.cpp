// The threads behind the queues: when they start, what happens when the system grants none, and
// their end. `QueueState` is what stands behind an `OperationQueue`; here it runs on threads of the
// test's own.
#include "VelWhiteBoard/foundation/queue/shared_threads.h"

#include <atomic>
#include <functional>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/queue/queue_state.h"

#include "tests/support/gate.h"

namespace VelWhiteBoard {
namespace {

/// Starts so many threads and no more, as a system does that has run out of them.
class Starter {
 public:
  explicit Starter(int available) : available_(available) {}
  SharedThreads::ThreadStarter function() {
    return [this](std::function<void()> work) {
      ++asked;
      if (asked > available_) {
        throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
      }
      return std::thread(std::move(work));
    };
  }

  std::atomic<int> asked{0};

 private:
  const int available_;
};

constexpr std::size_t kPlenty = 16;

void add(const std::shared_ptr<QueueState>& queue, std::function<void()> work) {
  queue->add(OperationQueue::makeOperation(std::move(work)));
}

bool isEnding(const SharedThreads& threads) {
  const MutexHold hold(SharedThreads::mutex);
  return threads.isEnding();
}

// ---- Threads

TEST(SharedThreads, StartsNoThreadBeforeThereIsWork) {
  Starter starter(16);
  SharedThreads threads(kPlenty, starter.function());
  const auto queue = std::make_shared<QueueState>(threads);
  EXPECT_EQ(starter.asked, 0);
  add(queue, [] {});
  queue->waitUntilIdle();
  EXPECT_EQ(starter.asked, 1);
}

TEST(SharedThreads, StartsAThreadForEachQueueThatWouldHaveToWait) {
  Starter starter(16);
  SharedThreads threads(kPlenty, starter.function());
  Gate gate;
  std::vector<std::shared_ptr<QueueState>> queues;
  for (int i = 0; i < 5; ++i) {
    queues.push_back(std::make_shared<QueueState>(threads));
    for (int k = 0; k < 10; ++k) add(queues.back(), [&] { gate.pass(); });
  }
  EXPECT_EQ(starter.asked, 5);
  gate.open();
  for (const auto& queue : queues) queue->waitUntilIdle();
}

TEST(SharedThreads, StartsNoThreadWhileAnotherIsFree) {
  Starter starter(1000);
  SharedThreads threads(1000, starter.function());
  constexpr int kRounds = 50;
  for (int i = 0; i < kRounds; ++i) {
    const auto queue = std::make_shared<QueueState>(threads);
    add(queue, [] {});
    queue->waitUntilIdle();
  }
  // One would do, but a thread that has just finished may not be back yet when the next queue
  // comes. That all of them are late every time is out of the question.
  EXPECT_LT(starter.asked, kRounds);
}

TEST(SharedThreads, KeepsToItsBoundAndServesTheRestWhenAThreadIsFree) {
  Starter starter(16);
  SharedThreads threads(2, starter.function());
  Meeting begun(3);
  Gate gate;
  const auto first = std::make_shared<QueueState>(threads);
  const auto second = std::make_shared<QueueState>(threads);
  const auto third = std::make_shared<QueueState>(threads);
  for (const auto& queue : {first, second}) {
    add(queue, [&] {
      begun.arrive();
      gate.pass();
    });
  }
  begun.arrive();
  std::atomic<bool> hasRun{false};
  add(third, [&] { hasRun = true; });
  EXPECT_EQ(starter.asked, 2);
  EXPECT_FALSE(hasRun);  // cannot: both threads stand at the gate
  gate.open();
  third->waitUntilIdle();
  EXPECT_TRUE(hasRun);
  first->waitUntilIdle();
  second->waitUntilIdle();
}

TEST(SharedThreads, TakeOneOperationOfAQueueAndThenTheNextQueue) {
  SharedThreads threads(1);
  Gate gate;
  const auto longOne = std::make_shared<QueueState>(threads);
  const auto shortOne = std::make_shared<QueueState>(threads);
  int longCount = 0;
  int longCountSeen = -1;
  add(longOne, [&] { gate.pass(); });
  for (int i = 0; i < 1000; ++i) add(longOne, [&] { ++longCount; });
  add(shortOne, [&] { longCountSeen = longCount; });  // one thread only: no race
  gate.open();
  longOne->waitUntilIdle();
  shortOne->waitUntilIdle();
  EXPECT_EQ(longCount, 1000);
  EXPECT_EQ(longCountSeen, 0);  // the turn of the long one was the operation at the gate
}

// ---- Without threads

TEST(QueueState, RunsOnTheCallersThreadWhenNoThreadStarts) {
  Starter starter(0);
  SharedThreads threads(kPlenty, starter.function());
  const auto queue = std::make_shared<QueueState>(threads);
  std::thread::id thread;
  add(queue, [&] { thread = std::this_thread::get_id(); });
  EXPECT_EQ(thread, std::this_thread::get_id());
  EXPECT_EQ(starter.asked, 1);
}

TEST(QueueState, KeepsItsOrderOnTheCallersThread) {
  Starter starter(0);
  SharedThreads threads(kPlenty, starter.function());
  const auto queue = std::make_shared<QueueState>(threads);
  std::vector<int> order;
  add(queue, [&] {
    add(queue, [&] { order.push_back(1); });
    queue->waitUntilIdle();
    order.push_back(0);
  });
  add(queue, [&] { order.push_back(2); });
  EXPECT_EQ(order, (std::vector<int>{0, 1, 2}));
}

TEST(QueueState, MayWaitOnTheCallersThreadForAnotherQueue) {
  Starter starter(0);
  SharedThreads threads(kPlenty, starter.function());
  const auto first = std::make_shared<QueueState>(threads);
  const auto second = std::make_shared<QueueState>(threads);
  std::vector<int> order;
  add(first, [&] {
    add(second, [&] { order.push_back(0); });
    second->waitUntilIdle();
    order.push_back(1);
  });
  EXPECT_EQ(order, (std::vector<int>{0, 1}));
}

TEST(QueueState, QueuesThatAddToOneAnotherOnTheCallersThreadDoNotPileUpOnTheStack) {
  Starter starter(0);
  SharedThreads threads(kPlenty, starter.function());
  constexpr int kDepth = 50'000;  // nested calls of this depth would leave any usual stack
  const std::shared_ptr<QueueState> queues[] = {std::make_shared<QueueState>(threads),
                                                std::make_shared<QueueState>(threads)};
  int count = 0;
  std::function<void()> addToOther = [&] {
    if (++count < kDepth) add(queues[count % 2], addToOther);
  };
  add(queues[0], addToOther);
  EXPECT_EQ(count, kDepth);
}

TEST(QueueState, MakesDoWithTheThreadsThatStart) {
  Starter starter(1);
  SharedThreads threads(kPlenty, starter.function());
  Gate gate;
  const auto first = std::make_shared<QueueState>(threads);
  const auto second = std::make_shared<QueueState>(threads);
  std::thread::id firstThread;
  std::thread::id secondThread;
  add(first, [&] {
    gate.pass();
    firstThread = std::this_thread::get_id();
  });
  add(second, [&] { secondThread = std::this_thread::get_id(); });
  gate.open();
  first->waitUntilIdle();
  second->waitUntilIdle();
  EXPECT_EQ(starter.asked, 2);
  EXPECT_EQ(firstThread, secondThread);
  EXPECT_NE(firstThread, std::this_thread::get_id());
}

TEST(QueueState, TriesAgainToStartAThreadWhenThereIsNewWork) {
  Starter starter(0);
  SharedThreads threads(kPlenty, starter.function());
  const auto queue = std::make_shared<QueueState>(threads);
  add(queue, [] {});
  add(queue, [] {});
  EXPECT_EQ(starter.asked, 2);
}

// ---- The end

TEST(SharedThreads, DrainingRunsEverythingThatWasAdded) {
  SharedThreads threads(2);
  std::atomic<int> count{0};
  for (int i = 0; i < 50; ++i) {
    const auto queue = std::make_shared<QueueState>(threads);
    for (int k = 0; k < 20; ++k) {
      add(queue, [&count, queue] {
        ++count;
        add(queue, [&count] { ++count; });
      });
    }
  }
  threads.drain();
  EXPECT_EQ(count, 50 * 20 * 2);
}

TEST(SharedThreads, DrainingRunsWhatIsAddedWhileTheOnlyThreadIsBusy) {
  SharedThreads threads(1);
  const auto busy = std::make_shared<QueueState>(threads);
  const auto other = std::make_shared<QueueState>(threads);
  Gate hasBegun;
  Gate hasRun;
  add(busy, [&] {
    hasBegun.open();
    while (!isEnding(threads)) std::this_thread::yield();
    // The draining thread waits by now: it holds the lock until it does.
    add(other, [&] { hasRun.open(); });
    hasRun.pass();
  });
  hasBegun.pass();
  threads.drain();
  hasRun.pass();
}

TEST(SharedThreads, DrainingRunsEvenWhatSomebodyWantsToTakeBack) {
  SharedThreads threads(1);
  const auto busy = std::make_shared<QueueState>(threads);
  bool hasRun = false;
  const auto operation = OperationQueue::makeOperation([&] { hasRun = true; });
  Gate hasBegun;
  bool isTakenBack = true;
  add(busy, [&] {
    hasBegun.open();
    while (!isEnding(threads)) std::this_thread::yield();
    isTakenBack = busy->remove(operation);
  });
  hasBegun.pass();
  busy->add(operation);
  threads.drain();
  EXPECT_FALSE(isTakenBack);
  EXPECT_TRUE(hasRun);
}

TEST(SharedThreads, DrainingThreadsThatNeverWorkedReturns) {
  SharedThreads threads;
  threads.drain();
  threads.drain();
}

TEST(SharedThreads, AfterDrainingOperationsRunAtOnceOnTheCallersThread) {
  Starter starter(16);
  SharedThreads threads(kPlenty, starter.function());
  const auto queue = std::make_shared<QueueState>(threads);
  add(queue, [] {});
  threads.drain();
  std::thread::id thread;
  add(queue, [&] { thread = std::this_thread::get_id(); });
  EXPECT_EQ(thread, std::this_thread::get_id());
  queue->waitUntilIdle();
  EXPECT_EQ(starter.asked, 1);
}

TEST(SharedThreads, TheirDestructionDrainsThem) {
  int count = 0;
  {
    SharedThreads threads;
    const auto queue = std::make_shared<QueueState>(threads);
    for (int i = 0; i < 100; ++i) add(queue, [&] { ++count; });
  }
  EXPECT_EQ(count, 100);
}

TEST(SharedThreads, AfterTheEndWhatAnOperationAddsRunsBehindItBeforeTheCallReturns) {
  SharedThreads threads;
  const auto first = std::make_shared<QueueState>(threads);
  const auto second = std::make_shared<QueueState>(threads);
  threads.drain();
  std::vector<int> order;
  add(first, [&] {
    add(second, [&] { order.push_back(1); });
    add(first, [&] { order.push_back(2); });
    order.push_back(0);
  });
  EXPECT_EQ(order.size(), 3U);
  EXPECT_EQ(order.front(), 0);
}

TEST(SharedThreads, AfterTheEndAddingReturnsThoughTheOperationAddsItselfForEver) {
  SharedThreads threads;
  const auto queue = std::make_shared<QueueState>(threads);
  threads.drain();
  bool isOver = false;
  std::function<void()> addAgain = [&] {
    if (!isOver) add(queue, addAgain);
  };
  add(queue, addAgain);
  isOver = true;
  queue->waitUntilIdle();
}

}  // namespace
}  // namespace VelWhiteBoard
