// The queue's machinery where the system does not play along, and its end. `Strand` is what stands
// behind an `OperationQueue`; here it runs on pools of the test's own.
#include "VelWhiteBoard/foundation/strand.h"

#include <atomic>
#include <functional>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/thread_pool.h"

#include "tests/support/gate.h"

namespace VelWhiteBoard {
namespace {

/// Starts so many threads and no more, as a system does that has run out of them.
class Starter {
 public:
  explicit Starter(int available) : available_(available) {}
  ThreadPool::ThreadStarter function() {
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

// ---- Threads

TEST(ThreadPool, StartsNoThreadBeforeThereIsWork) {
  Starter starter(16);
  ThreadPool pool(kPlenty, starter.function());
  const auto strand = std::make_shared<Strand>(pool);
  EXPECT_EQ(starter.asked, 0);
  strand->add([] {});
  strand->waitUntilIdle();
  EXPECT_EQ(starter.asked, 1);
}

TEST(ThreadPool, StartsAThreadForEachStrandThatWouldHaveToWait) {
  Starter starter(16);
  ThreadPool pool(kPlenty, starter.function());
  Gate gate;
  std::vector<std::shared_ptr<Strand>> strands;
  for (int i = 0; i < 5; ++i) {
    strands.push_back(std::make_shared<Strand>(pool));
    for (int k = 0; k < 10; ++k) strands.back()->add([&] { gate.pass(); });
  }
  EXPECT_EQ(starter.asked, 5);
  gate.open();
  for (const auto& strand : strands) strand->waitUntilIdle();
}

TEST(ThreadPool, StartsNoThreadWhileAnotherIsFree) {
  Starter starter(1000);
  ThreadPool pool(1000, starter.function());
  constexpr int kRounds = 50;
  for (int i = 0; i < kRounds; ++i) {
    const auto strand = std::make_shared<Strand>(pool);
    strand->add([] {});
    strand->waitUntilIdle();
  }
  // One would do, but a thread that has just finished may not be back yet when the next strand
  // comes. That all of them are late every time is out of the question.
  EXPECT_LT(starter.asked, kRounds);
}

TEST(ThreadPool, KeepsToItsBoundAndServesTheRestWhenAThreadIsFree) {
  Starter starter(16);
  ThreadPool pool(2, starter.function());
  Meeting begun(3);
  Gate gate;
  const auto first = std::make_shared<Strand>(pool);
  const auto second = std::make_shared<Strand>(pool);
  const auto third = std::make_shared<Strand>(pool);
  for (const auto& strand : {first, second}) {
    strand->add([&] {
      begun.arrive();
      gate.pass();
    });
  }
  begun.arrive();
  std::atomic<bool> hasRun{false};
  third->add([&] { hasRun = true; });
  EXPECT_EQ(starter.asked, 2);
  EXPECT_FALSE(hasRun);  // cannot: both threads stand at the gate
  gate.open();
  third->waitUntilIdle();
  EXPECT_TRUE(hasRun);
  first->waitUntilIdle();
  second->waitUntilIdle();
}

TEST(ThreadPool, GivesEveryStrandATurnHoweverLongAnotherIs) {
  ThreadPool pool(1);
  Gate gate;
  const auto longOne = std::make_shared<Strand>(pool);
  const auto shortOne = std::make_shared<Strand>(pool);
  int longCount = 0;
  int longCountSeen = -1;
  longOne->add([&] { gate.pass(); });
  for (int i = 0; i < 1000; ++i) longOne->add([&] { ++longCount; });
  shortOne->add([&] { longCountSeen = longCount; });  // one thread only: no race
  gate.open();
  longOne->waitUntilIdle();
  shortOne->waitUntilIdle();
  EXPECT_EQ(longCount, 1000);
  EXPECT_GE(longCountSeen, 0);
  EXPECT_LT(longCountSeen, 1000);
}

// ---- Without threads

TEST(Strand, RunsOnTheCallersThreadWhenNoThreadStarts) {
  Starter starter(0);
  ThreadPool pool(kPlenty, starter.function());
  const auto strand = std::make_shared<Strand>(pool);
  std::thread::id thread;
  strand->add([&] { thread = std::this_thread::get_id(); });
  EXPECT_EQ(thread, std::this_thread::get_id());
  EXPECT_EQ(starter.asked, 1);
}

TEST(Strand, KeepsItsOrderOnTheCallersThread) {
  Starter starter(0);
  ThreadPool pool(kPlenty, starter.function());
  const auto strand = std::make_shared<Strand>(pool);
  std::vector<int> order;
  strand->add([&] {
    strand->add([&] { order.push_back(1); });
    strand->waitUntilIdle();
    order.push_back(0);
  });
  strand->add([&] { order.push_back(2); });
  EXPECT_EQ(order, (std::vector<int>{0, 1, 2}));
}

TEST(Strand, MayWaitOnTheCallersThreadForAnotherStrand) {
  Starter starter(0);
  ThreadPool pool(kPlenty, starter.function());
  const auto first = std::make_shared<Strand>(pool);
  const auto second = std::make_shared<Strand>(pool);
  std::vector<int> order;
  first->add([&] {
    second->add([&] { order.push_back(0); });
    second->waitUntilIdle();
    order.push_back(1);
  });
  EXPECT_EQ(order, (std::vector<int>{0, 1}));
}

TEST(Strand, StrandsThatAddToOneAnotherOnTheCallersThreadDoNotPileUpOnTheStack) {
  Starter starter(0);
  ThreadPool pool(kPlenty, starter.function());
  constexpr int kDepth = 50'000;  // nested calls of this depth would leave any usual stack
  const std::shared_ptr<Strand> strands[] = {std::make_shared<Strand>(pool),
                                             std::make_shared<Strand>(pool)};
  int count = 0;
  std::function<void()> addToOther = [&] {
    if (++count < kDepth) strands[count % 2]->add(addToOther);
  };
  strands[0]->add(addToOther);
  EXPECT_EQ(count, kDepth);
}

TEST(Strand, MakesDoWithTheThreadsThatStart) {
  Starter starter(1);
  ThreadPool pool(kPlenty, starter.function());
  Gate gate;
  const auto first = std::make_shared<Strand>(pool);
  const auto second = std::make_shared<Strand>(pool);
  std::thread::id firstThread;
  std::thread::id secondThread;
  first->add([&] {
    gate.pass();
    firstThread = std::this_thread::get_id();
  });
  second->add([&] { secondThread = std::this_thread::get_id(); });
  gate.open();
  first->waitUntilIdle();
  second->waitUntilIdle();
  EXPECT_EQ(starter.asked, 2);
  EXPECT_EQ(firstThread, secondThread);
  EXPECT_NE(firstThread, std::this_thread::get_id());
}

TEST(Strand, TriesAgainToStartAThreadWhenThereIsNewWork) {
  Starter starter(0);
  ThreadPool pool(kPlenty, starter.function());
  const auto strand = std::make_shared<Strand>(pool);
  strand->add([] {});
  strand->add([] {});
  EXPECT_EQ(starter.asked, 2);
}

// ---- The end

TEST(ThreadPool, DrainingRunsEverythingThatWasAdded) {
  ThreadPool pool(2);
  std::atomic<int> count{0};
  for (int i = 0; i < 50; ++i) {
    const auto strand = std::make_shared<Strand>(pool);
    for (int k = 0; k < 20; ++k) {
      strand->add([&count, strand] {
        ++count;
        strand->add([&count] { ++count; });
      });
    }
  }
  pool.drain();
  EXPECT_EQ(count, 50 * 20 * 2);
}

TEST(ThreadPool, DrainingAPoolThatNeverWorkedReturns) {
  ThreadPool pool;
  pool.drain();
  pool.drain();
}

TEST(ThreadPool, AfterDrainingOperationsRunAtOnceOnTheCallersThread) {
  Starter starter(16);
  ThreadPool pool(kPlenty, starter.function());
  const auto strand = std::make_shared<Strand>(pool);
  strand->add([] {});
  pool.drain();
  std::thread::id thread;
  strand->add([&] { thread = std::this_thread::get_id(); });
  EXPECT_EQ(thread, std::this_thread::get_id());
  strand->waitUntilIdle();
  EXPECT_EQ(starter.asked, 1);
}

TEST(ThreadPool, TheEndOfAPoolDrainsIt) {
  int count = 0;
  {
    ThreadPool pool;
    const auto strand = std::make_shared<Strand>(pool);
    for (int i = 0; i < 100; ++i) strand->add([&] { ++count; });
  }
  EXPECT_EQ(count, 100);
}

}  // namespace
}  // namespace VelWhiteBoard
