// Reading waits for what is queued, as long as the queue gets on.
#include "VelWhiteBoard/storage/files/pending_files.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/queue/shared_threads.h"

#include "tests/support/gate.h"

namespace VelWhiteBoard {
namespace {

/// An operation that does something about a file.
void addFor(const std::shared_ptr<OperationQueue>& queue, const std::string& path,
            std::function<void()> work) {
  auto pending = std::make_shared<PendingFile>(pendingName(path), queue);
  queue->addOperationWithBlock([pending, work = std::move(work)] { work(); });
}

constexpr std::chrono::milliseconds kLongerThanAStandstill{600};

/// The same, of an operation that works on the file without being able to report progress.
void addSlowWorkOn(const std::shared_ptr<OperationQueue>& queue, const std::string& path,
                   std::atomic<bool>& ended) {
  auto pending = std::make_shared<PendingFile>(pendingName(path), queue);
  queue->addOperationWithBlock([pending, &ended] {
    pending->begin();
    std::this_thread::sleep_for(kLongerThanAStandstill);
    ended = true;
  });
}

bool waitFor(const std::string& path) { return waitForPendingFiles({pendingName(path)}); }

class APendingFile : public ::testing::Test {
 protected:
  void TearDown() override { queue_->waitUntilAllOperationsAreFinished(); }

  const std::shared_ptr<OperationQueue> queue_ = std::make_shared<OperationQueue>();
};

TEST_F(APendingFile, IsWaitedForUntilItsOperationHasEnded) {
  std::atomic<bool> ended = false;
  addFor(queue_, "/b/x", [&ended] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    ended = true;
  });
  EXPECT_TRUE(waitFor("/b/x"));
  EXPECT_TRUE(ended);
}

TEST_F(APendingFile, IsTheSameHoweverItsPathIsWritten) {
  Gate gate;
  addFor(queue_, "/b/./y//x", [&gate] { gate.pass(); });
  EXPECT_TRUE(arePending({pendingName("/b/y/z/../x")}));
  EXPECT_FALSE(arePending({pendingName("/b/y/z")}));
  gate.open();
  queue_->waitUntilAllOperationsAreFinished();
  EXPECT_FALSE(arePending({pendingName("/b/y/x")}));
}

TEST_F(APendingFile, IsWaitedForAsLongAsOperationsEnd) {
  std::atomic<int> ended = 0;
  for (int i = 0; i < 10; ++i) {
    queue_->addOperationWithBlock([&ended] {
      std::this_thread::sleep_for(std::chrono::milliseconds(60));
      ++ended;
    });
  }
  addFor(queue_, "/b/x", [&ended] { ++ended; });
  EXPECT_TRUE(waitFor("/b/x"));
  EXPECT_EQ(ended, 11);
}

TEST_F(APendingFile, IsWaitedForAsLongAsTheOperationReportsProgress) {
  std::atomic<bool> ended = false;
  addFor(queue_, "/b/x", [&ended] {
    for (int i = 0; i < 10; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(60));
      OperationQueue::reportProgress();
    }
    ended = true;
  });
  EXPECT_TRUE(waitFor("/b/x"));
  EXPECT_TRUE(ended);
}

TEST_F(APendingFile, IsWaitedForWhileTheDiskIsSlow) {
  std::atomic<bool> ended = false;
  addSlowWorkOn(queue_, "/b/x", ended);
  EXPECT_TRUE(waitFor("/b/x"));
  EXPECT_TRUE(ended);
}

TEST_F(APendingFile, IsWaitedForWhileItsQueueWorksOnAnotherFileOfASlowDisk) {
  std::atomic<bool> ended = false;
  addSlowWorkOn(queue_, "/b/y", ended);
  addFor(queue_, "/b/x", [] {});
  EXPECT_TRUE(waitFor("/b/x"));
  EXPECT_TRUE(ended);
}

TEST_F(APendingFile, IsNotWaitedForWhenOnlyAnotherQueueWorksOnAFile) {
  const auto other = std::make_shared<OperationQueue>();
  Gate gate;
  auto pending = std::make_shared<PendingFile>(pendingName("/b/y"), other);
  other->addOperationWithBlock([pending, &gate] {
    pending->begin();
    gate.pass();
  });
  addFor(queue_, "/b/x", [&gate] { gate.pass(); });
  EXPECT_FALSE(waitFor("/b/x"));
  gate.open();
  queue_->waitUntilAllOperationsAreFinished();
  other->waitUntilAllOperationsAreFinished();
}

TEST_F(APendingFile, IsWaitedForWhileOtherQueuesHaveAllThreads) {
  std::vector<OperationQueue> busy(SharedThreads::kMaxThreads);
  Meeting begun(SharedThreads::kMaxThreads + 1);
  for (OperationQueue& queue : busy) {
    queue.addOperationWithBlock([&begun] {
      begun.arrive();
      std::this_thread::sleep_for(kLongerThanAStandstill);
    });
  }
  begun.arrive();
  addFor(queue_, "/b/x", [] {});
  EXPECT_TRUE(waitFor("/b/x"));
  for (OperationQueue& queue : busy) queue.waitUntilAllOperationsAreFinished();
}

TEST_F(APendingFile, IsNotWaitedForOnceItsQueueStandsStill) {
  Gate gate;
  addFor(queue_, "/b/x", [&gate] { gate.pass(); });
  EXPECT_FALSE(waitFor("/b/x"));
  EXPECT_TRUE(arePending({pendingName("/b/x")}));
  gate.open();
  queue_->waitUntilAllOperationsAreFinished();
}

TEST_F(APendingFile, IsNotWaitedForInsideAnOperationOfItsOwnQueue) {
  std::atomic<bool> wasPending = true;
  Gate gate;
  queue_->addOperationWithBlock([&] {
    gate.pass();
    wasPending = arePending({pendingName("/b/x")});
  });
  addFor(queue_, "/b/x", [] {});
  EXPECT_TRUE(arePending({pendingName("/b/x")}));
  gate.open();
  queue_->waitUntilAllOperationsAreFinished();
  EXPECT_FALSE(wasPending);
}

TEST_F(APendingFile, EndsWithAnOperationThatThrows) {
  addFor(queue_, "/b/x", [] { throw 1; });
  EXPECT_TRUE(waitFor("/b/x"));
}

TEST_F(APendingFile, EndsWithAnOperationThatIsTakenBack) {
  Gate gate;
  queue_->addOperationWithBlock([&gate] { gate.pass(); });
  auto pending = std::make_shared<PendingFile>(pendingName("/b/x"), queue_);
  auto operation = OperationQueue::makeOperation([pending] {});
  pending.reset();
  queue_->addOperation(operation);
  EXPECT_TRUE(arePending({pendingName("/b/x")}));
  EXPECT_TRUE(queue_->removeOperation(operation));
  operation.reset();
  EXPECT_FALSE(arePending({pendingName("/b/x")}));
  gate.open();
  queue_->waitUntilAllOperationsAreFinished();
}

}  // namespace
}  // namespace VelWhiteBoard
