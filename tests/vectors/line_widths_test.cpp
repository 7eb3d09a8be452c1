// How wide strokes and diagrams are drawn, and when the tool manager's tables decide.
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/tools/tool_manager.h"
#include "VelWhiteBoard/vectors/diagrams.h"
#include "VelWhiteBoard/vectors/strokes.h"

namespace VelWhiteBoard {
namespace {

class LineWidths : public ::testing::Test {
 protected:
  void SetUp() override {
    tools_.init();
    tools_.setWbBaseSize({400, 300});
    tools_.setWbSize({800, 10});
  }

  VelWbVecLine line(const char* type, std::int64_t widthIndex) {
    VelWbVecLine result;
    result.type = type;
    result.widthIndex = widthIndex;
    return result;
  }

  /// An entry of a table as the widths see it.
  static double entry(const std::vector<double>& table, std::size_t index) {
    return static_cast<double>(static_cast<float>(table.at(index)));
  }

  VWBToolManager& tools_ = VWBToolManager::sharedManager();
};

TEST_F(LineWidths, AStrokesPixelsAreScaledFromItsReferenceWidth) {
  VelWbVecLine stroke = line("line", 2);
  stroke.pixel = 3;
  stroke.ps = 1000;
  EXPECT_EQ(stroke.lineWidthWith({500, 77}), 1.5);
  EXPECT_EQ(stroke.lineWidthWith({0, 77}), 0.0);
  EXPECT_EQ(stroke.lineWidthWith({-500, 0}), -1.5);
  stroke.pixel = 1;
  stroke.ps = 3;
  EXPECT_EQ(stroke.lineWidthWith({0.1, 0}), 0.1 * 1 / 3) << "the multiplication comes first";
  stroke.type = "no stroke";
  EXPECT_EQ(stroke.lineWidthWith({6, 0}), 2.0) << "whatever the type";
}

TEST_F(LineWidths, TheMultiplicationComesBeforeTheDivision) {
  VelWbVecLine stroke = line("line", 0);
  stroke.pixel = 7;
  stroke.ps = 10;
  const double width = 0.3;
  ASSERT_NE(width * 7 / 10, width * (7.0 / 10)) << "the two orders must differ here";
  EXPECT_EQ(stroke.lineWidthWith({width, 0}), width * 7 / 10);
  VelWbVecDiagram diagram;
  diagram.pixel = 7;
  diagram.ps = 10;
  EXPECT_EQ(diagram.lineWidthWith({width, 0}), width * 7 / 10);
}

TEST_F(LineWidths, WithoutPixelsOrReferenceWidthTheTableOfTheTypeDecides) {
  const struct {
    std::int64_t pixel, ps;
  } rows[] = {{0, 1000}, {-1, 1000}, {3, 0}, {3, -1}, {0, 0}};
  for (const auto& row : rows) {
    VelWbVecLine stroke = line("line", 1);
    stroke.pixel = row.pixel;
    stroke.ps = row.ps;
    EXPECT_EQ(stroke.lineWidthWith({200, 0}), entry(tools_.lineWidthArr(), 1) * (200.0 / 400.0))
        << row.pixel << " " << row.ps;
  }
}

TEST_F(LineWidths, EachStrokeTypeHasItsTableAndBothVersionsTheirOwn) {
  for (const std::uint64_t version : {0U, 1U, 2U}) {
    tools_.setVersion(version);
    const struct {
      const char* type;
      const std::vector<double>& table;
    } rows[] = {{"line", tools_.lineWidthArr()},
                {"markerPen", tools_.markerWidthArr()},
                {"eraser", tools_.eraserWidthArr()}};
    for (const auto& row : rows) {
      for (std::size_t index = 0; index < row.table.size(); ++index) {
        EXPECT_EQ(line(row.type, static_cast<std::int64_t>(index)).lineWidthWith({1000, 0}),
                  entry(row.table, index) * (1000.0 / 400.0))
            << row.type << " " << index << " at version " << version;
      }
    }
  }
}

TEST_F(LineWidths, AnIndexOutsideTheTableReadsEntryZero) {
  const auto length = static_cast<std::int64_t>(tools_.lineWidthArr().size());
  for (const std::int64_t index : {std::int64_t{-1}, INT64_MIN, length, length + 1, INT64_MAX}) {
    EXPECT_EQ(line("line", index).lineWidthWith({400, 0}), entry(tools_.lineWidthArr(), 0))
        << index;
  }
}

TEST_F(LineWidths, AnyOtherTypeIsTwoPointsWideAtTheBaseWidth) {
  for (const char* type : {"text", "", "Line", "diagram"}) {
    EXPECT_EQ(line(type, 1).lineWidthWith({100, 0}), 0.5) << type;
  }
  VelWbVecLine nameless;
  EXPECT_EQ(nameless.lineWidthWith({400, 0}), 2.0);
}

TEST_F(LineWidths, LineWidthIsForTheBoardAsItIsNow) {
  VelWbVecLine stroke = line("line", 0);
  EXPECT_EQ(stroke.lineWidth(), stroke.lineWidthWith({800, 0}));
  stroke.pixel = 4;
  stroke.ps = 1600;
  EXPECT_EQ(stroke.lineWidth(), 2.0);
  VelWbVecDiagram diagram;
  EXPECT_EQ(diagram.lineWidth(), 1.0);
  diagram.pixel = 4;
  diagram.ps = 400;
  EXPECT_EQ(diagram.lineWidth(), 8.0);
  tools_.setWbSize({100, 0});
  EXPECT_EQ(stroke.lineWidth(), 0.25);
  EXPECT_EQ(diagram.lineWidth(), 1.0);
}

TEST_F(LineWidths, ADiagramWithoutPixelsOrReferenceWidthIsOnePointWideWhateverTheBoard) {
  const struct {
    std::int64_t pixel, ps;
    double width, expected;
  } rows[] = {{0, 800, 400, 1.0}, {-1, 800, 400, 1.0}, {4, 0, 400, 1.0}, {4, -5, 400, 1.0},
              {4, 0, 1e9, 1.0},   {4, 800, 400, 2.0},  {1, 1, 0, 0.0},   {4, 800, 100, 0.5}};
  for (const auto& row : rows) {
    VelWbVecCircle circle;
    circle.pixel = row.pixel;
    circle.ps = row.ps;
    EXPECT_EQ(circle.lineWidthWith({row.width, 5}), row.expected)
        << row.pixel << " " << row.ps << " " << row.width;
  }
}

TEST_F(LineWidths, ABaseWidthOfZeroIsNoDanger) {
  tools_.setWbBaseSize({0, 0});
  EXPECT_GT(line("line", 0).lineWidthWith({400, 0}), 1e300);
  EXPECT_NE(line("line", 0).lineWidthWith({0, 0}), line("line", 0).lineWidthWith({0, 0}));
}

}  // namespace
}  // namespace VelWhiteBoard
