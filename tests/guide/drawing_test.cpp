// What docs/client.md tells about drawing a page, and about the kinds of change that each type of
// vector brings.
#include <VelWhiteBoard/VelWhiteBoard.h>
#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/fresh_tool_manager.h"
#include "tests/support/storage_story.h"

namespace VelWhiteBoard {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Kind = EntryChange::Kind;

// [snippet: board-in-window]
/// Where the board lies in a window: the largest rectangle of the agreed shape, in the middle.
Rect boardIn(Size window, Size shape) {
  const double scale = std::min(window.width / shape.width, window.height / shape.height);
  const Size size{shape.width * scale, shape.height * scale};
  return {{(window.width - size.width) / 2, (window.height - size.height) / 2}, size};
}
// [end]

// [snippet: colour]
/// A vector's colour, #RRGGBBAA, as the #AARRGGBB that many toolkits read.
std::string toolkitColour(const std::string& colour) {
  if (colour.size() != 9) return colour;  // #RRGGBB
  return '#' + colour.substr(7) + colour.substr(1, 6);
}
// [end]

// [snippet: stroke-points]
/// The positions of a stroke in view points, moved by its `offset`, [x, y] in normalised
/// coordinates.
std::vector<Point> pointsOf(const VelWbVecLine& stroke, Size board) {
  Point moved;
  if (stroke.offset && stroke.offset->size() == 2) {
    const Value& x = stroke.offset->front();
    const Value& y = stroke.offset->back();
    if (x.is_number() && y.is_number()) moved = {x.get<double>(), y.get<double>()};
  }
  std::vector<Point> points;
  const auto add = [&](double x, double y) {
    points.push_back(VWBToolManager::convertPointScaleToPoint({x + moved.x, y + moved.y}, board));
  };
  if (!stroke.path) add(stroke.x, stroke.y);
  for (const Path::Position position : stroke.path.value_or(Path())) {
    if (position.size() >= 2) add(position[0], position[1]);
  }
  return points;
}
// [end]

TEST(TheBoardInAWindow, KeepsItsShape) {
  EXPECT_EQ(boardIn({1000, 450}, {400, 225}), (Rect{{100, 0}, {800, 450}}));
  EXPECT_EQ(boardIn({800, 650}, {400, 225}), (Rect{{0, 100}, {800, 450}}));
}

using GuidedDrawing = FreshToolManager;

TEST_F(GuidedDrawing, PutsTheAlphaInFront) {
  EXPECT_EQ(toolkitColour(manager.markerColor()), "#5eFF3467");
  EXPECT_EQ(toolkitColour("#FF3467"), "#FF3467");
}

TEST_F(GuidedDrawing, MovesAStrokeByItsOffset) {
  const auto stroke = lineWith("s", {{-0.5, -0.5, 1}, {0, 0, 2}});
  EXPECT_THAT(pointsOf(*stroke, {400, 200}), ElementsAre(Point{0, 0}, Point{200, 100}));
  const auto move = line("s", 0, 0, 3);
  move->offset = Array{0.25, 0.5};
  stroke->append(*move);
  EXPECT_THAT(pointsOf(*stroke, {400, 200}), ElementsAre(Point{100, 100}, Point{300, 200}));
  // Each offset takes the place of the one before; a piece without one takes it away.
  stroke->append(*line("s", 0, 0, 2));
  EXPECT_THAT(pointsOf(*stroke, {400, 200}), ElementsAre(Point{0, 0}, Point{200, 100}));
  EXPECT_THAT(pointsOf(*line("t", 0.25, 0, 1), {400, 200}), ElementsAre(Point{300, 100}));
}

TEST_F(GuidedDrawing, ScalesWidthsAndLettersWithTheBoard) {
  manager.setWbSize({800, 450});
  const auto stroke =
      recordPointerCast<VelWbVecLine>(VWBToolManager::genVectorWithTool(VelWBToolLine));
  EXPECT_EQ(stroke->lineWidthWith({1200, 675}), 12);  // 4 points on a board 400 wide
  const auto words =
      recordPointerCast<VelWbVecText>(VWBToolManager::genVectorWithTool(VelWBToolText));
  EXPECT_EQ(words->fontSizeWith({1200, 675}), 30);  // 20 points on a board 800 wide
}

TEST_F(GuidedDrawing, GivesAColourOutsideThePaletteToTheVectorItself) {
  manager.setLineColor("#123456");
  const auto stroke =
      recordPointerCast<VelWbVecLine>(VWBToolManager::genVectorWithTool(VelWBToolLine));
  EXPECT_EQ(stroke->color, "#FF3467FF");
  manager.setTextColor("#123456");
  EXPECT_EQ(manager.textColor(), "#123456FF");
}

/// What is reported of a vector, after what was reported of those before it.
class ChangesOfEachType : public ::testing::Test {
 protected:
  ChangesOfEachType() {
    board.show(page(1, 1));
    board->setChangeObserver([this](const ChangeReport& report) {
      for (const EntryChange& change : report.changes) kinds_.push_back(change.kind);
    });
  }
  std::vector<Kind> kindsOf(const VectorPtr& vector) {
    kinds_.clear();
    board.save(vector);
    return kinds_;
  }

  Board board;

 private:
  std::vector<Kind> kinds_;
};

TEST_F(ChangesOfEachType, StrokesAreAddedAndExtended) {
  for (const std::string_view type :
       {VelWBVectorStrLine, VelWBVectorStrMarkerPen, VelWBVectorStrEraser}) {
    const auto piece = [type](double ts) {
      auto stroke = line(std::string(type), 0, 0, ts);
      stroke->type = type;
      return stroke;
    };
    EXPECT_THAT(kindsOf(piece(1)), ElementsAre(Kind::kAdded));
    EXPECT_THAT(kindsOf(piece(2)), ElementsAre(Kind::kExtended));
    for (const double x : {0.1, 0.2}) {
      const auto moved = piece(3);
      moved->offset = Array{x, 0.1};
      EXPECT_THAT(kindsOf(moved), ElementsAre(Kind::kEdited));
    }
  }
}

TEST_F(ChangesOfEachType, BoxesAreAddedAndEditedOnTopOrRaised) {
  for (const std::string_view type :
       {VelWBVectorStrText, VelWBVectorStrImage, VelWBVectorStrMedia, VelWBVectorStrDiagram}) {
    const Dictionary dictionary{{"type", type}, {"ID", type}, {"w", 0.1}, {"h", 0.1}};
    const auto decoded = [&] { return modelWithDictionary<VelWbBaseVector>(dictionary); };
    EXPECT_THAT(kindsOf(decoded()), ElementsAre(Kind::kAdded)) << type;
    EXPECT_THAT(kindsOf(decoded()), ElementsAre(Kind::kEdited)) << type;
    board.save(line("s" + std::string(type), 0, 0, 1));
    EXPECT_THAT(kindsOf(decoded()), ElementsAre(Kind::kRaised)) << type;
  }
}

TEST_F(ChangesOfEachType, WhatDoesNotStayGoesWithTheNextVector) {
  board.save(line("s", 0, 0, 1));
  EXPECT_THAT(kindsOf(cursor()), ElementsAre(Kind::kAdded));
  EXPECT_THAT(kindsOf(cursor()), ElementsAre(Kind::kRemovedTop, Kind::kAdded));
  EXPECT_THAT(kindsOf(camera("c")), ElementsAre(Kind::kRemovedTop, Kind::kAdded));
  EXPECT_THAT(kindsOf(magnifier("m")), ElementsAre(Kind::kRemovedTop, Kind::kAdded));
  EXPECT_THAT(kindsOf(line("s", 1, 1, 2)), ElementsAre(Kind::kRemovedTop, Kind::kExtended));
}

TEST_F(ChangesOfEachType, RemovesAndClearsTakeAway) {
  EXPECT_THAT(kindsOf(removal("s")), IsEmpty());
  board.save(line("s", 0, 0, 1), line("t", 0, 0, 1));
  EXPECT_THAT(kindsOf(removal("s")), ElementsAre(Kind::kRemoved));
  EXPECT_THAT(kindsOf(clearing()), ElementsAre(Kind::kCleared));
}

TEST_F(ChangesOfEachType, OtherRecordsAreAddedAndNeverMerged) {
  for (const std::string_view type : {VelWBVectorStrOffset, VelWBVectorStrMediaList,
                                      VelWBVectorStrInstruction, VelWBVectorStrMicPhone}) {
    const Dictionary first{{"type", type}, {"ID", type}, {"value", 1}, {"owner", 1}};
    const Dictionary later{{"type", type}, {"ID", type}, {"value", 2}, {"owner", 2}};
    EXPECT_THAT(kindsOf(modelWithDictionary<VelWbBaseVector>(first)), ElementsAre(Kind::kAdded));
    const std::string entry = modelToJSONString(*board->entryWithID(type));
    EXPECT_THAT(kindsOf(modelWithDictionary<VelWbBaseVector>(later)), IsEmpty());
    board.save(line("s" + std::string(type), 0, 0, 1));
    EXPECT_THAT(kindsOf(modelWithDictionary<VelWbBaseVector>(later)), ElementsAre(Kind::kAdded));
    EXPECT_EQ(modelToJSONString(*board->entryWithID(type)), entry);
  }
}

}  // namespace
}  // namespace VelWhiteBoard
