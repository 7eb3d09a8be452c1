// Strokes that meet themselves or share their positions; their copies and their dictionary.
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
#include "VelWhiteBoard/vectors/strokes.h"

#include "tests/support/print_records.h"
#include "tests/support/strokes.h"

namespace VelWhiteBoard {
namespace {

TEST(StrokeSharing, AStrokeAppendedToItselfGivesWhatTheRulesSay) {
  VelWbVecLine seeded = piece(1, 2, 3);
  seeded.append(seeded);
  EXPECT_EQ(*seeded.path, (Path{{1, 2, 3}})) << "its own position is no newer than itself";

  VelWbVecLine timed = piece(0, 0, 9, Path{{1, 1, 1}, {2, 2, 2}});
  const auto before = timed.copyWithZone();
  timed.append(timed);
  EXPECT_EQ(timed, *before);

  VelWbVecLine untimed = piece(0, 0, 0, Path{{1, 1}, {2, 2}});
  untimed.append(untimed);
  EXPECT_EQ(*untimed.path, (Path{{1, 1}, {2, 2}, {1, 1}, {2, 2}}));

  VelWbVecLine mixed = piece(0, 0, 0, Path{{1, 1, 4}, {2, 2}, {3, 3, 0}, {4}, {5, 5}});
  mixed.append(mixed);
  EXPECT_EQ(*mixed.path, (Path{{1, 1, 4}, {2, 2}, {3, 3, 0}, {4}, {5, 5}, {1, 1, 4}}));

  VelWbVecLine moved = piece(0, 0, 0);
  moved.offset = Array{1};
  moved.append(moved);
  EXPECT_EQ(moved.path, std::nullopt);
  EXPECT_EQ(moved.offset, Array{1});

  VelWbVecLine nameless;
  nameless.append(nameless);
  EXPECT_EQ(nameless, VelWbVecLine());
}

TEST(StrokeSharing, ALongUntimedStrokeAppendedToItselfDoubles) {
  VelWbVecLine stroke = piece(0, 0, 0, Path{});
  for (int index = 0; index < 3000; ++index) stroke.path->push_back({1.0 * index, 0});
  stroke.append(stroke);
  ASSERT_EQ(stroke.path->size(), 6000U);
  EXPECT_EQ((*stroke.path)[3000][0], 0.0);
  EXPECT_EQ((*stroke.path)[5999][0], 2999.0);
}

TEST(StrokeSharing, AnUpdateThatSharesItsPositionsWithTheStrokeIsLeftAsItIs) {
  VelWbVecLine stroke = piece(0, 0, 0, Path{{1, 1, 1}, {2, 2, 2}});
  const auto update = stroke.copyWithZone();
  update->path->push_back({3, 3, 3});
  stroke.append(*update);
  stroke.append(piece(4, 4, 4));
  EXPECT_EQ(*update->path, (Path{{1, 1, 1}, {2, 2, 2}, {3, 3, 3}}));
  EXPECT_EQ(*stroke.path, (Path{{1, 1, 1}, {2, 2, 2}, {3, 3, 3}, {4, 4, 4}}));
}

TEST(StrokeSharing, ACopyTakenBeforeAPieceArrivesKeepsTheStrokeAsItWas) {
  VelWbVecLine stroke = piece(0, 0, 0);
  std::vector<std::pair<std::shared_ptr<VelWbVecLine>, std::size_t>> copies;
  for (int index = 1; index <= 3000; ++index) {
    stroke.append(piece(index, index, index));
    if (index % 500 != 0) continue;
    copies.emplace_back(stroke.mutableCopyWithZone(), stroke.path->size());
    EXPECT_EQ(copies.back().first->path->back().data(), stroke.path->back().data())
        << "the positions are shared";
  }
  EXPECT_EQ(stroke.path->size(), 3001U);
  for (const auto& [copy, size] : copies) {
    ASSERT_EQ(copy->path->size(), size);
    EXPECT_EQ(copy->path->back()[2], static_cast<double>(size - 1));
  }
}

TEST(StrokeSharing, AStrokeBeganAtTheTimeOfItsFirstPositionOrAtItsOwn) {
  const struct {
    std::optional<Path> path;
    double expected;
  } rows[] = {{std::nullopt, 7},
              {Path{}, 7},
              {Path{{1, 2}}, 7},
              {Path{{1, 2}, {3, 4, 5}}, 7},
              {Path{{}}, 7},
              {Path{{1, 2, 3}}, 3},
              {Path{{1, 2, 0}, {3, 4, 5}}, 0},
              {Path{{1, 2, -1, 8}}, -1}};
  for (const auto& row : rows) {
    VelWbVecPoint point;
    point.ts = 7;
    point.path = row.path;
    EXPECT_EQ(point.startTimeStamp(), row.expected) << point.description();
  }
}

TEST(StrokeSharing, AMutableCopyOfAPointLeavesNothingOut) {
  VelWbVecPoint point;
  point.type = "t";
  point.ts = 1;
  point.ID = "i";
  point.x = 2;
  point.y = 3;
  point.ps = 4;
  point.end = true;
  EXPECT_EQ(*point.mutableCopyWithZone(), point) << "no path stays no path";
  point.path = Path{{1, 2, 3}, {}};
  const auto copy = point.mutableCopyWithZone();
  EXPECT_EQ(*copy, point);
  EXPECT_EQ((*copy->path)[0].data(), (*point.path)[0].data());
  copy->path->push_back({9, 9, 9});
  EXPECT_EQ(point.path->size(), 2U);
}

TEST(StrokeSharing, AMutableCopyOfALineLeavesNothingOut) {
  VelWbVecLine line = piece(1, 2, 3);
  line.ps = 4;
  line.end = true;
  line.color = "#112233FF";
  line.widthIndex = 5;
  line.pixel = 6;
  EXPECT_EQ(*line.mutableCopyWithZone(), line);
  line.path = Path{{1, 2, 3}};
  line.offset = Array{1, Array{2}};
  const auto copy = line.mutableCopyWithZone();
  EXPECT_EQ(*copy, line);
  copy->offset->push_back(3);
  EXPECT_EQ(line.offset->size(), 2U);
}

TEST(StrokeSharing, TheDictionaryFormOfALineHasItsKeysWithoutTheNulls) {
  VelWbVecLine line = piece(0.5, -0.25, 10);
  EXPECT_EQ(Value(modelToJSONObject(line)),
            Value::parse(R"({"type":"line","ts":10.0,"ID":"s","x":0.5,"y":-0.25,"ps":0,
                             "end":false,"widthIndex":0,"pixel":0})"));
  line.path = Path{{1, 2, 3}};
  line.color = "#112233FF";
  line.offset = Array{};
  line.end = true;
  EXPECT_EQ(Value(modelToJSONObject(line)),
            Value::parse(R"({"type":"line","ts":10.0,"ID":"s","x":0.5,"y":-0.25,"ps":0,
                             "end":true,"path":[[1.0,2.0,3.0]],"color":"#112233FF","widthIndex":0,
                             "pixel":0,"offset":[]})"));
}

}  // namespace
}  // namespace VelWhiteBoard
