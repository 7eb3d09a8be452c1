// The font size of a text on a board of another size.
#include <cmath>
#include <cstdint>

#include <gtest/gtest.h>

#include "VelWhiteBoard/vectors/boxes.h"

#include "tests/support/print_records.h"
#include "tests/support/special_numbers.h"

namespace VelWhiteBoard {
namespace {

VelWbVecText text(double fontSize, std::int64_t ps) {
  VelWbVecText result;
  result.fontSize = fontSize;
  result.ps = ps;
  return result;
}

TEST(FontSizes, GrowWithTheWidthOfTheBoard) {
  EXPECT_EQ(text(20, 800).fontSizeWith({800, 450}), 20.0);
  EXPECT_EQ(text(20, 800).fontSizeWith({1600, 900}), 40.0);
  EXPECT_EQ(text(20, 800).fontSizeWith({100, 900}), 2.5);
  EXPECT_EQ(text(20, 1).fontSizeWith({3, 0}), 60.0);
}

TEST(FontSizes, DoNotDependOnTheHeightOfTheBoard) {
  for (const double height : {0.0, -1.0, 1e9, kNaN, kInfinity}) {
    EXPECT_EQ(text(20, 800).fontSizeWith({400, height}), 10.0) << height;
  }
}

TEST(FontSizes, AreThoseOfTheSenderWhereTheSenderGaveNoBoardWidth) {
  for (const std::int64_t ps : {std::int64_t{0}, std::int64_t{-1}, INT64_MIN}) {
    for (const double width : {400.0, 0.0, -5.0, kNaN, kInfinity}) {
      EXPECT_EQ(text(20, ps).fontSizeWith({width, 225}), 20.0) << ps << " " << width;
    }
  }
}

TEST(FontSizes, AreMultipliedBeforeTheyAreDivided) {
  // Divided first, the last bit differs.
  const double product = 1366.0 * 17.3;
  EXPECT_EQ(text(17.3, 1013).fontSizeWith({1366, 768}), product / 1013.0);
  EXPECT_NE(product / 1013.0, 1366.0 / 1013.0 * 17.3);
}

TEST(FontSizes, ComputeWithAnyNumber) {
  EXPECT_EQ(text(20, 400).fontSizeWith({0, 225}), 0.0);
  EXPECT_EQ(text(20, 400).fontSizeWith({-800, 225}), -40.0);
  EXPECT_EQ(text(20, 400).fontSizeWith({kInfinity, 225}), kInfinity);
  EXPECT_EQ(text(kInfinity, 400).fontSizeWith({400, 225}), kInfinity);
  EXPECT_EQ(text(-20, 400).fontSizeWith({800, 225}), -40.0);
  EXPECT_TRUE(std::isnan(text(20, 400).fontSizeWith({kNaN, 225})));
  EXPECT_TRUE(std::isnan(text(kNaN, 400).fontSizeWith({400, 225})));
  EXPECT_TRUE(std::isnan(text(0, 400).fontSizeWith({kInfinity, 225})));
  EXPECT_TRUE(std::isnan(text(kNaN, 0).fontSizeWith({400, 225})));
  EXPECT_EQ(text(20, INT64_MAX).fontSizeWith({0x1p63, 225}), 20.0);
}

TEST(FontSizes, AreAskedForWithoutAChangeToTheText) {
  const VelWbVecText before = text(20, 800);
  const VelWbVecText asked = before;
  EXPECT_EQ(asked.fontSizeWith({400, 225}), 10.0);
  EXPECT_EQ(asked, before);
}

}  // namespace
}  // namespace VelWhiteBoard
