// Identifiers and timestamps; the rest of the vector manager is in vector_manager_test.cpp.
#include <chrono>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "VelWhiteBoard/services/vector_manager.h"
#include "VelWhiteBoard/tools/tool_manager.h"

#include "tests/support/fresh_vector_manager.h"
#include "tests/support/special_numbers.h"

namespace VelWhiteBoard {
namespace {

using namespace std::chrono_literals;

using VectorStamps = FreshVectorManager;

// ---- Identifiers

TEST_F(VectorStamps, AnIdentifierIsTheUserAndTheHundredthsOfASecondSinceTheCourseBegan) {
  struct Row {
    std::optional<std::string> user;
    double createTs;
    std::chrono::nanoseconds now;
    const char* identifier;
  };
  const Row rows[] = {
      {"u42", 1700000000.0, 1'700'000'012'345ms, "u42_1234"},
      {std::nullopt, 1700000000.0, 1'700'000'012'345ms, "_1234"},
      {std::nullopt, 0.0, 1'700'000'012'345ms, "_170000001234"},
      {"u42", 0.0, 1'700'000'012'345ms, "u42_170000001234"},
      {"", 1700000000.0, 1'700'000'012'345ms, "_1234"},
      {"u42", 1700000000.0, 1'700'000'000'000ms, "u42_0"},
      {"u42", 1700000000.0, 1'700'000'000'009ms, "u42_0"},
      {"u42", 1700000000.0, 1'700'000'000'015ms, "u42_1"},
      {"u42", 1700000000.0, 1'699'999'998'500ms, "u42_-150"},
      {"u42", 1700000000.0, 1'699'999'999'995ms, "u42_0"},   // toward zero from below
      {"u42", 1700000000.0, 1'699'999'999'985ms, "u42_-1"},  // not -2
      {"a_b", 1700000000.0, 1'700'000'001'000ms, "a_b_100"},
      {"\xE8\x80\x81\xE5\xB8\x88", 1700000000.0, 1'700'000'001'000ms,
       "\xE8\x80\x81\xE5\xB8\x88_100"},
  };
  for (const Row& row : rows) {
    manager.setUserID(row.user);
    manager.setCreateTs(row.createTs);
    clock.setWallTime(row.now);
    EXPECT_EQ(manager.genID(), row.identifier) << row.now.count() << " ns";
  }
}

TEST_F(VectorStamps, AnIdentifierOfAnUnthinkableOriginSaturates) {
  struct Row {
    double createTs;
    const char* identifier;
  };
  const Row rows[] = {
      {kNaN, "_0"},
      {kInfinity, "_-9223372036854775808"},
      {-kInfinity, "_9223372036854775807"},
      {1e300, "_-9223372036854775808"},
      {-1e300, "_9223372036854775807"},
  };
  for (const Row& row : rows) {
    manager.setCreateTs(row.createTs);
    EXPECT_EQ(manager.genID(), row.identifier) << row.createTs;
  }
}

TEST_F(VectorStamps, IdentifiersWithinOneHundredthAreTheSame) {
  manager.setCreateTs(1700000000.0);
  clock.setWallTime(1'700'000'012'341ms);
  const std::string first = manager.genID();
  clock.setWallTime(1'700'000'012'349ms);
  EXPECT_EQ(manager.genID(), first);
  clock.setWallTime(1'700'000'012'351ms);
  EXPECT_NE(manager.genID(), first);
}

TEST_F(VectorStamps, AnIdentifierKeepsANulByteOfTheUser) {
  manager.setCreateTs(1700000000.0);
  manager.setUserID(std::string("a\0b", 3));
  EXPECT_EQ(manager.genID(), std::string("a\0b_1234", 8));
}

TEST_F(VectorStamps, IdentifiersCountOnWhetherTheClockRunsOrNot) {
  manager.setCourseCreateTs(1700000000.0, 5.0, 6.0);
  manager.setIsRunning(true);
  EXPECT_EQ(manager.genID(), "_1234");
  VWBToolManager::sharedManager().setVersion(1);
  EXPECT_EQ(manager.genID(), "_1234");  // the wall clock under version 1, too
  EXPECT_EQ(clock.mediaReadings(), 0);
}

TEST_F(VectorStamps, NoLocaleGroupsTheDigitsOfAnIdentifier) {
  for (const char* name : {"de_DE.UTF-8", "de_DE", "en_US.UTF-8"}) {
    if (std::setlocale(LC_ALL, name) != nullptr) break;
  }
  const std::string identifier = manager.genID();
  std::setlocale(LC_ALL, "C");
  EXPECT_EQ(identifier, "_170000001234");
}

// ---- Timestamps

TEST_F(VectorStamps, AFreshClockGivesZero) { EXPECT_EQ(manager.genTs(), 0.0); }

TEST_F(VectorStamps, AStoppedClockGivesTheServersLeadWhateverTheTime) {
  manager.setCourseCreateTs(0.0, 500.0, 100.0);
  EXPECT_EQ(manager.genTs(), 400.0);
  clock.setWallTime(2'000'000'000s);
  clock.setMediaTime(1e6);
  EXPECT_EQ(manager.genTs(), 400.0);
}

TEST_F(VectorStamps, AStoppedClockReadsNoClock) {
  manager.setCourseCreateTs(0.0, 500.0, 100.0);
  manager.genTs();
  EXPECT_EQ(clock.wallReadings(), 0);
  EXPECT_EQ(clock.mediaReadings(), 0);
}

TEST_F(VectorStamps, ARunningClockAddsTheTimePassedOnTheWallClock) {
  clock.setWallTime(1'700'000'000s);
  manager.setCourseCreateTs(0.0, 1000.0, 1700000000.0);
  manager.setIsRunning(true);
  for (const std::uint64_t version : {0U, 2U, 3U}) {
    VWBToolManager::sharedManager().setVersion(version);
    clock.setWallTime(1'700'000'000s);
    EXPECT_EQ(manager.genTs(), 1000.0) << version;
    clock.setWallTime(1'700'000'002'500ms);
    EXPECT_EQ(manager.genTs(), 1002.5) << version;
    clock.setWallTime(1'699'999'999s);  // somebody set the clock back
    EXPECT_EQ(manager.genTs(), 999.0) << version;
  }
  EXPECT_EQ(clock.mediaReadings(), 0);
}

TEST_F(VectorStamps, ARunningClockReadsTheMediaClockUnderVersionOne) {
  VWBToolManager::sharedManager().setVersion(1);
  manager.setCourseCreateTs(0.0, 1000.0, 70.0);
  manager.setIsRunning(true);
  EXPECT_EQ(manager.genTs(), 1007.5);
  EXPECT_EQ(clock.wallReadings(), 0);
}

TEST_F(VectorStamps, ARunningClockAddsBeforeItSubtracts) {
  // 1e17 swallows the 0.25 of the sum; subtracting first would keep it.
  VWBToolManager::sharedManager().setVersion(1);
  clock.setMediaTime(1e17);
  manager.setCourseCreateTs(0.0, 0.25, 1e17);
  manager.setIsRunning(true);
  EXPECT_EQ(manager.genTs(), 0.0);
  // The server's lead first would keep the clock's second.
  clock.setMediaTime(1.0);
  manager.setCourseCreateTs(0.0, 1e17, 1e17);
  EXPECT_EQ(manager.genTs(), 0.0);
}

TEST_F(VectorStamps, ARunningClockWithoutSynchronisationGivesTheTimeItself) {
  manager.setIsRunning(true);
  EXPECT_EQ(manager.genTs(), 1700000012.345);
}

TEST_F(VectorStamps, ARunningClockSignalsTheSemaphoreWhenDone) {
  manager.setIsRunning(true);
  manager.genTs();
  manager.genTs();
  ASSERT_TRUE(manager.semaphore()->try_acquire());
  manager.semaphore()->release();
}

TEST_F(VectorStamps, TimesThatAreNoNumbersSpreadQuietly) {
  manager.setCourseCreateTs(0.0, kInfinity, kInfinity);
  EXPECT_TRUE(std::isnan(manager.genTs()));
  manager.setIsRunning(true);
  EXPECT_TRUE(std::isnan(manager.genTs()));
  manager.setLocalTs(0.0);
  EXPECT_EQ(manager.genTs(), kInfinity);
}

}  // namespace
}  // namespace VelWhiteBoard
