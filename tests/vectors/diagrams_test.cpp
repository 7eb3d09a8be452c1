// Drawn shapes: the looser size rule, what merging takes, what a mutable copy leaves out.
#include "VelWhiteBoard/vectors/diagrams.h"

#include <cstdint>
#include <optional>

#include <gtest/gtest.h>

#include "tests/support/boxes.h"
#include "tests/support/print_records.h"
#include "tests/support/special_numbers.h"

namespace VelWhiteBoard {
namespace {

/// A stored circle with a value in every field; as a `VelWbVecDiagram` without the radii.
template <class T>
T stored() {
  T shape = box<T>();
  shape.type = "diagram";
  shape.ID = "d";
  shape.kind = "ellipse";
  shape.points = Array{Array{1, 2}, Array{3, 4}};
  shape.color = "#112233FF";
  shape.pixel = 5;
  return shape;
}

VelWbVecCircle storedCircle() {
  auto circle = stored<VelWbVecCircle>();
  circle.radiusX = 6;
  circle.radiusY = 7;
  return circle;
}

/// An update that carries only its time.
template <class T>
T timeOnly() {
  T shape = update<T>();
  shape.type = "diagram";
  shape.ID = "d";
  shape.w = -1;
  shape.h = -1;
  return shape;
}

TEST(Diagrams, TheInitialStateIsNullAndZero) {
  const VelWbVecCircle circle;
  EXPECT_EQ(circle.kind, std::nullopt);
  EXPECT_EQ(circle.points, std::nullopt);
  EXPECT_EQ(circle.color, std::nullopt);
  EXPECT_EQ(circle.pixel, 0);
  EXPECT_EQ(circle.radiusX, 0.0);
  EXPECT_EQ(circle.radiusY, 0.0);
}

TEST(Diagrams, AnUpdateThatCarriesNothingChangesOnlyTheTime) {
  auto shape = stored<VelWbVecDiagram>();
  shape.merge(timeOnly<VelWbVecDiagram>());
  auto expected = stored<VelWbVecDiagram>();
  expected.ts = 2;
  EXPECT_EQ(shape, expected);
}

TEST(Diagrams, AnUpdateOfAnotherTypeOrIdentifierChangesNothing) {
  auto circle = storedCircle();
  auto other = timeOnly<VelWbVecCircle>();
  other.radiusX = 99;
  other.pixel = 99;
  other.ID = "e";
  circle.merge(other);
  EXPECT_EQ(circle, storedCircle());
  other.ID = "d";
  other.type = "circle";
  circle.merge(other);
  EXPECT_EQ(circle, storedCircle());
  other.type = "diagram";
  other.ID = std::nullopt;
  circle.ID = std::nullopt;
  circle.merge(other);
  EXPECT_EQ(circle.radiusX, 6.0);
  EXPECT_EQ(circle.ts, 1.0);
}

TEST(Diagrams, ASizeIsTakenWhenBothSidesAreZeroOrMore) {
  const struct {
    double w, h;
    bool taken;
  } rows[] = {{0, 120, true},      {120, 0, true},   {0, 0, true},    {-0.0, 5, true},
              {5, 6, true},        {-1, 5, false},   {5, -1, false},  {-1, -1, false},
              {5, -5e-324, false}, {kNaN, 5, false}, {5, kNaN, false}};
  for (const auto& row : rows) {
    auto shape = stored<VelWbVecDiagram>();
    auto change = timeOnly<VelWbVecDiagram>();
    change.w = row.w;
    change.h = row.h;
    shape.merge(change);
    EXPECT_EQ(shape.w, row.taken ? row.w : 0.3) << row.w << " " << row.h;
    EXPECT_EQ(shape.h, row.taken ? row.h : 0.4) << row.w << " " << row.h;
  }
}

TEST(Diagrams, APlainBoxGivesOnlyPositionSizeAndTimeAndByTheRuleForBoxes) {
  auto shape = stored<VelWbVecDiagram>();
  auto change = timeOnly<VelWbVecSquare>();
  change.ps = 999;
  change.w = 0;
  change.h = 120;
  shape.merge(change);
  EXPECT_EQ(shape.w, 0.3) << "the rule for boxes ignores a zero";
  change.x = 5;
  change.y = 6;
  change.w = 7;
  shape.merge(change);
  auto expected = stored<VelWbVecDiagram>();
  expected.ts = 2;
  expected.x = 5;
  expected.y = 6;
  expected.w = 7;
  expected.h = 120;
  EXPECT_EQ(shape, expected);
}

TEST(Diagrams, ThePointsAreReplacedWholesaleWhenThereAreAny) {
  const struct {
    std::optional<Array> points;
    Array expected;
  } rows[] = {{std::nullopt, {Array{1, 2}, Array{3, 4}}},
              {Array{}, {Array{1, 2}, Array{3, 4}}},
              {Array{nullptr}, {nullptr}},
              {Array{Dictionary{{"x", 1}}}, {Dictionary{{"x", 1}}}}};
  for (const auto& row : rows) {
    auto shape = stored<VelWbVecDiagram>();
    auto change = timeOnly<VelWbVecDiagram>();
    change.points = row.points;
    shape.merge(change);
    EXPECT_EQ(shape.points, row.expected);
  }
}

TEST(Diagrams, ColorPixelAndReferenceWidthAreTakenWhereGiven) {
  auto shape = stored<VelWbVecDiagram>();
  auto change = timeOnly<VelWbVecDiagram>();
  change.color = "";
  change.pixel = 0;
  change.ps = 0;
  shape.merge(change);
  EXPECT_EQ(shape.color, "#112233FF");
  EXPECT_EQ(shape.pixel, 5);
  EXPECT_EQ(shape.ps, 400);
  change.pixel = INT64_MIN;
  change.ps = -1;
  shape.merge(change);
  EXPECT_EQ(shape.pixel, 5);
  EXPECT_EQ(shape.ps, 400);
  change.color = "#000000FF";
  change.pixel = 1;
  change.ps = 1;
  shape.merge(change);
  EXPECT_EQ(shape.color, "#000000FF");
  EXPECT_EQ(shape.pixel, 1);
  EXPECT_EQ(shape.ps, 1);
}

TEST(Diagrams, TheKindNeverChangesAndTheRestOfTheSameUpdateDoes) {
  auto shape = stored<VelWbVecDiagram>();
  auto change = stored<VelWbVecDiagram>();
  change.ts = 3;
  change.x = 5;
  change.y = 6;
  change.w = 7;
  change.h = 8;
  change.ps = 9;
  change.end = false;
  change.path = std::nullopt;
  change.kind = "line";
  change.points = Array{10};
  change.color = "#0";
  change.pixel = 11;
  shape.merge(change);
  auto expected = change;
  expected.kind = "ellipse";
  expected.end = true;
  expected.path = Path{{1, 2, 3}};
  EXPECT_EQ(shape, expected);
  auto kindless = stored<VelWbVecDiagram>();
  kindless.kind = std::nullopt;
  kindless.merge(change);
  EXPECT_EQ(kindless.kind, std::nullopt);
}

TEST(Diagrams, TheRadiiAreTakenEachForItself) {
  const struct {
    double x, y, expectedX, expectedY;
  } rows[] = {{5, -1, 5, 7},  {-1, 5, 6, 5},   {0, 0, 0, 0},
              {-1, -1, 6, 7}, {kNaN, 1, 6, 1}, {8, 9, 8, 9}};
  for (const auto& row : rows) {
    auto circle = storedCircle();
    auto change = timeOnly<VelWbVecCircle>();
    change.radiusX = row.x;
    change.radiusY = row.y;
    circle.merge(change);
    EXPECT_EQ(circle.radiusX, row.expectedX) << row.x << " " << row.y;
    EXPECT_EQ(circle.radiusY, row.expectedY) << row.x << " " << row.y;
  }
}

TEST(Diagrams, ACircleTakesFromADiagramAllButRadii) {
  auto circle = storedCircle();
  auto change = timeOnly<VelWbVecDiagram>();
  change.pixel = 9;
  change.w = 0;
  change.h = 0;
  circle.merge(change);
  auto expected = storedCircle();
  expected.ts = 2;
  expected.pixel = 9;
  expected.w = 0;
  expected.h = 0;
  EXPECT_EQ(circle, expected);
}

TEST(Diagrams, ADiagramTakesFromACircleWhatADiagramHas) {
  auto shape = stored<VelWbVecDiagram>();
  auto change = timeOnly<VelWbVecCircle>();
  change.pixel = 9;
  change.radiusX = 50;
  shape.merge(change);
  auto expected = stored<VelWbVecDiagram>();
  expected.ts = 2;
  expected.pixel = 9;
  EXPECT_EQ(shape, expected);
}

TEST(Diagrams, AShapeMergedWithItselfStaysAsItIs) {
  auto circle = storedCircle();
  circle.merge(circle);
  EXPECT_EQ(circle, storedCircle());
}

TEST(Diagrams, AMutableCopyOfADiagramLeavesOutThePath) {
  auto expected = stored<VelWbVecDiagram>();
  expected.path = std::nullopt;
  const auto source = stored<VelWbVecDiagram>();
  const auto copy = source.mutableCopyWithZone();
  EXPECT_EQ(*copy, expected);
  copy->points->push_back(9);
  EXPECT_EQ(source.points->size(), 2U);
}

TEST(Diagrams, AMutableCopyWithoutPointsHasAnEmptyArray) {
  auto shape = stored<VelWbVecDiagram>();
  shape.points = std::nullopt;
  EXPECT_EQ(shape.mutableCopyWithZone()->points, Array{});
  EXPECT_EQ(shape.points, std::nullopt);
  EXPECT_EQ(shape.copyWithZone()->points, std::nullopt) << "the full copy keeps null";
  auto circle = storedCircle();
  circle.points = std::nullopt;
  EXPECT_EQ(circle.mutableCopyWithZone()->points, Array{});
}

TEST(Diagrams, AMutableCopyOfACircleHasTheRadiiToo) {
  auto expected = storedCircle();
  expected.path = std::nullopt;
  EXPECT_EQ(*storedCircle().mutableCopyWithZone(), expected);
}

TEST(Diagrams, ACirclesDictionaryAlwaysHasItsRadiusAndSoComesBackAsACircle) {
  VelWbVecCircle circle;
  circle.type = "diagram";
  const Dictionary dictionary = modelToJSONObject(circle);
  EXPECT_EQ(dictionary.at("radiusX"), 0.0);
  const VectorPtr restored = modelWithDictionary<VelWbBaseVector>(dictionary);
  EXPECT_EQ(*restored, circle);
  VelWbVecDiagram diagram;
  diagram.type = "diagram";
  diagram.kind = "circle";
  EXPECT_EQ(*modelWithDictionary<VelWbBaseVector>(modelToJSONObject(diagram)), diagram)
      << "without the key it is a diagram, whatever its kind";
}

TEST(Diagrams, ThePointsKeepWhateverTheyWereGiven) {
  const char* json =
      R"({"type":"diagram","points":[1,2.5,null,"p",true,[[]],{"x":{"y":[0]}},18446744073709551615]})";
  const VectorPtr vector = modelWithJSON<VelWbBaseVector>(json);
  EXPECT_EQ(Value(modelToJSONObject(*vector)).at("points"), Value::parse(json).at("points"));
}

}  // namespace
}  // namespace VelWhiteBoard
