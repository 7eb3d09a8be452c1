#include <atomic>
#include <memory>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "VelWhiteBoard/services/vector_manager.h"
#include "VelWhiteBoard/tools/tool_manager.h"
#include "VelWhiteBoard/vectors/strokes.h"

#include "tests/support/manual_clock.h"
#include "tests/support/together.h"

namespace VelWhiteBoard {
namespace {

constexpr int kUsers = 4;  // of the one manager, each a thread
constexpr int kRounds = 3000;

class VectorManagerConcurrency : public ::testing::Test {
 protected:
  VectorManagerConcurrency() : scope_(clock) { VWBToolManager::sharedManager().init(); }
  ~VectorManagerConcurrency() override {
    VelWbVectorManager::shareManager().init();
    VWBToolManager::sharedManager().init();
  }

  ManualClock clock;

 private:
  const ScopedClock scope_;
};

TEST_F(VectorManagerConcurrency, EveryThreadFindsTheSameObject) {
  std::atomic<VelWbVectorManager*> found{nullptr};
  std::atomic<int> others{0};
  together(kUsers, [&](int) {
    VelWbVectorManager* const mine = &VelWbVectorManager::shareManager();
    VelWbVectorManager* expected = nullptr;
    if (!found.compare_exchange_strong(expected, mine) && expected != mine) ++others;
  });
  EXPECT_EQ(others, 0);
}

TEST_F(VectorManagerConcurrency, ARunningClockNeverMixesTwoSynchronisations) {
  auto& manager = VelWbVectorManager::shareManager().init();
  VWBToolManager::sharedManager().setVersion(1);
  clock.setMediaTime(7.0);
  manager.setIsRunning(true);
  std::atomic<int> mixed{0};
  together(kUsers, [&](int thread) {
    for (int i = 0; i < kRounds; ++i) {
      const double moment = i * 1000.0 + thread;
      // In each synchronisation the server's time equals the local one, so the result is the clock.
      if (thread < 2) {
        manager.setCourseCreateTs(moment, moment, moment);
      } else if (manager.genTs() != 7.0) {
        ++mixed;
      }
    }
  });
  EXPECT_EQ(mixed, 0);
}

TEST_F(VectorManagerConcurrency, AnIdentifierCarriesOneUserWhole) {
  auto& manager = VelWbVectorManager::shareManager().init();
  // Long enough to live outside the string object.
  const std::optional<std::string> users[] = {std::nullopt, std::string(100, 'a'),
                                              std::string(200, 'b')};
  std::atomic<int> broken{0};
  together(kUsers, [&](int thread) {
    for (int i = 0; i < kRounds; ++i) {
      if (thread == 0) {
        manager.setUserID(users[i % 3]);
        continue;
      }
      const std::string identifier = manager.genID();
      bool isKnown = false;
      for (const auto& user : users) isKnown |= identifier == user.value_or("") + "_0";
      if (!isKnown) ++broken;
    }
  });
  EXPECT_EQ(broken, 0);
}

TEST_F(VectorManagerConcurrency, EveryOperationMayMeetEveryOther) {
  auto& manager = VelWbVectorManager::shareManager().init();
  std::atomic<int> nulls{0};
  together(2 * kUsers, [&](int thread) {
    for (int i = 0; i < kRounds; ++i) {
      switch ((i + thread) % 13) {
        case 0:
          manager.setCourseCreateTs(i, i, i);
          break;
        case 1:
          manager.clear();
          break;
        case 2:
          manager.setIsRunning(i % 2 == 0);
          break;
        case 3:
          manager.setSemaphore(std::make_shared<Semaphore>(1));
          break;
        case 4:
          manager.setUserID("u" + std::to_string(i));
          break;
        case 5:
          manager.init();
          break;
        case 6:
          manager.genTs();
          break;
        case 7:
          manager.setCreateTs(i);
          break;
        case 8:
          manager.setServerTs(i);
          break;
        case 9:
          manager.setLocalTs(i);
          break;
        case 10:
          manager.createTs();
          manager.serverTs();
          manager.localTs();
          manager.isRunning();
          break;
        case 11: {
          VelWbVecPoint point;
          manager.coordinateSystemTransFromPC(point);
          manager.coordinateSystemTransToPC(point);
          manager.userID();
          break;
        }
        default:
          manager.genID();
      }
      if (manager.semaphore() == nullptr) ++nulls;
    }
  });
  EXPECT_EQ(nulls, 0);
  EXPECT_TRUE(manager.semaphore()->try_acquire());  // everybody who took it gave it back
}

}  // namespace
}  // namespace VelWhiteBoard
