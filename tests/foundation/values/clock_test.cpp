#include "VelWhiteBoard/foundation/values/clock.h"

#include <chrono>
#include <type_traits>

#include <gtest/gtest.h>

#include "tests/support/manual_clock.h"

namespace VelWhiteBoard {
namespace {

using namespace std::chrono_literals;

static_assert(!std::is_copy_constructible_v<ScopedClock>);
static_assert(!std::is_copy_assignable_v<ScopedClock>);

TEST(Clock, TheWallClockIsTheSystemsClock) {
  const auto before = std::chrono::system_clock::now();
  const auto date = currentDate();
  const double seconds = currentTime();
  const auto after = std::chrono::system_clock::now();
  const auto inSeconds = [](auto moment) {
    return std::chrono::duration<double>(moment.time_since_epoch()).count();
  };
  EXPECT_LE(before, date);
  EXPECT_LE(date, after);
  // A double resolves the present to about a quarter of a microsecond.
  EXPECT_LE(inSeconds(before) - 1e-6, seconds);
  EXPECT_LE(seconds, inSeconds(after) + 1e-6);
}

TEST(Clock, TheMediaClockNeverRunsBackwards) {
  double last = currentMediaTime();
  for (int i = 0; i < 10'000; ++i) {
    const double now = currentMediaTime();
    ASSERT_LE(last, now);
    last = now;
  }
}

TEST(Clock, TheMediaClockCountsSeconds) {
  const auto steady = [] {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
  };
  const double outerStart = steady();
  const double start = currentMediaTime();
  const double innerStart = steady();
  const double innerEnd = steady();
  const double end = currentMediaTime();
  const double outerEnd = steady();
  EXPECT_GE(end - start, innerEnd - innerStart - 1e-6);
  EXPECT_LE(end - start, outerEnd - outerStart + 1e-6);
}

TEST(Clock, AReplacedSourceAnswersForBothClocks) {
  ManualClock clock;
  clock.setWallTime(1'700'000'012'345ms);
  clock.setMediaTime(77.5);
  const ScopedClock scope(clock);
  EXPECT_EQ(currentDate(), std::chrono::system_clock::time_point(1'700'000'012'345ms));
  EXPECT_EQ(currentTime(), 1700000012.345);
  EXPECT_EQ(currentMediaTime(), 77.5);
}

TEST(Clock, AReplacedSourceMayMoveBetweenReadings) {
  ManualClock clock;
  const ScopedClock scope(clock);
  clock.setWallTime(20s);
  EXPECT_EQ(currentTime(), 20.0);
  constexpr std::chrono::system_clock::duration kStep(1);  // a microsecond in some libraries
  clock.setWallTime(20s + kStep);
  EXPECT_EQ((currentDate() - std::chrono::system_clock::time_point(20s)).count(), kStep.count());
}

TEST(Clock, SecondsAreTheDoubleNearestToTheDate) {
  struct Row {
    std::chrono::nanoseconds date;
    double seconds;
  };
  const Row rows[] = {
      {0ns, 0.0},
      {1ns, 1e-9},
      {-1ns, -1e-9},
      {1us, 1e-6},
      {-1us, -1e-6},
      {-1'500ms, -1.5},
      {1'700'000'012'340ms, 1700000012.34},
      {1'700'000'012'345'678us, 1700000012.345678},
      {1'700'000'012'345'678'901ns, 1700000012.345678901},
      {1'234'567'890'123'456'789ns, 1234567890.123456789},
      {1'700'000'000'999'999'999ns, 1700000000.999999999},
      {-1'700'000'000'000'000'001ns, -1700000000.000000001},
  };
  using Step = std::chrono::system_clock::duration;
  for (const Row& row : rows) {
    // A clock of coarser steps has no such date.
    if (std::chrono::duration_cast<Step>(row.date) != row.date) continue;
    ManualClock clock;
    clock.setWallTime(row.date);
    const ScopedClock scope(clock);
    EXPECT_EQ(currentTime(), row.seconds) << row.date.count() << " ns";
  }
}

TEST(Clock, TheEndOfTheScopeBringsBackTheSourceFromBefore) {
  ManualClock outer;
  outer.setMediaTime(1.0);
  ManualClock inner;
  inner.setMediaTime(2.0);
  {
    const ScopedClock outerScope(outer);
    {
      const ScopedClock innerScope(inner);
      EXPECT_EQ(currentMediaTime(), 2.0);
    }
    EXPECT_EQ(currentMediaTime(), 1.0);
  }
  const int readings = outer.mediaReadings() + outer.wallReadings();
  EXPECT_GT(currentTime(), 1.6e9);  // the system's clock again: this code is younger than that
  currentMediaTime();
  EXPECT_EQ(outer.mediaReadings() + outer.wallReadings(), readings);
}

}  // namespace
}  // namespace VelWhiteBoard
