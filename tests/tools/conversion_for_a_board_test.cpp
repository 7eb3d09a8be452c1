// The conversions toward the board for a board whose size is passed: they give what the forms
// without a size give when the tool manager has that size, and leave its own size alone.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/tools/tool_manager.h"
#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/diagrams.h"
#include "VelWhiteBoard/vectors/strokes.h"

#include "tests/support/fresh_tool_manager.h"
#include "tests/support/print_records.h"
#include "tests/support/special_numbers.h"

namespace VelWhiteBoard {
namespace {

class ConversionForABoard : public FreshToolManager {
 protected:
  ConversionForABoard() { manager.setWbSize(kOwn); }

  /// At each version and for boards of every size: asks `expected()` while the tool manager has
  /// that size, and calls `check(size, what was expected)` while it has another.
  template <class Expected, class Check>
  void forEachBoard(Expected expected, Check check) {
    const double sides[] = {400, 225, 1366.5, 1.0 / 3, 0, -400, 1e300, kNaN, kInfinity};
    for (const std::uint64_t version : {0U, 1U, 2U}) {
      manager.setVersion(version);
      for (const double width : sides) {
        for (const double height : sides) {
          SCOPED_TRACE(::testing::Message() << width << " x " << height << " at " << version);
          const Size other{width, height};
          manager.setWbSize(other);
          const auto wanted = expected();
          manager.setWbSize(kOwn);
          check(other, wanted);
          EXPECT_EQ(manager.wbSize(), kOwn);
        }
      }
    }
  }

  static std::vector<std::shared_ptr<VelWbVecPoint>> oneOfEach() {
    auto box = std::make_shared<VelWbVecSquare>();
    auto text = std::make_shared<VelWbVecText>();
    auto circle = std::make_shared<VelWbVecCircle>();
    box->h = 0.2;
    text->h = 1.0 / 3;
    circle->h = -0.1;
    return {std::make_shared<VelWbVecPoint>(), std::make_shared<VelWbVecLine>(), box, text, circle};
  }

  static constexpr Size kOwn{640, 480};
};

TEST_F(ConversionForABoard, APointIsWrittenForTheSizePassed) {
  VelWbVecLine line;
  VWBToolManager::convertPoint({100, 50}, line, {400, 225});
  EXPECT_EQ((Point{line.x, line.y}), (Point{-0.25, -0.27777}));
  VWBToolManager::convertPoint({100, 50}, line, {200, 100});
  EXPECT_EQ((Point{line.x, line.y}), (Point{0, 0}));
}

TEST_F(ConversionForABoard, ASizeIsWrittenForTheSizePassed) {
  VelWbVecSquare box;
  VWBToolManager::convertSize({100, 45}, box, {400, 225});
  EXPECT_EQ((Size{box.w, box.h}), (Size{0.25, 0.2}));
  VWBToolManager::convertSize({100, -50}, box, {300, 75});
  EXPECT_EQ((Size{box.w, box.h}), (Size{0.33333, -0.66666}));
}

TEST_F(ConversionForABoard, PointAndSizeAreWrittenForTheSizePassed) {
  manager.setVersion(1);
  VelWbVecSquare box;
  box.h = 0.9;
  VWBToolManager::convertPoint({100, 50}, {100, 45}, box, {400, 225});
  EXPECT_EQ((Size{box.w, box.h}), (Size{0.25, 0.2}));
  EXPECT_EQ((Point{box.x, box.y}), (Point{-0.25, -0.07777}));
}

TEST_F(ConversionForABoard, APointToScaleIsForTheSizePassed) {
  EXPECT_EQ(VWBToolManager::convertPointToScale({100, 50}, {400, 225}), (Point{-0.25, -0.27777}));
  EXPECT_EQ(VWBToolManager::convertPointToScale({100, 50}, {100, 50}), (Point{0.5, 0.5}));
}

TEST_F(ConversionForABoard, APointIsWrittenAsOnABoardOfThatSize) {
  const auto written = [] {
    auto vectors = oneOfEach();
    for (const auto& vector : vectors) VWBToolManager::convertPoint({123.4, 56.7}, *vector);
    return vectors;
  };
  forEachBoard(written, [this](Size other, const auto& wanted) {
    auto byClass = oneOfEach();
    auto byInstance = oneOfEach();
    for (std::size_t i = 0; i < wanted.size(); ++i) {
      VWBToolManager::convertPoint({123.4, 56.7}, *byClass[i], other);
      EXPECT_EQ(*byClass[i], *wanted[i]);
      manager._convertPoint({123.4, 56.7}, *byInstance[i], other);
      EXPECT_EQ(*byInstance[i], *wanted[i]);
    }
  });
}

TEST_F(ConversionForABoard, ASizeIsWrittenAsOnABoardOfThatSize) {
  const auto written = [] {
    VelWbVecSquare box;
    VWBToolManager::convertSize({123.4, 56.7}, box);
    return box;
  };
  forEachBoard(written, [this](Size other, const VelWbVecSquare& wanted) {
    VelWbVecSquare byClass;
    VWBToolManager::convertSize({123.4, 56.7}, byClass, other);
    EXPECT_EQ(byClass, wanted);
    VelWbVecSquare byInstance;
    manager._convertSize({123.4, 56.7}, byInstance, other);
    EXPECT_EQ(byInstance, wanted);
  });
}

TEST_F(ConversionForABoard, PointAndSizeAreWrittenAsOnABoardOfThatSize) {
  const auto written = [] {
    VelWbVecSquare box;
    VWBToolManager::convertPoint({123.4, 56.7}, {12.3, 45.6}, box);
    return box;
  };
  forEachBoard(written, [](Size other, const VelWbVecSquare& wanted) {
    VelWbVecSquare box;
    VWBToolManager::convertPoint({123.4, 56.7}, {12.3, 45.6}, box, other);
    EXPECT_EQ(box, wanted);
  });
}

TEST_F(ConversionForABoard, APointToScaleIsAsOnABoardOfThatSize) {
  const auto scaled = [] { return VWBToolManager::convertPointToScale({123.4, 56.7}); };
  forEachBoard(scaled, [this](Size other, Point wanted) {
    EXPECT_EQ(VWBToolManager::convertPointToScale({123.4, 56.7}, other), wanted);
    EXPECT_EQ(manager._convertPointToScale({123.4, 56.7}, other), wanted);
  });
}

TEST_F(ConversionForABoard, ABoxComesBackToWhereItWasPutOnThatBoard) {
  const Size other{800, 450};
  for (const std::uint64_t version : {0U, 1U, 2U}) {
    manager.setVersion(version);
    VelWbVecSquare box;
    VWBToolManager::convertPoint({200, 90}, {100, 45}, box, other);
    const Rect back = VWBToolManager::convertVectorToNSRect(box, other);
    EXPECT_NEAR(back.origin.x, 200, 0.01);
    EXPECT_NEAR(back.origin.y, 90, 0.01);
    EXPECT_NEAR(back.size.width, 100, 0.01);
    EXPECT_NEAR(back.size.height, 45, 0.01);
  }
}

TEST_F(ConversionForABoard, TheSizeInFrontOfTheBoxIsStillThatOfTheBox) {
  VelWbVecSquare box;
  VWBToolManager::convertPoint({320, 240}, {64, 48}, box);
  EXPECT_EQ((Point{box.x, box.y}), (Point{0, 0}));
  EXPECT_EQ((Size{box.w, box.h}), (Size{0.1, 0.1}));
  VelWbVecSquare other;
  other.w = other.h = 7;
  VWBToolManager::convertPoint({320, 240}, other, {64, 48});
  EXPECT_EQ((Point{other.x, other.y}), (Point{4.5, 4.5}));
  EXPECT_EQ((Size{other.w, other.h}), (Size{7, 7})) << "the size of the board is none of the box";
}

}  // namespace
}  // namespace VelWhiteBoard
