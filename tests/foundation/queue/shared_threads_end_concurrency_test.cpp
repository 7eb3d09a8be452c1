// The end of the shared threads while other threads go on adding and waiting.
#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/queue/operation_queue.h"
#include "VelWhiteBoard/foundation/queue/queue_state.h"
#include "VelWhiteBoard/foundation/queue/shared_threads.h"

#include "tests/support/gate.h"

namespace VelWhiteBoard {
namespace {

void add(const std::shared_ptr<QueueState>& queue, std::function<void()> work) {
  queue->add(OperationQueue::makeOperation(std::move(work)));
}

/// Runs what is left in a queue after the end, once its operations add no more.
void runTheRest(const std::shared_ptr<QueueState>& queue) {
  // The operation that runs during the first round may have been about to add one more.
  for (int round = 0; round < 2; ++round) {
    add(queue, [] {});  // runs here, and what is left before it
    queue->waitUntilIdle();
  }
}

/// Drains on a thread of its own, and lets the test go on once that has begun.
class Draining {
 public:
  explicit Draining(SharedThreads& threads) : thread_([&threads] { threads.drain(); }) {
    const auto queue = std::make_shared<QueueState>(threads);
    std::thread::id ranOn;
    while (ranOn != std::this_thread::get_id()) {  // before the end it runs on another
      add(queue, [&] { ranOn = std::this_thread::get_id(); });
      queue->waitUntilIdle();
    }
  }
  ~Draining() { finish(); }
  Draining(const Draining&) = delete;
  Draining& operator=(const Draining&) = delete;

  void finish() {
    if (thread_.joinable()) thread_.join();
  }

 private:
  std::thread thread_;
};

/// Threads at whose end an operation waits at a gate, so that the end has begun and is not over.
class LongEnd : public ::testing::Test {
 protected:
  LongEnd() {
    add(busy_, [this] { gate_.pass(); });
  }
  ~LongEnd() override { gate_.open(); }

  Gate gate_;
  SharedThreads threads_{2};
  const std::shared_ptr<QueueState> busy_ = std::make_shared<QueueState>(threads_);
  const std::shared_ptr<QueueState> idle_ = std::make_shared<QueueState>(threads_);
};

TEST_F(LongEnd, WhatAnotherThreadAddsRunsThereBeforeTheCallReturns) {
  Draining draining(threads_);
  std::thread::id ranOn;
  add(idle_, [&] { ranOn = std::this_thread::get_id(); });
  EXPECT_EQ(ranOn, std::this_thread::get_id());
  gate_.open();
}

TEST_F(LongEnd, WhatAnotherThreadAddsToABusyQueueRunsBehindWhatItHas) {
  std::vector<int> order;
  add(busy_, [&] { order.push_back(0); });
  Draining draining(threads_);
  add(busy_, [&] { order.push_back(1); });
  add(busy_, [&] { order.push_back(2); });
  gate_.open();
  draining.finish();
  busy_->waitUntilIdle();
  EXPECT_EQ(order, (std::vector<int>{0, 1, 2}));
}

TEST_F(LongEnd, DoesNotWaitForAnOperationThatAnotherThreadAddsAndRuns) {
  Draining draining(threads_);
  Gate begun;
  Gate late;
  std::thread other([&] {
    add(idle_, [&] {
      begun.open();
      late.pass();
    });
  });
  begun.pass();
  gate_.open();
  draining.finish();
  late.open();
  other.join();
}

TEST_F(LongEnd, ComesThoughAnotherThreadGoesOnAddingToABusyQueue) {
  Draining draining(threads_);
  std::atomic<bool> isOver{false};
  std::atomic<int> count{0};
  std::thread other([&] {
    while (!isOver) add(busy_, [&] { ++count; });
  });
  gate_.open();
  draining.finish();
  isOver = true;
  other.join();
  busy_->waitUntilIdle();
}

TEST_F(LongEnd, RunsWhatItsOperationsAdd) {
  int count = 0;
  std::function<void()> addNext = [&] {
    if (++count < 1000) add(count % 2 == 0 ? busy_ : idle_, addNext);
  };
  add(busy_, addNext);
  Draining draining(threads_);
  gate_.open();
  draining.finish();
  EXPECT_EQ(count, 1000);
}

TEST_F(LongEnd, ComesThoughAnOperationAddsItselfForEver) {
  std::atomic<int> count{0};
  std::atomic<bool> isOver{false};
  std::function<void()> addAgain = [&] {
    ++count;
    if (!isOver) add(busy_, addAgain);
  };
  add(busy_, addAgain);
  Draining draining(threads_);
  gate_.open();
  draining.finish();
  EXPECT_GE(count, 1000);
  isOver = true;
  runTheRest(busy_);
}

TEST_F(LongEnd, TakesBackNothingThatWasAddedBefore) {
  int count = 0;
  const auto before = OperationQueue::makeOperation([&] { ++count; });
  const auto after = OperationQueue::makeOperation([&] { ++count; });
  busy_->add(before);
  Draining draining(threads_);
  busy_->add(after);
  EXPECT_FALSE(busy_->remove(before));
  EXPECT_TRUE(busy_->remove(after));
  gate_.open();
  draining.finish();
  EXPECT_EQ(count, 1);
}

TEST_F(LongEnd, AWaitThatBeganBeforeItEndsThoughTheQueueIsNeverIdle) {
  std::atomic<bool> isOver{false};
  std::function<void()> addAgain = [&] {
    if (!isOver) add(idle_, addAgain);
  };
  add(idle_, addAgain);
  std::thread waiting([&] { idle_->waitUntilIdle(); });
  Draining draining(threads_);
  waiting.join();
  gate_.open();
  draining.finish();
  isOver = true;
  runTheRest(idle_);
}

TEST_F(LongEnd, AWaitThatBeginsLaterCoversWhatWasAddedBeforeIt) {
  Draining draining(threads_);
  std::atomic<bool> hasRun{false};
  add(busy_, [&] { hasRun = true; });
  gate_.open();
  busy_->waitUntilIdle();
  EXPECT_TRUE(hasRun);
}

}  // namespace
}  // namespace VelWhiteBoard
