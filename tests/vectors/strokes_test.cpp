// Strokes: how later pieces are folded into the first.
#include "VelWhiteBoard/vectors/strokes.h"

#include <cmath>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/commands.h"

#include "tests/support/print_records.h"
#include "tests/support/special_numbers.h"
#include "tests/support/strokes.h"

namespace VelWhiteBoard {
namespace {

/// The path of a stroke with `stored` after an update with `incoming`.
Path folded(Path stored, Path incoming) {
  VelWbVecLine stroke = piece(0, 0, 0, std::move(stored));
  stroke.append(piece(0, 0, 0, std::move(incoming)));
  return *stroke.path;
}

TEST(Strokes, TheInitialStateIsZeroFalseAndNull) {
  const VelWbVecLine line;
  EXPECT_EQ(line.x, 0.0);
  EXPECT_EQ(line.y, 0.0);
  EXPECT_EQ(line.ps, 0);
  EXPECT_FALSE(line.end);
  EXPECT_EQ(line.path, std::nullopt);
  EXPECT_EQ(line.color, std::nullopt);
  EXPECT_EQ(line.widthIndex, 0);
  EXPECT_EQ(line.pixel, 0);
  EXPECT_EQ(line.offset, std::nullopt);
}

TEST(Strokes, OnlyAnUpdateOfTheSameTypeAndIdentifierChangesAnything) {
  using Text = std::optional<std::string>;
  const struct {
    Text type, ID, updateType, updateID;
    bool same;
  } rows[] = {
      {"line", "s", "line", "s", true},
      {"line", "s", "line", "t", false},
      {"line", "s", "eraser", "s", false},
      {"line", "s", "Line", "s", false},
      {"line", std::nullopt, "line", std::nullopt, false},
      {std::nullopt, "s", std::nullopt, "s", false},
      {std::nullopt, std::nullopt, std::nullopt, std::nullopt, false},
      {"line", "s", "line", std::nullopt, false},
      {"line", std::nullopt, "line", "s", false},
      {"line", "s", std::nullopt, "s", false},
      {"line", "", "line", "", true},  // an empty string is an identifier like any other
      {"", "", "", "", true},
      {"", "s", std::nullopt, "s", false},
  };
  for (const auto& row : rows) {
    VelWbVecLine stroke = piece(1, 2, 3);
    stroke.type = row.type;
    stroke.ID = row.ID;
    const auto before = stroke.copyWithZone();
    VelWbVecLine update = piece(4, 5, 6);
    update.type = row.updateType;
    update.ID = row.updateID;
    update.pixel = 7;
    update.offset = Array{1};
    stroke.append(update);
    EXPECT_EQ(!stroke.isEqual(*before), row.same)
        << row.type.value_or("none") << " " << row.ID.value_or("none") << " / "
        << row.updateType.value_or("none") << " " << row.updateID.value_or("none");
  }
}

TEST(Strokes, AStrokeWithoutAPathStartsOneWithItsOwnPosition) {
  VelWbVecLine stroke = piece(1, 2, 10);
  stroke.append(piece(3, 4, 11));
  EXPECT_EQ(*stroke.path, (Path{{1, 2, 10}, {3, 4, 11}}));
}

TEST(Strokes, APositionNoNewerThanTheNewestStoredOneIsDroppedButTheRestFollows) {
  VelWbVecLine stroke = piece(1, 2, 10);
  stroke.end = true;
  stroke.append(piece(3, 4, 10));
  EXPECT_EQ(*stroke.path, (Path{{1, 2, 10}}));
  EXPECT_EQ(stroke.x, 3.0);
  EXPECT_EQ(stroke.y, 4.0);
  EXPECT_EQ(stroke.ts, 10.0);
  EXPECT_FALSE(stroke.end);

  stroke.append(piece(5, 6, 9));
  EXPECT_EQ(*stroke.path, (Path{{1, 2, 10}}));
  EXPECT_EQ(stroke.x, 5.0);
  EXPECT_EQ(stroke.ts, 9.0) << "the time follows the update, also backwards";
}

TEST(Strokes, AnUpdateThatArrivesTwiceAddsNothingTheSecondTime) {
  VelWbVecLine stroke = piece(1, 2, 10);
  const VelWbVecLine single = piece(3, 4, 11);
  const VelWbVecLine batch = piece(9, 9, 15, Path{{5, 6, 12}, {7, 8, 13}, {9, 9, 15}});
  for (int round = 0; round < 3; ++round) stroke.append(single);
  for (int round = 0; round < 3; ++round) stroke.append(batch);
  EXPECT_EQ(*stroke.path, (Path{{1, 2, 10}, {3, 4, 11}, {5, 6, 12}, {7, 8, 13}, {9, 9, 15}}));
}

TEST(Strokes, TheTimeOfTheLastStoredPositionIsTheThresholdAndNotThatOfTheStroke) {
  VelWbVecLine stroke = piece(0, 0, 100, Path{{1, 1, 5}});
  stroke.append(piece(2, 2, 6));
  EXPECT_EQ(*stroke.path, (Path{{1, 1, 5}, {2, 2, 6}}));
}

TEST(Strokes, WhichPositionsOfAnUpdateAreAdded) {
  const struct {
    const char* rule;
    Path stored;
    Path incoming;
    Path expected;
  } rows[] = {
      {"newer ones, in order",
       {{0, 0, 5}},
       {{1, 1, 6}, {2, 2, 7}},
       {{0, 0, 5}, {1, 1, 6}, {2, 2, 7}}},
      {"only above the newest accepted one",
       {{0, 0, 5}},
       {{1, 1, 4}, {2, 2, 5}, {3, 3, 8}, {4, 4, 7}, {5, 5, 9}},
       {{0, 0, 5}, {3, 3, 8}, {5, 5, 9}}},
      {"the last stored position counts, not the newest",
       {{0, 0, 50}, {1, 1, 5}},
       {{2, 2, 6}},
       {{0, 0, 50}, {1, 1, 5}, {2, 2, 6}}},
      {"fewer than two numbers are skipped", {{0, 0}}, {{}, {1}, {1, 1}, {2}}, {{0, 0}, {1, 1}}},
      {"more than three numbers are kept whole",
       {{0, 0, 5}},
       {{1, 1, 6, 7, 8}, {2, 2, 6, 99}},
       {{0, 0, 5}, {1, 1, 6, 7, 8}}},
      {"an empty path has the threshold -1", {}, {{1, 1, 0}, {2, 2}}, {{1, 1, 0}, {2, 2}}},
      {"a time of 0 after a position without one does not raise it",
       {{0, 0}},
       {{1, 1, 0}, {2, 2, 0}, {3, 3, 0}},
       {{0, 0}, {1, 1, 0}, {2, 2, 0}, {3, 3, 0}}},
      {"a negative time above -1 neither",
       {{0, 0}},
       {{1, 1, -0.5}, {2, 2, -0.75}, {3, 3, -1}, {4, 4, -2}},
       {{0, 0}, {1, 1, -0.5}, {2, 2, -0.75}}},
      {"two numbers go in while the threshold is negative",
       {{0, 0}},
       {{1, 1}, {2, 2, 3}, {3, 3}, {4, 4, 5}},
       {{0, 0}, {1, 1}, {2, 2, 3}, {4, 4, 5}}},
      {"two numbers stay out when the last stored position has a time",
       {{0, 0, 5}},
       {{1, 1}, {2, 2, 6}, {3, 3}},
       {{0, 0, 5}, {2, 2, 6}}},
      {"a stored time of 0 is no negative threshold",
       {{0, 0, 0}},
       {{1, 1}, {2, 2, 0}},
       {{0, 0, 0}}},
      {"a stored negative time is one",
       {{0, 0, -5}},
       {{1, 1}, {2, 2, -4}, {3, 3, -4.5}},
       {{0, 0, -5}, {1, 1}, {2, 2, -4}, {3, 3, -4.5}}},
      {"a last position of one number has no time",
       {{0, 0, 5}, {1}},
       {{2, 2}},
       {{0, 0, 5}, {1}, {2, 2}}},
      {"a time that is no number is above nothing",
       {{0, 0, 5}},
       {{1, 1, kNaN}, {2, 2, 6}},
       {{0, 0, 5}, {2, 2, 6}}},
      {"nothing is above one", {{0, 0, kNaN}}, {{1, 1, 6}, {2, 2}}, {{0, 0, kNaN}}},
      {"an empty path adds nothing", {{0, 0, 5}}, {}, {{0, 0, 5}}},
  };
  for (const auto& row : rows)
    EXPECT_TRUE(folded(row.stored, row.incoming) == row.expected) << row.rule;
}

TEST(Strokes, AnUpdateWithAPathAddsThatAndNotItsOwnPosition) {
  VelWbVecLine stroke = piece(0, 0, 1);
  stroke.append(piece(9, 9, 99, Path{}));
  EXPECT_EQ(*stroke.path, (Path{{0, 0, 1}}));
  EXPECT_EQ(stroke.ts, 99.0);
}

TEST(Strokes, ASingleUpdateIsAddedAboveTheThresholdOfAnEmptyPath) {
  VelWbVecLine stroke = piece(0, 0, 50, Path{});
  stroke.append(piece(1, 1, -1));
  EXPECT_TRUE(stroke.path->empty()) << "-1 is not above -1";
  stroke.append(piece(2, 2, -0.5));
  EXPECT_EQ(*stroke.path, (Path{{2, 2, -0.5}}));
}

TEST(Strokes, AStrokeOfNegativeTimeSeedsThatAsTheThreshold) {
  VelWbVecLine stroke = piece(0, 0, -5);
  stroke.append(piece(1, 1, 0, Path{{1, 1}, {2, 2, -4}}));
  EXPECT_EQ(*stroke.path, (Path{{0, 0, -5}, {1, 1}, {2, 2, -4}}));
}

TEST(Strokes, TheReferenceWidthIsNotTouchedByTheRuleForPositions) {
  VelWbVecPoint point;
  point.type = "micPhone";
  point.ID = "s";
  point.ps = 400;
  VelWbVecLine update = piece(1, 2, 3);
  update.type = "micPhone";
  update.ps = 800;
  update.pixel = 9;
  point.append(update);
  EXPECT_EQ(point.ps, 400);
  EXPECT_EQ(point.x, 1.0);
}

TEST(Strokes, AnUpdateWithAnOffsetMovesTheStrokeAndGivesItsWidthButAddsNoPositions) {
  for (const bool hasPath : {false, true}) {
    VelWbVecLine stroke = piece(1, 2, 3);
    if (hasPath) stroke.path = Path{{1, 2, 3}};
    const std::optional<Path> before = stroke.path;
    VelWbVecLine update = piece(4, 5, 6, Path{{7, 8, 9}});
    update.end = true;
    update.offset = Array{10, "any"};
    update.pixel = 7;
    update.ps = 800;
    update.widthIndex = 3;
    stroke.append(update);
    EXPECT_EQ(stroke.path, before);
    EXPECT_EQ(stroke.pixel, 7);
    EXPECT_EQ(stroke.ps, 800);
    EXPECT_EQ(stroke.widthIndex, 3);
    EXPECT_EQ(stroke.x, 4.0);
    EXPECT_EQ(stroke.y, 5.0);
    EXPECT_EQ(stroke.ts, 6.0);
    EXPECT_TRUE(stroke.end);
    EXPECT_EQ(stroke.offset, (Array{10, "any"}));
  }
}

TEST(Strokes, AnEmptyOffsetMovesTooAndAPlainUpdateClearsIt) {
  VelWbVecLine stroke = piece(1, 2, 3);
  VelWbVecLine move = piece(4, 5, 6);
  move.offset.emplace();
  stroke.append(move);
  EXPECT_EQ(stroke.path, std::nullopt);
  EXPECT_EQ(stroke.offset, Array{});
  stroke.append(piece(7, 8, 9));
  EXPECT_EQ(stroke.offset, std::nullopt);
  EXPECT_EQ(*stroke.path, (Path{{4, 5, 6}, {7, 8, 9}}));
}

TEST(Strokes, AMovingLineMovesAPlainPositionedRecordToo) {
  VelWbVecPoint point;
  point.type = "line";
  point.ID = "s";
  VelWbVecLine move = piece(4, 5, 6);
  move.offset = Array{1};
  point.append(move);
  EXPECT_EQ(point.path, std::nullopt);
  EXPECT_EQ(point.x, 4.0);
}

TEST(Strokes, ALineTakesWidthAndReferenceWidthWhereGiven) {
  const struct {
    std::int64_t pixel, ps, widthIndex;
    std::int64_t newPixel, newPs, newWidthIndex;
  } rows[] = {{0, 0, -1, 5, 400, 2},
              {1, 1, 0, 1, 1, 0},
              {-7, -1, -9, 5, 400, 2},
              {9, 0, -1, 9, 400, 2},
              {0, 800, -1, 5, 800, 2},
              {0, 0, 7, 5, 400, 7},
              {INT64_MAX, INT64_MIN, INT64_MAX, INT64_MAX, 400, INT64_MAX}};
  for (const auto& row : rows) {
    VelWbVecLine stroke = piece(0, 0, 0);
    stroke.pixel = 5;
    stroke.ps = 400;
    stroke.widthIndex = 2;
    VelWbVecLine update = piece(1, 1, 1);
    update.pixel = row.pixel;
    update.ps = row.ps;
    update.widthIndex = row.widthIndex;
    stroke.append(update);
    EXPECT_EQ(stroke.pixel, row.newPixel) << row.pixel;
    EXPECT_EQ(stroke.ps, row.newPs) << row.ps;
    EXPECT_EQ(stroke.widthIndex, row.newWidthIndex) << row.widthIndex;
  }
}

TEST(Strokes, TheColorIsNeverChangedByAppending) {
  VelWbVecLine stroke = piece(0, 0, 0);
  VelWbVecLine update = piece(1, 1, 1);
  update.color = "#FFFFFFFF";
  stroke.append(update);
  EXPECT_EQ(stroke.color, std::nullopt);
  stroke.color = "#000000FF";
  stroke.append(update);
  EXPECT_EQ(stroke.color, "#000000FF");
}

TEST(Strokes, ALineKeepsItsOffsetWhenTheUpdateIsNoLine) {
  VelWbVecLine stroke = piece(0, 0, 1);
  stroke.offset = Array{1};
  stroke.pixel = 3;
  VelWbVecSquare update;
  update.type = "line";
  update.ID = "s";
  update.x = 5;
  update.ts = 2;
  update.ps = 900;
  stroke.append(update);
  EXPECT_EQ(stroke.offset, Array{1});
  EXPECT_EQ(stroke.ps, 0);
  EXPECT_EQ(*stroke.path, (Path{{0, 0, 1}, {5, 0, 2}}));
}

TEST(Strokes, AnUpdateWithoutAPositionChangesNothing) {
  VelWbVecLine stroke = piece(1, 2, 3);
  const auto before = stroke.copyWithZone();
  VelWbBaseVector base;
  base.type = "line";
  base.ID = "s";
  base.ts = 99;
  stroke.append(base);
  VelWbVecRemove remove;
  remove.type = "line";
  remove.ID = "s";
  remove.ts = 99;
  stroke.append(remove);
  EXPECT_EQ(stroke, *before);
}

TEST(Strokes, BoxesExtendLikeStrokesToo) {
  VelWbVecSquare box;
  box.type = "unknown";
  box.ID = "s";
  box.x = 1;
  box.ts = 1;
  VelWbVecSquare update = box;
  update.x = 2;
  update.ts = 2;
  update.w = 7;
  box.append(update);
  EXPECT_EQ(*box.path, (Path{{1, 0, 1}, {2, 0, 2}}));
  EXPECT_EQ(box.w, 0.0);
}

}  // namespace
}  // namespace VelWhiteBoard
