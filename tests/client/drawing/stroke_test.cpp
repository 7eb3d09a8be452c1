// Pen, marker and eraser, and the outlines of diagrams.
#include <QPainterPath>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "drawing/canvas.h"
#include "tests/client/drawing/tools.h"

namespace whiteboard {
namespace {

QImage drawn(const vwb::VectorPtr& entry) { return layerOf(shapesOf({entry})); }

TEST(Colours, AreReadAsRedGreenBlueOpacity) {
  EXPECT_EQ(colourOf("#FF340067"), QColor(0xFF, 0x34, 0, 0x67));
  EXPECT_EQ(colourOf("ff3400"), QColor(0xFF, 0x34, 0));
  for (const char* text : {"", "#", "#FF", "#GG0000FF", "red", "#FF0000FF0", "#-F0000FF"}) {
    EXPECT_EQ(colourOf(text), std::nullopt) << text;
  }
  EXPECT_EQ(colourOf(std::nullopt), std::nullopt);
}

TEST(Strokes, AreAsWideAsTheRecordSays) {
  const QRect ink = inkOf(drawn(stroke(vwb::VelWBVectorStrLine, {{100, 50}, {200, 50}}, 10)));
  EXPECT_EQ(ink, QRect(95, 45, 110, 10));  // with round ends
  // On a board that is twice as wide, everything is twice as large.
  const QImage large =
      layerOf(shapesOf({stroke(vwb::VelWBVectorStrLine, {{100, 50}, {200, 50}}, 10)}), {800, 450});
  EXPECT_EQ(inkOf(large), QRect(190, 90, 220, 20));
}

TEST(Strokes, GoSmoothlyBetweenTheirPositions) {
  // The curve passes the middle of its control polygon and stays inside it.
  const QImage layer =
      drawn(stroke(vwb::VelWBVectorStrLine, {{50, 150}, {150, 50}, {250, 150}, {350, 50}}, 2));
  EXPECT_GT(qAlpha(layer.pixel(200, 100)), 200);  // the middle between the second and the third
  EXPECT_EQ(qAlpha(layer.pixel(150, 51)), 0);     // the control point
  EXPECT_GT(qAlpha(layer.pixel(349, 50)), 100);   // the last position
  const QRect ink = inkOf(layer);
  EXPECT_GT(ink.top(), 48);
}

TEST(Strokes, OfOnePositionAreADot) {
  const QRect dot(95, 45, 10, 10);
  EXPECT_EQ(inkOf(drawn(stroke(vwb::VelWBVectorStrLine, {{100, 50}}, 10))), dot);
  EXPECT_EQ(inkOf(drawn(stroke(vwb::VelWBVectorStrLine, {{100, 50}, {100, 50}}, 10))), dot);
  auto withoutPath = stroke(vwb::VelWBVectorStrLine, {{100, 50}}, 10);
  withoutPath->path.reset();
  EXPECT_EQ(inkOf(drawn(withoutPath)), dot);
  auto empty = stroke(vwb::VelWBVectorStrLine, {}, 10);
  EXPECT_TRUE(inkOf(drawn(empty)).isNull());
  EXPECT_TRUE(Shape(empty).bounds(kBoard).isEmpty());
}

TEST(Strokes, AreDisplacedByTheirOffset) {
  auto line = stroke(vwb::VelWBVectorStrLine, {{100, 50}, {200, 50}}, 10);
  line->offset = vwb::Array{0.25, 0.2};
  EXPECT_EQ(inkOf(drawn(line)), QRect(195, 90, 110, 10));
  line->offset = vwb::Array{0.25, "0.2"};
  EXPECT_EQ(inkOf(drawn(line)), QRect(95, 45, 110, 10));
}

TEST(Strokes, LeaveOutPositionsThatAreNone) {
  const auto line = stroke(vwb::VelWBVectorStrLine, {{100, 50}, {200, 50}}, 10);
  auto strange = stroke(vwb::VelWBVectorStrLine, {{100, 50}}, 10);
  const double none = std::numeric_limits<double>::quiet_NaN();
  strange->path->push_back({none, 0.1, 1.0});
  strange->path->push_back({0.3});
  strange->path->push_back((*line->path)[1]);
  EXPECT_EQ(drawn(strange), drawn(line));
}

TEST(Markers, AreNotDarkerWhereTheyMeetThemselves) {
  const QImage layer = drawn(stroke(
      vwb::VelWBVectorStrMarkerPen,
      {{100, 100}, {300, 100}, {300, 100}, {200, 20}, {200, 20}, {200, 200}}, 20, "#FF000080"));
  EXPECT_EQ(qAlpha(layer.pixel(150, 100)), 0x80);
  EXPECT_EQ(qAlpha(layer.pixel(200, 150)), 0x80);
  EXPECT_EQ(qAlpha(layer.pixel(200, 100)), 0x80);  // the crossing
  EXPECT_EQ(qAlpha(layer.pixel(300, 100)), 0x80);  // a turn
}

TEST(Markers, HaveNoHolesInTightTurns) {
  // A scribble of steps that are shorter than the width, with turns in both directions.
  auto line = stroke(vwb::VelWBVectorStrMarkerPen, {{200, 100}}, 40, "#FF000080");
  for (int i = 0; i < 200; ++i) {
    const double turn = i * 0.7;
    line->path->push_back({0.01 * std::cos(turn), -0.0556 + 0.015 * std::sin(turn * 1.3), 1.0});
  }
  const QImage layer = drawn(line);
  for (int y = 92; y < 108; ++y) {
    for (int x = 192; x < 208; ++x) ASSERT_EQ(qAlpha(layer.pixel(x, y)), 0x80) << x << ", " << y;
  }
}

TEST(Diagrams, HaveTheFormOfTheirKind) {
  const QRectF at(100, 50, 100, 60);
  const QImage rectangle = drawn(diagram("rectangle", at, 4));
  EXPECT_EQ(inkOf(rectangle), QRect(98, 48, 104, 64));
  EXPECT_EQ(qAlpha(rectangle.pixel(150, 80)), 0);  // not filled
  EXPECT_EQ(rectangle.pixel(150, 50), qRgba(0, 0, 255, 255));

  const QImage ellipse = drawn(diagram("ellipse", at, 4));
  EXPECT_EQ(inkOf(ellipse), QRect(98, 48, 104, 64));
  EXPECT_EQ(qAlpha(ellipse.pixel(101, 51)), 0);
  EXPECT_EQ(drawn(diagram("anything", at, 4)), ellipse);

  const QImage rhombus = drawn(diagram("rhombus", at, 4));
  EXPECT_EQ(qAlpha(rhombus.pixel(125, 65)), 255);
  EXPECT_EQ(qAlpha(rhombus.pixel(101, 51)), 0);

  const QImage triangle = drawn(diagram("triangle", at, 4));
  EXPECT_EQ(qAlpha(triangle.pixel(150, 110)), 255);  // its base
  EXPECT_EQ(qAlpha(triangle.pixel(150, 51)), 255);   // its tip
  EXPECT_EQ(qAlpha(triangle.pixel(101, 51)), 0);

  auto circle = box<vwb::VelWbVecCircle>(vwb::VelWBVectorStrDiagram, at);
  circle->radiusX = 0.1;
  circle->radiusY = 0.1;
  circle->pixel = 4;
  circle->ps = 400;
  EXPECT_EQ(inkOf(drawn(circle)).width(), 84);
}

TEST(Diagrams, HaveArrowsWithAHead) {
  const QImage line = drawn(diagram("line", QRectF(100, 50, 100, 0), 4));
  EXPECT_EQ(inkOf(line), QRect(98, 48, 104, 4));
  const QImage arrow = drawn(diagram("arrowLine", QRectF(100, 50, 100, 0), 4));
  EXPECT_EQ(inkOf(arrow).right(), 199);  // the tip
  EXPECT_NEAR(inkOf(arrow).height(), 2 * 18 * std::sin(0.42), 1.5);
  EXPECT_EQ(inkOf(drawn(diagram("line", QRectF(100, 50, 0, 0), 4))), QRect());
}

TEST(Hits, CountNearLinesAndInsideBoxes) {
  const Shape pen(stroke(vwb::VelWBVectorStrLine, {{100, 50}, {200, 50}}, 10));
  EXPECT_TRUE(pen.hits({150, 54}, 0, kBoard));
  EXPECT_FALSE(pen.hits({150, 57}, 0, kBoard));
  EXPECT_TRUE(pen.hits({150, 57}, 3, kBoard));
  EXPECT_FALSE(
      Shape(stroke(vwb::VelWBVectorStrEraser, {{100, 50}}, 10)).hits({100, 50}, 5, kBoard));

  const Shape rectangle(diagram("rectangle", QRectF(100, 50, 100, 60), 4));
  EXPECT_TRUE(rectangle.hits({100, 80}, 1, kBoard));
  EXPECT_TRUE(rectangle.hits({103, 80}, 1.5, kBoard));
  EXPECT_FALSE(rectangle.hits({150, 80}, 3, kBoard));  // inside, but not near the line
  EXPECT_TRUE(Shape(diagram("rectangle", QRectF(100, 50, 100, 60), 4)).hits({100, 51}, 1, kBoard));

  const Shape words(text("words", QRectF(100, 50, 100, 60), 12));
  EXPECT_TRUE(words.hits({150, 80}, 0, kBoard));
  EXPECT_FALSE(words.hits({95, 80}, 3, kBoard));

  auto image = box<vwb::VelWbVecFile>(vwb::VelWBVectorStrImage, QRectF(100, 100, 100, 10));
  EXPECT_TRUE(Shape(image).hits({105, 105}, 0, kBoard));
  image->rotation = 90;
  EXPECT_FALSE(Shape(image).hits({105, 105}, 0, kBoard));
  EXPECT_TRUE(Shape(image).hits({150, 60}, 0, kBoard));

  EXPECT_FALSE(Shape(box<vwb::VelWbVecFile>(vwb::VelWBVectorStrCursor, QRectF(100, 100, 9, 9)))
                   .hits({101, 102}, 5, kBoard));
  EXPECT_FALSE(Shape(vwb::VelWbVecClear::initWithType("clear")).hits({100, 100}, 5, kBoard));
}

TEST(Hits, FindAStrokeWhereItsInkIs) {
  auto line = stroke(vwb::VelWBVectorStrLine, {{20, 20}}, 6);
  for (int i = 1; i < 300; ++i) {
    line->path->push_back({-0.45 + i * 0.003, 0.3 * std::sin(i * 0.05), 1.0});
  }
  const Shape shape(line);
  const QImage layer = drawn(line);
  for (int y = 0; y < layer.height(); y += 3) {
    for (int x = 0; x < layer.width(); x += 3) {
      const int alpha = qAlpha(layer.pixel(x, y));
      const QPointF at(x + 0.5, y + 0.5);
      EXPECT_TRUE(alpha != 255 || shape.hits(at, 0.2, kBoard)) << x << ", " << y;
      EXPECT_TRUE(alpha != 0 || !shape.hits(at, 0, kBoard)) << x << ", " << y;
    }
  }
}

}  // namespace
}  // namespace whiteboard
