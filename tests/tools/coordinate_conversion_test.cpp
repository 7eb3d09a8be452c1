// View points to normalised coordinates and back. What every operation gives to the last bit is in
// the golden table; here stand the rules, and what must hold for board sizes without meaning.
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/tools/tool_manager.h"
#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/commands.h"
#include "VelWhiteBoard/vectors/diagrams.h"
#include "VelWhiteBoard/vectors/strokes.h"

#include "tests/support/fresh_tool_manager.h"
#include "tests/support/special_numbers.h"

namespace VelWhiteBoard {
namespace {

constexpr double kLargest = std::numeric_limits<double>::max();
constexpr double kSmallest = std::numeric_limits<double>::denorm_min();

class CoordinateConversion : public FreshToolManager {
 protected:
  /// Where a stroke stands after the view point was written into it.
  static Point written(Point point) {
    VelWbVecLine line;
    VWBToolManager::convertPoint(point, line);
    return {line.x, line.y};
  }

  static std::vector<std::shared_ptr<VelWbVecSquare>> oneOfEachBox() {
    return {std::make_shared<VelWbVecSquare>(),   std::make_shared<VelWbVecFile>(),
            std::make_shared<VelWbVecVideo>(),    std::make_shared<VelWbVecText>(),
            std::make_shared<VelWbCaptureInfo>(), std::make_shared<VelWbVecDiagram>(),
            std::make_shared<VelWbVecCircle>()};
  }

  static std::vector<std::shared_ptr<VelWbVecPoint>> oneOfEachThatIsNoBox() {
    return {std::make_shared<VelWbVecPoint>(), std::make_shared<VelWbVecLine>()};
  }
};

// ---- View point to vector ----

TEST_F(CoordinateConversion, APointIsCutToFiveDecimalsTowardZeroAndNotRounded) {
  EXPECT_EQ(written({100, 50}), (Point{-0.25, -0.27777}));
  EXPECT_EQ(written({300, 175}), (Point{0.25, 0.27777}));
}

TEST_F(CoordinateConversion, TheCentreOfTheBoardIsTheOriginAndItsEdgesAreHalfAUnitAway) {
  for (const std::uint64_t version : {0U, 1U, 2U}) {
    SCOPED_TRACE(version);
    manager.setVersion(version);
    EXPECT_EQ(written({200, 112.5}), (Point{0, 0}));
    EXPECT_EQ(written({0, 0}), (Point{-0.5, -0.5}));
    EXPECT_EQ(written({400, 225}), (Point{0.5, 0.5}));
  }
}

TEST_F(CoordinateConversion, APointBeyondTheBoardIsNotClamped) {
  for (const std::uint64_t version : {0U, 1U, 2U}) {
    SCOPED_TRACE(version);
    manager.setVersion(version);
    EXPECT_EQ(written({-100, -225}), (Point{-0.75, -1.5}));
    EXPECT_EQ(written({800, 450}), (Point{1.5, 1.5}));
  }
}

TEST_F(CoordinateConversion, WhatIsCutToNothingIsAPositiveZero) {
  const Point centre = written({199.999, 112.4999});
  EXPECT_EQ(centre, (Point{0, 0}));
  EXPECT_FALSE(std::signbit(centre.x));
  EXPECT_FALSE(std::signbit(centre.y));
}

TEST_F(CoordinateConversion, AStrokeIsWrittenWithoutItsOldPosition) {
  VelWbVecLine line;
  line.x = line.y = 77;
  VWBToolManager::convertPoint({100, 50}, line);
  EXPECT_EQ((Point{line.x, line.y}), (Point{-0.25, -0.27777}));
}

TEST_F(CoordinateConversion, WritingUsesTheBoardsPresentSize) {
  manager.setWbSize({800, 450});
  manager.setWbBaseSize({1, 1});
  EXPECT_EQ(written({200, 100}), (Point{-0.25, -0.27777}));
}

TEST_F(CoordinateConversion, AtOtherVersionsABoxIsWrittenLikeAStroke) {
  for (const std::uint64_t version : {0U, 2U}) {
    manager.setVersion(version);
    for (const auto& box : oneOfEachBox()) {
      SCOPED_TRACE(box->recordClass().name);
      box->h = 0.2;
      VWBToolManager::convertPoint({100, 50}, *box);
      EXPECT_EQ((Point{box->x, box->y}), (Point{-0.25, -0.27777}));
    }
  }
}

TEST_F(CoordinateConversion, AtVersion1ABoxOfAnyClassStoresItsFarEdge) {
  manager.setVersion(1);
  for (const auto& box : oneOfEachBox()) {
    SCOPED_TRACE(box->recordClass().name);
    box->h = 0.2;
    VWBToolManager::convertPoint({100, 50}, *box);
    EXPECT_EQ((Point{box->x, box->y}), (Point{-0.25, -0.07777}));
  }
}

TEST_F(CoordinateConversion, AtVersion1WhatIsNoBoxStoresItsPointOnly) {
  manager.setVersion(1);
  for (const auto& vector : oneOfEachThatIsNoBox()) {
    SCOPED_TRACE(vector->recordClass().name);
    VWBToolManager::convertPoint({100, 50}, *vector);
    EXPECT_EQ((Point{vector->x, vector->y}), (Point{-0.25, -0.27777}));
  }
}

TEST_F(CoordinateConversion, APointChangesNothingButThePosition) {
  VelWbVecText text;
  text.w = 0.3;
  text.h = 0.2;
  text.ps = 7;
  VelWbVecText expected = text;
  VWBToolManager::convertPoint({100, 50}, text);
  expected.x = -0.25;
  expected.y = -0.27777;
  EXPECT_EQ(text, expected);
}

// ---- View size to vector ----

TEST_F(CoordinateConversion, ASizeBecomesAFractionOfTheBoards) {
  for (const std::uint64_t version : {0U, 1U, 2U}) {
    manager.setVersion(version);
    for (const auto& box : oneOfEachBox()) {
      SCOPED_TRACE(box->recordClass().name);
      box->x = 3;
      box->y = 4;
      VWBToolManager::convertSize({100, 45}, *box);
      EXPECT_EQ((Size{box->w, box->h}), (Size{0.25, 0.2}));
      EXPECT_EQ((Point{box->x, box->y}), (Point{3, 4}));
    }
  }
}

TEST_F(CoordinateConversion, ASizeIsCutToFiveDecimalsTowardZero) {
  VelWbVecSquare box;
  VWBToolManager::convertSize({400.0 / 3, -150}, box);
  EXPECT_EQ((Size{box.w, box.h}), (Size{0.33333, -0.66666}));
}

// ---- Point and size together ----

TEST_F(CoordinateConversion, AtVersion1TheFarEdgeIsThatOfTheNewHeight) {
  manager.setVersion(1);
  VelWbVecSquare box;
  box.h = 0.9;
  VWBToolManager::convertPoint({100, 50}, {100, 45}, box);
  EXPECT_EQ(box.w, 0.25);
  EXPECT_EQ(box.h, 0.2);
  EXPECT_EQ(box.x, -0.25);
  EXPECT_EQ(box.y, -0.07777);
}

TEST_F(CoordinateConversion, ABoxOfVersion1ComesBackToWhereItWasPut) {
  manager.setVersion(1);
  VelWbVecSquare box;
  VWBToolManager::convertPoint({100, 50}, {100, 45}, box);
  const Point back = VWBToolManager::convertVectorToPoint(box);
  EXPECT_EQ(back.x, 100.0);
  EXPECT_NEAR(back.y, 50.00175, 1e-9);
}

// ---- View point to normalised point ----

TEST_F(CoordinateConversion, APointToScaleGivesWhatAStrokeIsGiven) {
  EXPECT_EQ(VWBToolManager::convertPointToScale({100, 50}), (Point{-0.25, -0.27777}));
  for (const std::uint64_t version : {0U, 1U, 2U}) {
    manager.setVersion(version);
    for (const Size size : {Size{400, 225}, Size{1366, 768}, Size{333.3, 0.1}}) {
      manager.setWbSize(size);
      for (int i = -5; i < 25; ++i) {
        const Point point{size.width * i / 17, size.height * i / 13};
        EXPECT_EQ(VWBToolManager::convertPointToScale(point), written(point)) << i;
      }
    }
  }
}

// ---- Vector to view point ----

TEST_F(CoordinateConversion, AVectorComesBackNearItsViewPoint) {
  VelWbVecPoint vector;
  vector.x = -0.25;
  vector.y = -0.27777;
  for (const std::uint64_t version : {0U, 1U, 2U}) {
    manager.setVersion(version);
    const Point point = VWBToolManager::convertVectorToPoint(vector);
    EXPECT_EQ(point.x, 100.0);
    EXPECT_NEAR(point.y, 50.00175, 1e-9);
  }
}

TEST_F(CoordinateConversion, TheWayBackCutsNothing) {
  manager.setWbSize({1, 1});
  VelWbVecPoint vector;
  vector.x = 1.0 / 3;
  vector.y = 0.123456789;
  const Point point = VWBToolManager::convertVectorToPoint(vector);
  EXPECT_NEAR(point.x, 0.83333333333333, 1e-13);
  EXPECT_NEAR(point.y, 0.623456789, 1e-13);
}

TEST_F(CoordinateConversion, AtVersion1ABoxOfAnyClassGivesItsNearEdge) {
  manager.setVersion(1);
  for (const auto& box : oneOfEachBox()) {
    SCOPED_TRACE(box->recordClass().name);
    box->y = 0.25;
    box->h = 0.5;
    EXPECT_EQ(VWBToolManager::convertVectorToPoint(*box), (Point{200, 56.25}));
  }
  for (const auto& vector : oneOfEachThatIsNoBox()) {
    vector->y = 0.25;
    EXPECT_EQ(VWBToolManager::convertVectorToPoint(*vector), (Point{200, 168.75}));
  }
}

TEST_F(CoordinateConversion, AtOtherVersionsTheHeightPlaysNoPart) {
  for (const std::uint64_t version : {0U, 2U}) {
    manager.setVersion(version);
    for (const auto& box : oneOfEachBox()) {
      box->y = 0.25;
      box->h = 0.5;
      EXPECT_EQ(VWBToolManager::convertVectorToPoint(*box), (Point{200, 168.75}));
    }
  }
}

TEST_F(CoordinateConversion, ReadingTakesAnotherBoardsSize) {
  VelWbVecSquare box;
  box.x = 0.25;
  box.w = 0.125;
  box.h = 0.5;
  const Size other{800, 100};
  EXPECT_EQ(VWBToolManager::convertVectorToPoint(box, other), (Point{600, 50}));
  EXPECT_EQ(VWBToolManager::convertPointScaleToPoint({-0.25, 0}, other), (Point{200, 50}));
  EXPECT_EQ(VWBToolManager::convertVectorToNSRect(box, other), (Rect{{600, 50}, {100, 50}}));
}

TEST_F(CoordinateConversion, ReadingChangesNothing) {
  VelWbVecSquare box;
  box.x = 0.25;
  box.y = -0.125;
  box.w = box.h = 0.5;
  const VelWbVecSquare before = box;
  VWBToolManager::convertVectorToPoint(box);
  VWBToolManager::convertVectorToNSRect(box);
  EXPECT_EQ(box, before);
}

// ---- Normalised point to view point ----

TEST_F(CoordinateConversion, ANormalisedPointComesBackLikeAStroke) {
  for (const std::uint64_t version : {0U, 1U, 2U}) {
    manager.setVersion(version);
    EXPECT_EQ(VWBToolManager::convertPointScaleToPoint({0, 0}), (Point{200, 112.5}));
    EXPECT_EQ(VWBToolManager::convertPointScaleToPoint({-0.5, -0.5}), (Point{0, 0}));
    EXPECT_EQ(VWBToolManager::convertPointScaleToPoint({0.5, 0.5}), (Point{400, 225}));
    EXPECT_EQ(VWBToolManager::convertPointScaleToPoint({1.5, -1}), (Point{800, -112.5}));
  }
}

TEST_F(CoordinateConversion, TheTwoVersionsAddTheHalfInDifferentWays) {
  // So small a number is lost when a half is taken off it first.
  manager.setWbSize({1, 1});
  const double small = -0.5 + 0x1p-54;
  EXPECT_EQ(VWBToolManager::convertPointScaleToPoint({small, small}), (Point{0, 0}));
  manager.setVersion(1);
  EXPECT_EQ(VWBToolManager::convertPointScaleToPoint({small, small}), (Point{0, 0x1p-54}));
}

// ---- Vector to rectangle ----

TEST_F(CoordinateConversion, ARectangleStartsAtTheBoxesPosition) {
  VelWbVecSquare box;
  box.x = -0.25;
  box.y = 0.25;
  box.w = 0.5;
  box.h = 0.5;
  for (const std::uint64_t version : {0U, 2U}) {
    manager.setVersion(version);
    EXPECT_EQ(VWBToolManager::convertVectorToNSRect(box), (Rect{{100, 168.75}, {200, 112.5}}));
  }
}

TEST_F(CoordinateConversion, AtVersion1TheRectangleOfAnyBoxStartsItsHeightEarlier) {
  manager.setVersion(1);
  for (const auto& box : oneOfEachBox()) {
    SCOPED_TRACE(box->recordClass().name);
    box->x = -0.25;
    box->y = 0.25;
    box->w = 0.5;
    box->h = 0.5;
    EXPECT_EQ(VWBToolManager::convertVectorToNSRect(*box), (Rect{{100, 56.25}, {200, 112.5}}));
  }
}

// ---- Numbers without meaning ----

TEST_F(CoordinateConversion, NoNumberMakesAConversionWriteWhatIsNotFinite) {
  const double awkward[] = {0.0,  -0.0,      1.0 / 3,    -400,     1e-300,    1e300,
                            kNaN, kInfinity, -kInfinity, kLargest, kSmallest, -kLargest};
  // The cut holds 64 bits, five digits of them decimals.
  const auto isCut = [](double value) { return std::abs(value) <= 92233720368547.76; };
  for (const std::uint64_t version : {0U, 1U}) {
    manager.setVersion(version);
    for (const double width : awkward) {
      for (const double height : awkward) {
        manager.setWbSize({width, height});
        for (const double given : awkward) {
          SCOPED_TRACE(::testing::Message() << width << " x " << height << ": " << given);
          VelWbVecSquare box;
          VWBToolManager::convertPoint({given, given}, {given, given}, box);
          EXPECT_TRUE(isCut(box.x) && isCut(box.y) && isCut(box.w) && isCut(box.h));
          box.h = given;
          VWBToolManager::convertPoint({given, given}, box);
          EXPECT_TRUE(isCut(box.x) && isCut(box.y));
          const Point scale = VWBToolManager::convertPointToScale({given, given});
          EXPECT_TRUE(isCut(scale.x) && isCut(scale.y));
        }
      }
    }
  }
}

TEST_F(CoordinateConversion, AValueThatTheCutCannotHoldSaturatesAndNoNumberBecomesZero) {
  manager.setWbSize({1e-300, 0});
  EXPECT_EQ(VWBToolManager::convertPointToScale({1, 0}), (Point{92233720368547.75807, 0}));
  EXPECT_EQ(VWBToolManager::convertPointToScale({-1, 5}),
            (Point{-92233720368547.75808, 92233720368547.75807}));
  EXPECT_EQ(VWBToolManager::convertPointToScale({kNaN, -5}), (Point{0, -92233720368547.75808}));
}

TEST_F(CoordinateConversion, ReadingAcceptsAnyNumber) {
  // What comes out of such sizes means nothing; it has to come out.
  const double awkward[] = {0.0, -0.0, -400, 1e300, kNaN, kInfinity, -kInfinity, kSmallest};
  for (const std::uint64_t version : {0U, 1U}) {
    manager.setVersion(version);
    for (const double side : awkward) {
      for (const double value : awkward) {
        VelWbVecSquare box;
        box.x = box.y = box.w = box.h = value;
        const Size size{side, side};
        const Point point = VWBToolManager::convertVectorToPoint(box, size);
        const Rect rect = VWBToolManager::convertVectorToNSRect(box, size);
        // Both read x the same way, so they agree even where it is no number.
        EXPECT_TRUE(point.x == rect.origin.x || (std::isnan(point.x) && std::isnan(rect.origin.x)));
        const Point scale = VWBToolManager::convertPointScaleToPoint({value, value}, size);
        EXPECT_TRUE(point.x == scale.x || (std::isnan(point.x) && std::isnan(scale.x)));
      }
    }
  }
}

// ---- Forms of the operations ----

TEST_F(CoordinateConversion, TheInstanceTwinsGiveTheSame) {
  const Size size{800, 450};
  for (const std::uint64_t version : {0U, 1U}) {
    manager.setVersion(version);
    VelWbVecSquare byClass;
    VelWbVecSquare byInstance;
    VWBToolManager::convertSize({100, 45}, byClass);
    manager._convertSize({100, 45}, byInstance);
    EXPECT_EQ(byClass, byInstance);
    VWBToolManager::convertPoint({100, 50}, byClass);
    manager._convertPoint({100, 50}, byInstance);
    EXPECT_EQ(byClass, byInstance);
    EXPECT_EQ(VWBToolManager::convertVectorToPoint(byClass, size),
              manager._convertVectorToPoint(byClass, size));
    EXPECT_EQ(VWBToolManager::convertVectorToNSRect(byClass, size),
              manager._convertVectorToNSRect(byClass, size));
    EXPECT_EQ(VWBToolManager::convertPointScaleToPoint({0.1, 0.2}, size),
              manager._convertPointScaleToPoint({0.1, 0.2}, size));
    EXPECT_EQ(VWBToolManager::convertPointToScale({10, 20}),
              manager._convertPointToScale({10, 20}));
  }
}

}  // namespace
}  // namespace VelWhiteBoard
