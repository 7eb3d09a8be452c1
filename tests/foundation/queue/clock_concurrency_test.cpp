#include <atomic>
#include <chrono>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/values/clock.h"

#include "tests/support/manual_clock.h"
#include "tests/support/together.h"

namespace VelWhiteBoard {
namespace {

using namespace std::chrono_literals;

TEST(ClockConcurrency, AReaderSeesOneSourceOrTheOtherWhileItChanges) {
  ManualClock outer;
  outer.setWallTime(1s);
  outer.setMediaTime(1.0);
  ManualClock inner;
  inner.setWallTime(2s);
  inner.setMediaTime(2.0);
  const ScopedClock scope(outer);
  std::atomic<int> strange{0};
  together(4, [&](int number) {
    for (int i = 0; i < 5000; ++i) {
      if (number == 0) {
        const ScopedClock change(inner);
      } else {
        const double wall = currentTime();
        const double media = currentMediaTime();
        if ((wall != 1.0 && wall != 2.0) || (media != 1.0 && media != 2.0)) ++strange;
      }
    }
  });
  EXPECT_EQ(strange, 0);
  EXPECT_EQ(currentTime(), 1.0);
}

}  // namespace
}  // namespace VelWhiteBoard
