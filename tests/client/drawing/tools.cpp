#include "tests/client/drawing/tools.h"

#include <QBuffer>
#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace whiteboard {

namespace {

/// Calls `take` with the difference of each channel.
template <class Take>
void forDifferences(const QImage& a, const QImage& b, Take take) {
  const QImage left = a.convertToFormat(QImage::Format_ARGB32);
  const QImage right = b.convertToFormat(QImage::Format_ARGB32);
  for (int y = 0; y < left.height(); ++y) {
    for (int x = 0; x < left.width(); ++x) {
      const QRgb one = left.pixel(x, y);
      const QRgb other = right.pixel(x, y);
      take(std::abs(qRed(one) - qRed(other)));
      take(std::abs(qGreen(one) - qGreen(other)));
      take(std::abs(qBlue(one) - qBlue(other)));
    }
  }
}

}  // namespace

LinePtr stroke(std::string_view type, std::initializer_list<QPointF> through, int width,
               const std::string& color) {
  auto line = vwb::VelWbVecLine::initWithType(type);
  line->path.emplace();
  for (const QPointF at : through) {
    line->x = at.x() / kBoard.width - 0.5;
    line->y = at.y() / kBoard.height - 0.5;
    line->path->push_back({line->x, line->y, 1.0});
  }
  line->color = color;
  line->ps = 400;
  line->pixel = width;
  return line;
}

std::shared_ptr<vwb::VelWbVecDiagram> diagram(std::string_view kind, const QRectF& at, int width) {
  auto made = box<vwb::VelWbVecDiagram>(vwb::VelWBVectorStrDiagram, at);
  made->kind = kind;
  made->color = "#0000FFFF";
  made->ps = 400;
  made->pixel = width;
  return made;
}

std::shared_ptr<vwb::VelWbVecText> text(const std::string& words, const QRectF& at, double size) {
  auto made = box<vwb::VelWbVecText>(vwb::VelWBVectorStrText, at);
  made->text = words;
  made->ps = 400;
  made->fontSize = size;
  return made;
}

QImage layerOf(const ShapeList& shapes, vwb::Size board, double scale) {
  QImage layer(QSize(static_cast<int>(std::ceil(board.width * scale)),
                     static_cast<int>(std::ceil(board.height * scale))),
               QImage::Format_ARGB32_Premultiplied);
  layer.fill(Qt::transparent);
  QPainter painter(&layer);
  painter.scale(scale, scale);
  const QRectF all(0, 0, board.width, board.height);
  for (const auto& shape : shapes) shape->paint(painter, board, all);
  return layer;
}

QRect inkOf(const QImage& layer) {
  QRect ink;
  for (int y = 0; y < layer.height(); ++y) {
    for (int x = 0; x < layer.width(); ++x) {
      if (qAlpha(layer.pixel(x, y)) != 0) ink |= QRect(x, y, 1, 1);
    }
  }
  return ink;
}

int largestDifference(const QImage& a, const QImage& b) {
  int largest = a.size() == b.size() ? 0 : 256;
  if (largest == 0) forDifferences(a, b, [&](int each) { largest = std::max(largest, each); });
  return largest;
}

double meanDifference(const QImage& a, const QImage& b) {
  if (a.size() != b.size()) return 256;
  double sum = 0;
  forDifferences(a, b, [&](int each) { sum += each; });
  return sum / (3.0 * a.width() * a.height());
}

std::string urlOf(const QImage& image, const char* format) {
  QBuffer bytes;
  bytes.open(QIODevice::WriteOnly);
  image.save(&bytes, format);
  return "data:image/" + std::string(format) + ";base64," + bytes.data().toBase64().toStdString();
}

}  // namespace whiteboard
