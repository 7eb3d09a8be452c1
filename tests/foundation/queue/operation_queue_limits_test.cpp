// More than one operation at a time, and more than one queue.
#include <algorithm>
#include <atomic>
#include <cstddef>
#include <functional>
#include <limits>
#include <numeric>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/queue/operation_queue.h"
#include "VelWhiteBoard/foundation/queue/shared_threads.h"

#include "tests/support/gate.h"

namespace VelWhiteBoard {
namespace {

std::vector<int> numbersUpTo(int count) {
  std::vector<int> numbers(static_cast<std::size_t>(count));
  std::iota(numbers.begin(), numbers.end(), 0);
  return numbers;
}

// ---- More than one at a time

TEST(OperationQueueLimits, RunsAsManyAtATimeAsItIsTold) {
  OperationQueue queue;
  queue.setMaxConcurrentOperationCount(3);
  Meeting meeting(3);  // ends only when three operations are inside at once
  for (int i = 0; i < 3; ++i) queue.addOperationWithBlock([&] { meeting.arrive(); });
  queue.waitUntilAllOperationsAreFinished();
}

TEST(OperationQueueLimits, NeverRunsMoreAtATimeThanItIsTold) {
  for (const int limit : {1, 2, 3}) {
    OperationQueue queue;
    queue.setMaxConcurrentOperationCount(limit);
    std::atomic<int> running{0};
    std::atomic<int> most{0};
    for (int i = 0; i < 3000; ++i) {
      queue.addOperationWithBlock([&] {
        const int now = ++running;
        int seen = most;
        while (seen < now && !most.compare_exchange_weak(seen, now)) {
        }
        std::this_thread::yield();
        --running;
      });
    }
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_LE(most, limit);
    EXPECT_GE(most, 1);
  }
}

TEST(OperationQueueLimits, TakesACountBelowOneAsOne) {
  for (const int count : {0, -1, std::numeric_limits<int>::min()}) {
    OperationQueue queue;
    queue.setMaxConcurrentOperationCount(4);
    queue.setMaxConcurrentOperationCount(count);
    std::vector<int> order;
    for (int i = 0; i < 1000; ++i) queue.addOperationWithBlock([&, i] { order.push_back(i); });
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(order, numbersUpTo(1000)) << count;
  }
}

TEST(OperationQueueLimits, TakesTheHighestCountThereIs) {
  OperationQueue queue;
  queue.setMaxConcurrentOperationCount(std::numeric_limits<int>::max());
  std::atomic<int> count{0};
  for (int i = 0; i < 1000; ++i) queue.addOperationWithBlock([&] { ++count; });
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(count, 1000);
}

TEST(OperationQueueLimits, AHigherCountStartsWhatAlreadyWaits) {
  OperationQueue queue;
  Gate gate;
  queue.addOperationWithBlock([&] { gate.pass(); });
  queue.addOperationWithBlock([&] { gate.open(); });
  queue.setMaxConcurrentOperationCount(2);
  queue.waitUntilAllOperationsAreFinished();
}

TEST(OperationQueueLimits, ALowerCountHoldsForWhatHasNotBegun) {
  OperationQueue queue;
  queue.setMaxConcurrentOperationCount(2);
  Meeting begun(3);
  Gate gate;
  for (int i = 0; i < 2; ++i) {
    queue.addOperationWithBlock([&] {
      begun.arrive();
      gate.pass();
    });
  }
  begun.arrive();
  queue.setMaxConcurrentOperationCount(1);
  std::atomic<bool> isAlone{true};
  std::atomic<int> running{0};
  for (int i = 0; i < 500; ++i) {
    queue.addOperationWithBlock([&] {
      if (++running > 1) isAlone = false;
      std::this_thread::yield();
      --running;
    });
  }
  gate.open();
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(isAlone);
}

// ---- Many queues

TEST(OperationQueueLimits, QueuesThatHangDoNotHoldUpAnother) {
  Gate gate;
  std::vector<OperationQueue> hanging(SharedThreads::kMaxThreads - 1);
  for (OperationQueue& queue : hanging) queue.addOperationWithBlock([&] { gate.pass(); });
  OperationQueue queue;
  bool hasRun = false;
  queue.addOperationWithBlock([&] { hasRun = true; });
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(hasRun);
  gate.open();
  for (OperationQueue& each : hanging) each.waitUntilAllOperationsAreFinished();
}

TEST(OperationQueueLimits, AQueueWaitsForAThreadWhileOtherQueuesHaveThemAll) {
  Gate gate;
  Meeting begun(SharedThreads::kMaxThreads + 1);
  std::vector<OperationQueue> hanging(SharedThreads::kMaxThreads);
  for (OperationQueue& queue : hanging) {
    queue.addOperationWithBlock([&] {
      begun.arrive();
      gate.pass();
    });
  }
  begun.arrive();
  OperationQueue queue;
  EXPECT_FALSE(queue.isWaitingForThread()) << "it has nothing to do";
  queue.addOperationWithBlock([] {});
  EXPECT_TRUE(queue.isWaitingForThread());
  hanging.front().addOperationWithBlock([] {});
  EXPECT_FALSE(hanging.front().isWaitingForThread()) << "it waits for its own operation";
  gate.open();
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_FALSE(queue.isWaitingForThread());
  for (OperationQueue& each : hanging) each.waitUntilAllOperationsAreFinished();
}

TEST(OperationQueueLimits, MoreQueuesMayHangThanThereAreThreadsAndComeBack) {
  Gate gate;
  std::atomic<int> count{0};
  std::vector<OperationQueue> queues(100);
  for (OperationQueue& queue : queues) {
    queue.addOperationWithBlock([&] {
      gate.pass();
      ++count;
    });
  }
  gate.open();
  for (OperationQueue& queue : queues) queue.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(count, 100);
}

TEST(OperationQueueLimits, TenThousandQueuesKeepTheirOrder) {
  constexpr int kOperations = 3;
  std::vector<OperationQueue> queues(10'000);
  std::vector<std::vector<int>> orders(queues.size());
  for (int i = 0; i < kOperations; ++i) {
    for (std::size_t at = 0; at < queues.size(); ++at) {
      queues[at].addOperationWithBlock([&orders, at, i] { orders[at].push_back(i); });
    }
  }
  for (OperationQueue& queue : queues) queue.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(std::count(orders.begin(), orders.end(), numbersUpTo(kOperations)), 10'000);
}

TEST(OperationQueueLimits, OperationsOfManyQueuesMayWaitForOneQueueThatHasYetToRun) {
  // More waiting operations than threads: they have to run what they wait for themselves.
  OperationQueue awaited;
  std::vector<OperationQueue> queues(64);
  Gate allAdded;
  int done = 0;
  std::atomic<int> seen{0};
  awaited.addOperationWithBlock([&] { allAdded.pass(); });
  for (OperationQueue& queue : queues) {
    queue.addOperationWithBlock([&] {
      awaited.addOperationWithBlock([&] { ++done; });
      awaited.waitUntilAllOperationsAreFinished();
      ++seen;
    });
  }
  allAdded.open();
  for (OperationQueue& queue : queues) queue.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(done, 64);
  EXPECT_EQ(seen, 64);
}

TEST(OperationQueueLimits, AChainOfQueuesLongerThanThereAreThreadsMayWaitForOneAnother) {
  std::vector<OperationQueue> queues(100);
  int depth = 0;
  std::function<void(std::size_t)> descend = [&](std::size_t at) {
    ++depth;
    if (at + 1 == queues.size()) return;
    queues[at + 1].addOperationWithBlock([&descend, at] { descend(at + 1); });
    queues[at + 1].waitUntilAllOperationsAreFinished();
  };
  queues[0].addOperationWithBlock([&] { descend(0); });
  queues[0].waitUntilAllOperationsAreFinished();
  EXPECT_EQ(depth, 100);
}

}  // namespace
}  // namespace VelWhiteBoard
