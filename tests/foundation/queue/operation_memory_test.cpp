// The memory that queues and operations take.
#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/queue/operation_queue.h"

#include "tests/support/counted_memory.h"
#include "tests/support/gate.h"

namespace VelWhiteBoard {
namespace {

TEST(OperationMemory, AddingAndRemovingAMadeOperationTakesNone) {
  OperationQueue queue;
  Gate begun;
  Gate gate;
  queue.addOperationWithBlock([&] {
    begun.open();
    gate.pass();
  });
  begun.pass();  // every thread that there will be has started
  int count = 0;
  std::vector<OperationQueue::OperationPtr> operations;
  for (int i = 0; i < 1000; ++i) {
    operations.push_back(OperationQueue::makeOperation([&] { ++count; }));
  }
  const PeakMemory memory;
  for (const auto& operation : operations) queue.addOperation(operation);
  for (std::size_t i = 0; i < operations.size(); i += 2) queue.removeOperation(operations[i]);
  gate.open();
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(memory.bytes(), 0U);
  EXPECT_EQ(count, 500);
}

TEST(OperationMemory, AnIdleQueueTakesAFewHundredBytes) {
  constexpr std::size_t kQueues = 10'000;
  std::vector<OperationQueue> queues(1);  // the first one makes what all share
  queues.front().addOperationWithBlock([] {});
  queues.front().waitUntilAllOperationsAreFinished();
  const PeakMemory memory;
  const std::vector<OperationQueue> more(kQueues);
  EXPECT_LE(memory.bytes() / kQueues, 500U);
}

}  // namespace
}  // namespace VelWhiteBoard
