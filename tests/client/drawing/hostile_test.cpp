// Records that are made to hurt: nothing crashes, and nothing grows with what cannot be seen. What
// takes long is seen by the time limit of the test.
#include <QBuffer>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "tests/client/drawing/tools.h"

namespace whiteboard {
namespace {

const QRgb kPlaceholder = qRgba(237, 240, 245, 255);

std::shared_ptr<vwb::VelWbVecFile> imageOf(const std::string& url) {
  auto image = box<vwb::VelWbVecFile>(vwb::VelWBVectorStrImage, QRectF(100, 50, 200, 100));
  image->url = url;
  return image;
}

/// Whether a placeholder is drawn in place of the picture.
bool isRefused(const std::string& url) {
  return layerOf(shapesOf({imageOf(url)})).pixel(110, 60) == kPlaceholder;
}

QImage plain(int width, int height) {
  QImage image(width, height, QImage::Format_Grayscale8);
  image.fill(Qt::black);
  return image;
}

TEST(Hostile, PicturesThatAreNoneHaveAPlaceholder) {
  const std::string good = urlOf(plain(50, 50));
  ASSERT_FALSE(isRefused(good));
  EXPECT_TRUE(isRefused("data:image/png;base64,"));
  EXPECT_TRUE(isRefused("data:image/png;base64,AAAA"));
  EXPECT_TRUE(isRefused("data:image/png,AAAA"));
  EXPECT_TRUE(isRefused("data:text/html;base64,AAAA"));
  EXPECT_TRUE(isRefused("data:image/svg+xml;base64,AAAA"));
  EXPECT_TRUE(isRefused("data:"));
  // What says that it is one format and is another is not decoded.
  std::string other = good;
  EXPECT_TRUE(isRefused(other.replace(11, 3, "jpeg")));
  for (std::size_t cut = 30; cut < good.size(); cut += 7) isRefused(good.substr(0, cut));
}

TEST(Hostile, DamagedPicturesDoNotCrash) {
  const std::string good = urlOf(plain(50, 50));
  for (std::size_t at = 22; at < good.size(); ++at) {
    std::string damaged = good;
    damaged[at] = damaged[at] == 'A' ? 'B' : 'A';
    layerOf(shapesOf({imageOf(damaged)}));
  }
}

TEST(Hostile, PicturesOfManyPixelsAreRefused) {
  // Few bytes may say many pixels.
  EXPECT_TRUE(isRefused(urlOf(plain(5000, 5000))));
  EXPECT_TRUE(isRefused(urlOf(plain(30000, 1000))));
  EXPECT_FALSE(isRefused(urlOf(plain(3000, 3000))));
}

TEST(Hostile, PicturesTogetherHaveALimit) {
  // 4 megapixels each take 21 megabytes with their halves.
  const std::string url = urlOf(plain(2000, 2000));
  std::vector<QImage> seen;
  ShapeList shapes;
  int refused = 0;
  for (int i = 0; i < 30; ++i) {
    shapes.push_back(std::make_unique<Shape>(imageOf(url)));
    ShapeList one;
    QImage layer(kPixels, QImage::Format_ARGB32_Premultiplied);
    layer.fill(Qt::transparent);
    QPainter painter(&layer);
    shapes.back()->paint(painter, kBoard, QRectF(0, 0, 400, 225));
    painter.end();
    if (layer.pixel(110, 60) == kPlaceholder) ++refused;
  }
  EXPECT_GT(refused, 0);
  EXPECT_LT(refused, 15);
  shapes.clear();
  EXPECT_FALSE(isRefused(url));
}

TEST(Hostile, HugeTextsAreCut) {
  const std::string word = "W\u0301\u0302\u0303 ";
  std::string many;
  for (int i = 0; i < 1'000'000; ++i) many += word;
  layerOf(shapesOf({text(many, QRectF(0, 0, 400, 200), 10)}));
  layerOf(shapesOf({text(std::string(10'000'000, 'x'), QRectF(0, 0, 400, 200), 1e300)}));
  layerOf(shapesOf({text(std::string(10'000'000, '\n'), QRectF(0, 0, 400, 200), 1e-300)}));
  layerOf(shapesOf({text(std::string(1'000'000, ' '), QRectF(0, 0, 400, 200), 10)}));
  layerOf(shapesOf({text("\xFF\xFE\x80\xC3", QRectF(0, 0, 400, 200), 10)}));
  auto media = box<vwb::VelWbVecVideo>(vwb::VelWBVectorStrMedia, QRectF(100, 50, 200, 100));
  media->title = many;
  layerOf(shapesOf({media}));
  auto named = text("words", QRectF(0, 0, 400, 200), 10);
  named->fontName = std::string(1'000'000, 'F');
  layerOf(shapesOf({named}));
}

TEST(Hostile, ATextThatStandsOutOfItsLineIsCutOff) {
  std::string tall = "W";
  for (int i = 0; i < 300; ++i) tall += "\u0302";
  const auto words = text(tall, QRectF(200, 100, 100, 20), 20);
  const QRectF bounds = Shape(words).bounds(kBoard);
  EXPECT_LT(bounds.height(), 100);
  EXPECT_TRUE(bounds.contains(QRectF(inkOf(layerOf(shapesOf({words}))))));
}

TEST(Hostile, NumbersThatAreNoneAreLimited) {
  const double none = std::numeric_limits<double>::quiet_NaN();
  const double infinite = std::numeric_limits<double>::infinity();
  const QRectF board(0, 0, kBoard.width, kBoard.height);
  for (const double number : {none, infinite, -infinite, 1e300, -1e300, 1e18, 1e-300}) {
    for (const double other : {none, 0.1, 1e300}) {
      auto words = text("words", QRectF(100, 50, 10, 10), number);
      words->x = other;
      words->w = number;
      auto image = imageOf("somewhere");
      image->rotation = number;
      image->h = other;
      auto arrow = diagram("arrowLine", QRectF(100, 50, 10, 10), 4);
      arrow->w = number;
      arrow->pixel = std::numeric_limits<std::int64_t>::max();
      arrow->points = vwb::Array{vwb::Value::array({number, other}), vwb::Value::array({0, 0})};
      auto circle = box<vwb::VelWbVecCircle>(vwb::VelWBVectorStrDiagram, QRectF(100, 50, 10, 10));
      circle->radiusX = number;
      circle->radiusY = other;
      auto line = stroke(vwb::VelWBVectorStrLine, {{100, 50}, {200, 50}}, 4);
      line->path->push_back({number, other, 1.0});
      line->pixel = std::numeric_limits<std::int64_t>::max();
      line->offset = vwb::Array{number, other};
      auto cursor = box<vwb::VelWbVecFile>(vwb::VelWBVectorStrCursor, QRectF(100, 50, 9, 9));
      cursor->x = number;
      for (const vwb::VectorPtr& entry :
           vwb::VectorList{words, image, arrow, circle, line, cursor}) {
        const Shape shape(entry);
        const QRectF bounds = shape.bounds(kBoard);
        EXPECT_TRUE(bounds.isNull() || board.contains(bounds)) << vwb::modelToJSONString(*entry);
        layerOf(shapesOf({entry}));
        shape.hits({100, 50}, 3, kBoard);
      }
    }
  }
}

TEST(Hostile, WideAndLongStrokesCostLittle) {
  // Each position of a line that covers the board has to do with each of its pixels.
  auto line = stroke(vwb::VelWBVectorStrMarkerPen, {{100, 50}}, 400, "#FF000080");
  for (int i = 0; i < 20'000; ++i) {
    line->path->push_back({0.4 * std::sin(i * 0.1), 0.4 * std::cos(i * 0.31), 1.0});
  }
  const QImage layer = layerOf(shapesOf({line}));
  EXPECT_EQ(qAlpha(layer.pixel(200, 100)), 0x80);
  EXPECT_EQ(qAlpha(layer.pixel(1, 1)), 0x80);
}

TEST(Hostile, AnEntryWithoutALookDrawsNothing) {
  const Shape none(nullptr);
  EXPECT_TRUE(none.bounds(kBoard).isEmpty());
  EXPECT_FALSE(none.isEraser());
  EXPECT_FALSE(none.isMagnifier());
  EXPECT_TRUE(none.box(kBoard).isEmpty());
  EXPECT_TRUE(Shape(vwb::VelWbVecClear::initWithType("clear")).bounds(kBoard).isEmpty());
  EXPECT_TRUE(inkOf(layerOf(shapesOf({nullptr}))).isNull());
}

}  // namespace
}  // namespace whiteboard
