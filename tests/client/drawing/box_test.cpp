// Texts, pictures, placeholders, cursors and lenses.
#include <gtest/gtest.h>

#include "tests/client/drawing/tools.h"

namespace whiteboard {
namespace {

QImage drawn(const vwb::VectorPtr& entry, vwb::Size board = kBoard) {
  return layerOf(shapesOf({entry}), board);
}

/// How many separate bands of inked rows there are, as of lines of words.
int bandsOf(const QImage& layer) {
  int bands = 0;
  bool wasInked = false;
  for (int y = 0; y < layer.height(); ++y) {
    bool isInked = false;
    for (int x = 0; x < layer.width(); ++x) isInked = isInked || qAlpha(layer.pixel(x, y)) > 40;
    if (isInked && !wasInked) ++bands;
    wasInked = isInked;
  }
  return bands;
}

TEST(Texts, BeginInsideTheirBoxAndBreakAtSpaces) {
  const QImage one = drawn(text("nnn", QRectF(100, 50, 200, 20), 16));
  const QRect ink = inkOf(one);
  EXPECT_GT(ink.left(), 102);
  EXPECT_LT(ink.left(), 108);
  EXPECT_GT(ink.top(), 54);
  EXPECT_LT(ink.bottom(), 75);
  EXPECT_EQ(bandsOf(one), 1);
  EXPECT_EQ(bandsOf(drawn(text("nnn\nnnn", QRectF(100, 50, 200, 20), 16))), 2);
  EXPECT_EQ(bandsOf(drawn(text("nnn nnn nnn", QRectF(100, 50, 45, 20), 16))), 3);
  // A long word keeps a line of its own, and stands out.
  const QImage longWord = drawn(text("nnnnnnnnnnnnnnnnnnnn n", QRectF(100, 50, 50, 20), 16));
  EXPECT_EQ(bandsOf(longWord), 2);
  EXPECT_GT(inkOf(longWord).right(), 200);
}

TEST(Texts, BreakInTheSamePlacesOnBoardsOfAllSizes) {
  const auto words = text(
      "Sine and cosine have the same period and are moved by a quarter of it, "
      "so that one of them is at zero where the other is not.",
      QRectF(50, 10, 130, 100), 13);
  const int lines = bandsOf(drawn(words, {1600, 900}));
  EXPECT_GT(lines, 6);
  const QRect large = inkOf(drawn(words, {1600, 900}));
  for (double width = 500; width < 1600; width += 37) {
    const QImage layer = drawn(words, {width, width * 9 / 16});
    EXPECT_EQ(bandsOf(layer), lines) << width;
    EXPECT_NEAR(inkOf(layer).width() / width, large.width() / 1600.0, 0.006) << width;
    EXPECT_NEAR(inkOf(layer).height() / width, large.height() / 1600.0, 0.006) << width;
  }
}

TEST(Texts, HaveABackgroundThatCoversThem) {
  auto words = text("nnn\nnnn\nnnn", QRectF(100, 50, 100, 10), 16);
  words->bgColor = "#00FF00FF";
  const QRect ink = inkOf(drawn(words));
  EXPECT_EQ(ink.topLeft(), QPoint(100, 50));
  EXPECT_EQ(ink.width(), 100);
  EXPECT_NEAR(ink.height(), 16 * 1.164 * 3.5, 2);
  words->bgColor = "none";
  EXPECT_GT(inkOf(drawn(words)).left(), 101);
}

TEST(Texts, WithoutASizeHaveTheUsualOne) {
  auto words = text("nnn", QRectF(100, 50, 100, 10), 0);
  EXPECT_EQ(drawn(words), drawn(text("nnn", QRectF(100, 50, 100, 10), 20)));
}

TEST(Pictures, FromTheRecordFillTheirBox) {
  QImage red(30, 20, QImage::Format_RGB32);
  red.fill(Qt::red);
  for (const char* format : {"png", "jpeg"}) {
    auto image = box<vwb::VelWbVecFile>(vwb::VelWBVectorStrImage, QRectF(100, 50, 90, 60));
    image->url = urlOf(red, format);
    const QImage layer = drawn(image);
    EXPECT_EQ(inkOf(layer), QRect(100, 50, 90, 60)) << format;
    EXPECT_LT(std::abs(qRed(layer.pixel(140, 80)) - 255), 4);
    EXPECT_LT(qGreen(layer.pixel(140, 80)), 4);
    image->rotation = 90;
    const QRect turned = inkOf(drawn(image)).adjusted(1, 1, -1, -1);
    EXPECT_TRUE(QRect(114, 34, 62, 92).contains(turned)) << format;
    EXPECT_TRUE(turned.contains(QRect(117, 37, 56, 86))) << format;
  }
}

TEST(Pictures, AreTurnedClockwise) {
  QImage half(20, 20, QImage::Format_ARGB32);  // its upper half is red, the rest transparent
  half.fill(Qt::transparent);
  for (int i = 0; i < 200; ++i) half.setPixelColor(i % 20, i / 20, Qt::red);
  auto image = box<vwb::VelWbVecFile>(vwb::VelWBVectorStrImage, QRectF(100, 50, 80, 80));
  image->url = urlOf(half);
  EXPECT_EQ(qAlpha(drawn(image).pixel(140, 60)), 255);
  EXPECT_EQ(qAlpha(drawn(image).pixel(140, 120)), 0);
  image->rotation = 90;
  EXPECT_EQ(qAlpha(drawn(image).pixel(170, 90)), 255);
  EXPECT_EQ(qAlpha(drawn(image).pixel(110, 90)), 0);
}

TEST(Pictures, OfOtherAddressesHaveAPlaceholder) {
  auto image = box<vwb::VelWbVecFile>(vwb::VelWBVectorStrImage, QRectF(100, 50, 90, 60));
  image->url = "https://example.org/picture.png";
  const QImage placeholder = drawn(image);
  EXPECT_EQ(placeholder.pixel(105, 60), qRgba(237, 240, 245, 255));
  image->url = "file:///usr/share/picture.png";
  EXPECT_EQ(drawn(image).pixel(105, 60), qRgba(237, 240, 245, 255));
  // The kinds of media have signs of their own.
  auto media = box<vwb::VelWbVecVideo>(vwb::VelWBVectorStrMedia, QRectF(100, 50, 90, 60));
  const QImage video = drawn(media);
  media->kind = vwb::VelWBVectorStrKindAudio;
  EXPECT_NE(drawn(media), video);
  EXPECT_NE(video, placeholder);
}

TEST(Pictures, ChangeWithTheirAddress) {
  QImage red(30, 20, QImage::Format_RGB32);
  red.fill(Qt::red);
  auto image = box<vwb::VelWbVecFile>(vwb::VelWBVectorStrImage, QRectF(100, 50, 90, 60));
  image->url = urlOf(red);
  const ShapeList shapes = shapesOf({image});
  EXPECT_EQ(layerOf(shapes).pixel(140, 80), qRgb(255, 0, 0));
  red.fill(Qt::blue);
  image->url = urlOf(red);
  shapes.front()->update();
  EXPECT_EQ(layerOf(shapes).pixel(140, 80), qRgb(0, 0, 255));
}

TEST(Cursors, PointToTheirCorner) {
  const QRect ink =
      inkOf(drawn(box<vwb::VelWbVecFile>(vwb::VelWBVectorStrCursor, QRectF(100, 50, 40, 40))));
  EXPECT_TRUE(QRect(99, 49, 10, 14).contains(ink));
  EXPECT_GT(ink.height(), 9);
}

TEST(Lenses, AreFramesWithRoundCorners) {
  const auto lens = box<vwb::VelWbVecSquare>(vwb::VelWBVectorStrMagnifier, QRectF(100, 50, 80, 40));
  const Shape shape(lens);
  EXPECT_TRUE(shape.isMagnifier());
  EXPECT_EQ(shape.box(kBoard), QRectF(100, 50, 80, 40));
  EXPECT_GT(shape.lensRadius(kBoard), 3);
  const QImage layer = drawn(lens);
  EXPECT_GT(qAlpha(layer.pixel(140, 50)), 100);
  EXPECT_EQ(qAlpha(layer.pixel(100, 50)), 0);  // the round corner
  EXPECT_EQ(qAlpha(layer.pixel(140, 70)), 0);  // what it enlarges is not drawn here
  EXPECT_FALSE(Shape(box<vwb::VelWbVecSquare>("other", QRectF(1, 1, 9, 9))).isMagnifier());
}

}  // namespace
}  // namespace whiteboard
