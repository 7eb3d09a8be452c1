#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/queue/operation_queue.h"

#include "tests/support/together.h"

namespace VelWhiteBoard {
namespace {

constexpr int kThreads = 4;

TEST(OperationQueueConcurrency, OperationsOfManyThreadsRunOneAtATimeAndEachThreadsInItsOrder) {
  OperationQueue queue;
  std::vector<std::pair<int, int>> order;  // without a lock: one at a time
  together(kThreads, [&](int thread) {
    for (int i = 0; i < 2000; ++i) {
      queue.addOperationWithBlock([&order, thread, i] { order.emplace_back(thread, i); });
    }
  });
  queue.waitUntilAllOperationsAreFinished();
  ASSERT_EQ(order.size(), 8000U);
  std::array<int, kThreads> next{};
  for (const auto& [thread, i] : order) {
    ASSERT_EQ(i, next[static_cast<std::size_t>(thread)]++) << "thread " << thread;
  }
}

TEST(OperationQueueConcurrency, WhoeverWaitsSeesWhatHeAddedBeforeDone) {
  OperationQueue queue;
  std::array<int, kThreads> counts{};
  std::atomic<int> wrong{0};
  together(kThreads, [&](int thread) {
    int& count = counts[static_cast<std::size_t>(thread)];
    for (int i = 1; i <= 500; ++i) {
      queue.addOperationWithBlock([&count] { ++count; });
      queue.waitUntilAllOperationsAreFinished();
      if (count != i) ++wrong;
    }
  });
  EXPECT_EQ(wrong, 0);
}

TEST(OperationQueueConcurrency, ChangingTheCountLosesNothing) {
  OperationQueue queue;
  std::atomic<int> count{0};
  together(kThreads, [&](int thread) {
    for (int i = 0; i < 2000; ++i) {
      if (thread == 0) {
        queue.setMaxConcurrentOperationCount(i % 5);
      } else {
        queue.addOperationWithBlock([&] { ++count; });
      }
    }
  });
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(count, 6000);
}

TEST(OperationQueueConcurrency, EachOperationEitherRunsOrIsRemoved) {
  constexpr int kOperations = 2000;
  OperationQueue queue;
  std::atomic<int> ran{0};
  std::atomic<int> removed{0};
  std::vector<OperationQueue::OperationPtr> operations;
  for (int i = 0; i < kOperations; ++i) {
    operations.push_back(OperationQueue::makeOperation([&] {
      OperationQueue::reportProgress();
      ++ran;
    }));
  }
  together(kThreads, [&](int thread) {
    for (const auto& operation : operations) {
      if (thread % 2 == 0) {
        queue.addOperation(operation);  // one of the two threads is the first
      } else if (queue.removeOperation(operation)) {
        ++removed;
      }
      static_cast<void>(queue.progress());
    }
  });
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(ran + removed, kOperations);
}

TEST(OperationQueueConcurrency, QueuesMayComeAndGoOnEveryThread) {
  constexpr int kQueues = 300;
  std::atomic<int> count{0};
  together(kThreads, [&](int) {
    for (int i = 0; i < kQueues; ++i) {
      auto queue = std::make_shared<OperationQueue>();
      OperationQueue& reference = *queue;
      reference.addOperationWithBlock([&] { ++count; });
      // Whichever of the two comes last drops the queue.
      reference.addOperationWithBlock([queue, &count] { ++count; });
    }
  });
  while (count < kThreads * kQueues * 2) std::this_thread::yield();
  EXPECT_EQ(count, kThreads * kQueues * 2);
}

TEST(OperationQueueConcurrency, OperationsMayAddToAndWaitForOtherQueues) {
  // Queue k waits only for queue k + 1, so nobody waits in a circle.
  std::vector<OperationQueue> queues(kThreads + 1);
  int last = 0;
  together(kThreads, [&](int thread) {
    OperationQueue& own = queues[static_cast<std::size_t>(thread)];
    OperationQueue& next = queues[static_cast<std::size_t>(thread) + 1];
    for (int i = 0; i < 200; ++i) {
      own.addOperationWithBlock([&] {
        next.addOperationWithBlock(
            [&queues, &last] { queues.back().addOperationWithBlock([&last] { ++last; }); });
        next.waitUntilAllOperationsAreFinished();
      });
    }
  });
  for (OperationQueue& queue : queues) queue.waitUntilAllOperationsAreFinished();
  queues.back().waitUntilAllOperationsAreFinished();
  EXPECT_EQ(last, kThreads * 200);
}

TEST(OperationQueueConcurrency, EveryOperationMayMeetEveryOther) {
  constexpr int kRounds = 500;
  std::mutex mutex;
  auto shared = std::make_shared<OperationQueue>();
  const auto current = [&] {
    const std::lock_guard<std::mutex> hold(mutex);
    return shared;
  };
  std::atomic<int> added{0};
  std::atomic<int> done{0};
  const auto add = [&](OperationQueue& queue) {
    ++added;
    queue.addOperationWithBlock([&] { ++done; });
  };
  together(2 * kThreads, [&](int thread) {
    for (int i = 0; i < kRounds; ++i) {
      const auto queue = current();
      switch ((i + thread) % 7) {
        case 0:
          queue->setMaxConcurrentOperationCount(i % 5);
          break;
        case 1:
          queue->waitUntilAllOperationsAreFinished();
          break;
        case 2: {
          auto fresh = std::make_shared<OperationQueue>();
          const std::lock_guard<std::mutex> hold(mutex);
          std::swap(shared, fresh);
          break;
        }
        case 3:
          ++added;
          queue->addOperationWithBlock([&, inner = current()] {
            add(*inner);
            ++done;
          });
          break;
        case 4:
          ++added;
          queue->addOperationWithBlock([&, queue] {
            queue->waitUntilAllOperationsAreFinished();  // its own: it returns at once
            ++done;
          });
          break;
        default:
          add(*queue);
      }
    }
  });
  while (done < added) std::this_thread::yield();
  EXPECT_GT(done, 2 * kThreads * kRounds / 2);
}

}  // namespace
}  // namespace VelWhiteBoard
