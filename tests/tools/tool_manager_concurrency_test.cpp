// What of the tool manager may be used from several threads: its creation, and `version`.
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <set>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/services/vector_manager.h"
#include "VelWhiteBoard/tools/tool_manager.h"

namespace VelWhiteBoard {
namespace {

constexpr int kThreadCount = 8;

/// Holds threads back until all of them are there.
class StartingLine {
 public:
  explicit StartingLine(int threadCount) : missing_(threadCount) {}

  void waitForAll() {
    --missing_;
    while (missing_ > 0) std::this_thread::yield();
  }

 private:
  std::atomic<int> missing_;
};

TEST(ToolManagerConcurrency, FirstCallsFromManyThreadsMakeOneObject) {
  StartingLine start(kThreadCount);
  std::vector<VWBToolManager*> seen(kThreadCount);
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreadCount; ++i) {
    threads.emplace_back([&start, i, &mine = seen[static_cast<std::size_t>(i)]] {
      start.waitForAll();
      mine = i % 2 == 0 ? &VWBToolManager::sharedManager() : &VWBToolManager::allocWithZone();
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(std::set(seen.begin(), seen.end()).size(), 1U);
}

TEST(ToolManagerConcurrency, TheVersionMayBeReadWhileAnotherThreadSetsIt) {
  auto& manager = VWBToolManager::sharedManager();
  manager.init();
  StartingLine start(4);
  std::vector<std::thread> readers;
  std::atomic<int> strangeVersions{0};
  for (int i = 0; i < 3; ++i) {
    readers.emplace_back([&] {
      start.waitForAll();
      for (int k = 0; k < 3000; ++k) {
        if (manager.version() > 2) ++strangeVersions;
      }
    });
  }
  start.waitForAll();
  for (std::uint64_t i = 0; i < 3000; ++i) manager.setVersion(i % 3);
  for (auto& reader : readers) reader.join();
  EXPECT_EQ(strangeVersions, 0);
  manager.init();
}

TEST(ToolManagerConcurrency, TimestampsMayBeTakenWhileAnotherThreadSetsTheVersion) {
  auto& manager = VWBToolManager::sharedManager();
  auto& stamps = VelWbVectorManager::shareManager();
  manager.init();
  stamps.init();
  stamps.setIsRunning(true);
  StartingLine start(4);
  std::vector<std::thread> takers;
  std::atomic<int> count{0};
  for (int i = 0; i < 3; ++i) {
    takers.emplace_back([&] {
      start.waitForAll();
      for (int k = 0; k < 1000; ++k) {
        if (stamps.genTs() > 0) ++count;
      }
    });
  }
  start.waitForAll();
  for (std::uint64_t i = 0; i < 3000; ++i) manager.setVersion(i % 3);
  for (auto& taker : takers) taker.join();
  EXPECT_EQ(count, 3000);
  manager.init();
  stamps.init();
}

}  // namespace
}  // namespace VelWhiteBoard
