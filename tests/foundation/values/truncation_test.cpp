#include "VelWhiteBoard/foundation/values/truncation.h"

#include <cmath>
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#include "tests/support/special_numbers.h"

namespace VelWhiteBoard {
namespace {

constexpr double kTwo63 = 9223372036854775808.0;
constexpr double kTwo64 = 18446744073709551616.0;

struct Row {
  double number;
  std::int64_t asSigned;
  std::uint64_t asUnsigned;
};

const Row kRows[] = {
    {0.0, 0, 0},
    {-0.0, 0, 0},
    {0.999999, 0, 0},
    {-0.999999, 0, 0},
    {1.0, 1, 1},
    {-1.0, -1, 0},
    {2.5, 2, 2},
    {-2.5, -2, 0},
    {std::numeric_limits<double>::denorm_min(), 0, 0},
    {-std::numeric_limits<double>::denorm_min(), 0, 0},
    {4503599627370495.5, 4503599627370495, 4503599627370495},
    {-4503599627370495.5, -4503599627370495, 0},
    {9007199254740993.0, 9007199254740992, 9007199254740992},  // the literal is rounded already
    {std::nextafter(kTwo63, 0.0), 9223372036854774784, 9223372036854774784},
    {kTwo63, kHighest, 9223372036854775808U},
    {-std::nextafter(kTwo63, 0.0), -9223372036854774784, 0},
    {-kTwo63, kLowest, 0},
    {std::nextafter(-kTwo63, -kInfinity), kLowest, 0},
    {std::nextafter(kTwo64, 0.0), kHighest, 18446744073709549568U},
    {kTwo64, kHighest, kHighestUnsigned},
    {1e300, kHighest, kHighestUnsigned},
    {-1e300, kLowest, 0},
    {kInfinity, kHighest, kHighestUnsigned},
    {-kInfinity, kLowest, 0},
    {kNaN, 0, 0},
    {-kNaN, 0, 0},
};

TEST(Truncation, CutsTowardZeroAndSaturatesAtTheEndsOfTheSignedRange) {
  for (const Row& row : kRows) EXPECT_EQ(truncatedToSigned(row.number), row.asSigned) << row.number;
}

TEST(Truncation, CutsTowardZeroAndSaturatesAtTheEndsOfTheUnsignedRange) {
  for (const Row& row : kRows) {
    EXPECT_EQ(truncatedToUnsigned(row.number), row.asUnsigned) << row.number;
  }
}

TEST(Truncation, KeepsEveryIntegerAroundThePowersOfTwoThatADoubleHolds) {
  for (int power = 0; power < 53; ++power) {
    const std::int64_t number = std::int64_t{1} << power;
    for (const std::int64_t near : {number - 1, number, number + 1}) {
      const auto asDouble = static_cast<double>(near);
      EXPECT_EQ(truncatedToSigned(asDouble), near);
      EXPECT_EQ(truncatedToSigned(-asDouble), -near);
      EXPECT_EQ(truncatedToUnsigned(asDouble), static_cast<std::uint64_t>(near));
    }
  }
}

// The compiler evaluates both, too, and accepts no undefined behaviour there.
static_assert(truncatedToSigned(kNaN) == 0 && truncatedToSigned(1e300) == kHighest);
static_assert(truncatedToUnsigned(-1.0) == 0 && truncatedToUnsigned(1e300) == kHighestUnsigned);

}  // namespace
}  // namespace VelWhiteBoard
