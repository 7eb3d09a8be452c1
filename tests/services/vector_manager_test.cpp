#include "VelWhiteBoard/services/vector_manager.h"

#include <cmath>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/strokes.h"

#include "tests/support/fresh_vector_manager.h"
#include "tests/support/special_numbers.h"

namespace VelWhiteBoard {
namespace {

static_assert(!std::is_default_constructible_v<VelWbVectorManager>);
static_assert(!std::is_destructible_v<VelWbVectorManager>);
static_assert(!std::is_copy_constructible_v<VelWbVectorManager>);
static_assert(!std::is_move_constructible_v<VelWbVectorManager>);
static_assert(!std::is_copy_assignable_v<VelWbVectorManager>);
static_assert(!std::is_move_assignable_v<VelWbVectorManager>);

bool isFree(Semaphore& semaphore) {
  if (!semaphore.try_acquire()) return false;
  semaphore.release();
  return true;
}

using VectorManager = FreshVectorManager;

// ---- The one object

TEST_F(VectorManager, IsOneObjectForTheProcess) {
  EXPECT_EQ(&VelWbVectorManager::shareManager(), &manager);
}

TEST_F(VectorManager, StartsWithoutTimesAndUserAndNotRunning) {
  EXPECT_EQ(manager.createTs(), 0.0);
  EXPECT_EQ(manager.serverTs(), 0.0);
  EXPECT_EQ(manager.localTs(), 0.0);
  EXPECT_EQ(manager.userID(), std::nullopt);
  EXPECT_FALSE(manager.isRunning());
  ASSERT_NE(manager.semaphore(), nullptr);
  EXPECT_TRUE(isFree(*manager.semaphore()));
}

TEST_F(VectorManager, TheFirstSemaphoreHasACountOfOne) {
  const auto semaphore = manager.semaphore();
  EXPECT_TRUE(semaphore->try_acquire());
  EXPECT_FALSE(semaphore->try_acquire());
  semaphore->release();
}

TEST_F(VectorManager, InitPutsEverythingBackAndAnswersTheObject) {
  const auto before = manager.semaphore();
  manager.setCourseCreateTs(1.0, 2.0, 3.0);
  manager.setUserID("u42");
  manager.setIsRunning(true);
  EXPECT_EQ(&manager.init(), &manager);
  EXPECT_EQ(manager.createTs(), 0.0);
  EXPECT_EQ(manager.serverTs(), 0.0);
  EXPECT_EQ(manager.localTs(), 0.0);
  EXPECT_EQ(manager.userID(), std::nullopt);
  EXPECT_FALSE(manager.isRunning());
  EXPECT_NE(manager.semaphore(), before);
}

TEST_F(VectorManager, InitMakesAFreeSemaphoreEvenWhileTheOldOneIsHeld) {
  const SemaphoreHold hold(manager.semaphore());
  manager.init();
  EXPECT_TRUE(isFree(*manager.semaphore()));
}

// ---- Properties

TEST_F(VectorManager, KeepsEveryTimeThatItIsGiven) {
  for (const double time : {0.0, -0.0, 1.5, -1e300, 1e-320, kInfinity, -kInfinity}) {
    manager.setCreateTs(time);
    manager.setServerTs(time);
    manager.setLocalTs(time);
    for (const double kept : {manager.createTs(), manager.serverTs(), manager.localTs()}) {
      EXPECT_EQ(kept, time);
      EXPECT_EQ(std::signbit(kept), std::signbit(time)) << time;
    }
  }
  manager.setServerTs(kNaN);
  EXPECT_TRUE(std::isnan(manager.serverTs()));
}

TEST_F(VectorManager, EachPropertyIsItsOwn) {
  manager.setCreateTs(1.0);
  manager.setServerTs(2.0);
  manager.setLocalTs(3.0);
  manager.setUserID("u");
  manager.setIsRunning(true);
  EXPECT_EQ(manager.createTs(), 1.0);
  EXPECT_EQ(manager.serverTs(), 2.0);
  EXPECT_EQ(manager.localTs(), 3.0);
  EXPECT_EQ(manager.userID(), "u");
  EXPECT_TRUE(manager.isRunning());
  manager.setIsRunning(false);
  EXPECT_FALSE(manager.isRunning());
}

TEST_F(VectorManager, CopiesTheUserThatItIsGiven) {
  std::optional<std::string> user = "u42";
  manager.setUserID(user);
  user->assign("other");
  EXPECT_EQ(manager.userID(), "u42");
  manager.setUserID(std::nullopt);
  EXPECT_EQ(manager.userID(), std::nullopt);
}

TEST_F(VectorManager, SharesTheSemaphoreThatItIsGiven) {
  const auto own = std::make_shared<Semaphore>(1);
  manager.setSemaphore(own);
  EXPECT_EQ(manager.semaphore(), own);
}

TEST_F(VectorManager, IgnoresASemaphoreThatIsNull) {
  const auto before = manager.semaphore();
  manager.setSemaphore(nullptr);
  EXPECT_EQ(manager.semaphore(), before);
}

// ---- Synchronisation

TEST_F(VectorManager, ASynchronisationStoresTheThreeTimesInTheirOrder) {
  manager.setCourseCreateTs(1.0, 2.0, 3.0);
  EXPECT_EQ(manager.createTs(), 1.0);
  EXPECT_EQ(manager.serverTs(), 2.0);
  EXPECT_EQ(manager.localTs(), 3.0);
}

TEST_F(VectorManager, ASynchronisationSignalsTheSemaphoreWhenDone) {
  manager.setCourseCreateTs(1.0, 2.0, 3.0);
  manager.setCourseCreateTs(4.0, 5.0, 6.0);
  EXPECT_TRUE(isFree(*manager.semaphore()));
  EXPECT_EQ(manager.createTs(), 4.0);
}

TEST_F(VectorManager, ASynchronisationChangesNeitherUserNorRunning) {
  manager.setUserID("u42");
  manager.setIsRunning(true);
  manager.setCourseCreateTs(1.0, 2.0, 3.0);
  EXPECT_EQ(manager.userID(), "u42");
  EXPECT_TRUE(manager.isRunning());
}

TEST_F(VectorManager, ClearForgetsTheServerReferenceOnly) {
  manager.setCourseCreateTs(1.0, 2.0, 3.0);
  manager.setUserID("u42");
  manager.setIsRunning(true);
  manager.clear();
  EXPECT_EQ(manager.serverTs(), 0.0);
  EXPECT_EQ(manager.localTs(), 0.0);
  EXPECT_EQ(manager.createTs(), 1.0);
  EXPECT_EQ(manager.userID(), "u42");
  EXPECT_TRUE(manager.isRunning());
}

TEST_F(VectorManager, IdentifiersKeepTheirOriginAfterClear) {
  manager.setCourseCreateTs(1700000000.0, 2.0, 3.0);
  const std::string before = manager.genID();
  manager.clear();
  EXPECT_EQ(manager.genID(), before);
}

TEST_F(VectorManager, AStoppedClockGivesZeroAfterClear) {
  manager.setCourseCreateTs(0.0, 500.0, 100.0);
  manager.clear();
  EXPECT_EQ(manager.genTs(), 0.0);
}

// ---- The semaphore

TEST_F(VectorManager, WhoeverHoldsTheSemaphoreMayCallWhatDoesNotWait) {
  manager.setCourseCreateTs(1700000000.0, 500.0, 100.0);
  const SemaphoreHold hold(manager.semaphore());
  EXPECT_EQ(manager.genID(), "_1234");
  EXPECT_EQ(manager.genTs(), 400.0);
  manager.setServerTs(600.0);
  manager.setLocalTs(50.0);
  manager.setCreateTs(1700000010.0);
  manager.setUserID("u");
  EXPECT_EQ(manager.genTs(), 550.0);
  EXPECT_EQ(manager.genID(), "u_234");
  manager.setIsRunning(true);
  manager.clear();
  EXPECT_EQ(manager.serverTs(), 0.0);
  VelWbVecPoint point;
  manager.coordinateSystemTransFromPC(point);
  manager.coordinateSystemTransToPC(point);
  EXPECT_FALSE(isFree(*manager.semaphore()));
}

// ---- Coordinate shifts

TEST_F(VectorManager, APointFromTheDesktopMovesUpByHalfAUnit) {
  VelWbVecPoint point;
  point.x = 0.25;
  point.y = 0.75;
  manager.coordinateSystemTransFromPC(point);
  EXPECT_EQ(point.x, 0.75);
  EXPECT_EQ(point.y, 1.25);
}

TEST_F(VectorManager, APointToTheDesktopMovesDownByHalfAUnit) {
  VelWbVecPoint point;
  point.x = 0.75;
  point.y = 1.25;
  manager.coordinateSystemTransToPC(point);
  EXPECT_EQ(point.x, 0.25);
  EXPECT_EQ(point.y, 0.75);
}

TEST_F(VectorManager, TheShiftsAreExactlyTheOperationsThatAllClientsShare) {
  // Written with volatile steps, so that no compiler may simplify what is expected here.
  const auto fromPC = [](double value) {
    volatile double step = value + (-0.5);
    step = step + 1.0;
    return static_cast<double>(step);
  };
  const auto toPC = [](double value) {
    volatile double rest = 1.0 - value;
    volatile double step = rest + rest;
    step = 1.0 - step;
    step = step * 0.5;
    return static_cast<double>(step);
  };
  for (const double value : {0.1, 0.3, 1.0 / 3.0, 1e-17, -1e-17, 5e-324, 0.49999999999999994, -0.5,
                             0.5, -0.0, 1e16, -1e16, 1e308, 1.7e308, kInfinity, -kInfinity}) {
    VelWbVecPoint point;
    point.x = value;
    point.y = -value;
    manager.coordinateSystemTransFromPC(point);
    EXPECT_EQ(point.x, fromPC(value)) << value;
    EXPECT_EQ(point.y, fromPC(-value)) << value;
    point.x = value;
    point.y = -value;
    manager.coordinateSystemTransToPC(point);
    EXPECT_EQ(point.x, toPC(value)) << value;
    EXPECT_EQ(point.y, toPC(-value)) << value;
  }
}

TEST_F(VectorManager, TheShiftsAreNotASimpleHalfInTheLastBits) {
  VelWbVecPoint point;
  point.x = 0.037;
  point.y = -0.45;
  manager.coordinateSystemTransFromPC(point);
  EXPECT_EQ(point.x, 0.5369999999999999);    // 0.037 + 0.5 would be 0.537
  EXPECT_EQ(point.y, 0.050000000000000044);  // -0.45 + 0.5 would be 0.04999999999999999
  point.x = 0.3;
  point.y = 0.05;
  manager.coordinateSystemTransToPC(point);
  EXPECT_EQ(point.x, -0.19999999999999996);  // 0.3 - 0.5 would be -0.2
  EXPECT_EQ(point.y, -0.44999999999999996);  // 0.05 - 0.5 would be -0.45
}

TEST_F(VectorManager, AShiftTouchesThePositionOnly) {
  VelWbVecSquare box;
  box.type = "text";
  box.ID = "u_1";
  box.ts = 3.0;
  box.w = 0.5;
  box.h = 0.25;
  box.path = Path{{1.0, 2.0, 3.0}};
  VelWbVecSquare expected = box;
  expected.x = 0.5;
  expected.y = 0.5;
  manager.coordinateSystemTransFromPC(box);
  EXPECT_EQ(box, expected);
}

TEST_F(VectorManager, APointThatIsNoNumberStaysNone) {
  VelWbVecPoint point;
  point.x = kNaN;
  manager.coordinateSystemTransFromPC(point);
  EXPECT_TRUE(std::isnan(point.x));
  EXPECT_EQ(point.y, 0.5);
  manager.coordinateSystemTransToPC(point);
  EXPECT_TRUE(std::isnan(point.x));
  EXPECT_EQ(point.y, 0.0);
}

}  // namespace
}  // namespace VelWhiteBoard
