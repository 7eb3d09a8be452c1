// Whole pages: the order of the entries, and what erasers take away.
#include <gtest/gtest.h>

#include "drawing/export.h"
#include "tests/client/drawing/tools.h"

namespace whiteboard {
namespace {

constexpr QRgb kWhite = qRgb(255, 255, 255);
constexpr QRgb kRed = qRgb(255, 0, 0);
constexpr QRgb kBlue = qRgb(0, 0, 255);

LinePtr redLine() { return stroke(vwb::VelWBVectorStrLine, {{50, 100}, {350, 100}}, 20); }
LinePtr blueLine() {
  return stroke(vwb::VelWBVectorStrLine, {{200, 20}, {200, 200}}, 20, "#0000FFFF");
}
LinePtr eraser() { return stroke(vwb::VelWBVectorStrEraser, {{200, 20}, {200, 200}}, 60); }

TEST(Pages, ShowLaterEntriesOverEarlierOnes) {
  EXPECT_EQ(pictureOf({redLine(), blueLine()}, kPixels).pixel(200, 100), kBlue);
  EXPECT_EQ(pictureOf({blueLine(), redLine()}, kPixels).pixel(200, 100), kRed);
  EXPECT_EQ(pictureOf({}, kPixels).pixel(200, 100), kWhite);
}

TEST(Pages, LoseToAnEraserWhatLiesBelowItAndNothingElse) {
  const QImage picture = pictureOf({redLine(), eraser(), blueLine()}, kPixels);
  EXPECT_EQ(picture.pixel(180, 100), kWhite);  // the page stays
  EXPECT_EQ(picture.pixel(200, 100), kBlue);   // and so does what came later
  EXPECT_EQ(picture.pixel(100, 100), kRed);
  EXPECT_EQ(pictureOf({eraser(), redLine()}, kPixels).pixel(200, 100), kRed);
}

TEST(Pages, AreErasedFullyWhateverTheEraserLooksLike) {
  auto pale = eraser();
  pale->color = "#00FF0010";
  EXPECT_EQ(pictureOf({redLine(), pale}, kPixels).pixel(200, 100), kWhite);
}

TEST(Pages, AreErasedByAShape) {
  const Shape shape(eraser());
  EXPECT_TRUE(shape.isEraser());
  EXPECT_FALSE(Shape(redLine()).isEraser());
  const QImage layer = layerOf(shapesOf({redLine(), eraser()}));
  EXPECT_EQ(qAlpha(layer.pixel(200, 100)), 0);
  EXPECT_EQ(qAlpha(layer.pixel(100, 100)), 255);
}

TEST(Pages, AreShownThroughAPaintersTransformation) {
  const ShapeList shapes = shapesOf({redLine(), eraser()});
  QImage picture(440, 265, QImage::Format_RGB32);
  picture.fill(Qt::black);
  QPainter painter(&picture);
  painter.translate(20, 30);
  paintPage(painter, shapes, kBoard);
  painter.end();
  EXPECT_EQ(picture.copy(QRect(QPoint(20, 30), kPixels)),
            pictureOf({redLine(), eraser()}, kPixels));
  EXPECT_EQ(picture.pixel(10, 10), qRgb(0, 0, 0));
}

TEST(Pages, OfSizesThatAreNoneAreNotDrawn) {
  EXPECT_TRUE(pictureOf({redLine()}, QSize(0, 100)).isNull());
  EXPECT_TRUE(pictureOf({redLine()}, QSize(100, -1)).isNull());
  EXPECT_TRUE(pictureOf({redLine()}, QSize(100'000, 100'000)).isNull());
  EXPECT_TRUE(Shape(redLine()).bounds({0, 0}).isEmpty());
}

}  // namespace
}  // namespace whiteboard
