#include "drawing/signs.h"

#include <QPainterPath>
#include <QPolygonF>
#include <algorithm>
#include <cmath>

#include "drawing/canvas.h"

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

const QColor kFill(237, 240, 245);
const QColor kFrame(158, 168, 184);
const QColor kSign(184, 194, 209);
const QColor kCaption(89, 99, 115);

constexpr double kFrameWidth = 0.6;  // points of the base board

/// Paths of a sign, in parts of its side, around the middle.
QPainterPath imageSign() {
  QPainterPath path;
  path.addPolygon(QPolygonF(
      {{-0.5, 0.35}, {-0.15, -0.15}, {0.05, 0.12}, {0.2, -0.05}, {0.5, 0.35}, {-0.5, 0.35}}));
  path.addEllipse(QPointF(0.25, -0.25), 0.1, 0.1);
  return path;
}

QPainterPath playSign() {
  QPainterPath path;
  path.addEllipse(QPointF(), 0.45, 0.45);
  path.addPolygon(QPolygonF({{-0.13, -0.2}, {0.22, 0}, {-0.13, 0.2}, {-0.13, -0.2}}));
  return path;  // with odd-even filling the triangle is a hole
}

QPainterPath soundSign() {
  QPainterPath path;
  double x = -0.4;
  for (const double height : {0.2, 0.5, 0.85, 0.6, 0.9, 0.45, 0.2}) {
    path.addRect(x, -height / 2, 0.07, height);
    x += 0.12;
  }
  return path;
}

}  // namespace

QColor captionColour() { return kCaption; }

double frameWidth(vwb::Size board) { return onBoard(kFrameWidth, board); }

void paintFrame(QPainter& painter, const QRectF& box, double width, double radius) {
  const QRectF at = box.normalized();
  const double half = width / 2;
  const QRectF outer = at.adjusted(-half, -half, half, half);
  const QRectF inner = at.adjusted(half, half, -half, -half);
  QPainterPath path;  // with odd-even filling the inside is a hole
  path.addRoundedRect(outer, radius > 0 ? radius + half : 0, radius > 0 ? radius + half : 0);
  if (inner.width() > 0 && inner.height() > 0) {
    path.addRoundedRect(inner, std::max(radius - half, 0.0), std::max(radius - half, 0.0));
  }
  painter.fillPath(path, kFrame);
}

void paintEmptyBox(QPainter& painter, const QRectF& box, vwb::Size board) {
  QPainterPath ground;
  ground.addRect(box.normalized());
  painter.fillPath(ground, kFill);
  paintFrame(painter, box, frameWidth(board));
}

void paintSign(QPainter& painter, Sign sign, const QRectF& box) {
  const double side = std::min(std::abs(box.width()), std::abs(box.height())) / 2;
  QTransform place = QTransform::fromTranslate(box.center().x(), box.center().y());
  place.scale(side, side);
  const QPainterPath path = sign == Sign::kImage  ? imageSign()
                            : sign == Sign::kPlay ? playSign()
                                                  : soundSign();
  painter.fillPath(place.map(path), kSign);
}

}  // namespace whiteboard
