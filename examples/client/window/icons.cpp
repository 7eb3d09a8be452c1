#include "window/icons.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QPolygonF>
#include <cmath>
#include <numbers>

namespace whiteboard {

namespace {

constexpr double kSide = 24;
constexpr double kLine = 1.8;
const QColor kInk(0x2F, 0x38, 0x46);
const QColor kPale(0xB4, 0xBB, 0xC6);
const QColor kAccent(0x3B, 0x6F, 0xD4);

/// A picture of the icons' size, for the densest screen.
template <class Draw>
QPixmap picture(const Draw& draw) {
  const double ratio = std::max(2.0, qGuiApp->devicePixelRatio());
  QPixmap pixmap(static_cast<int>(kSide * ratio), static_cast<int>(kSide * ratio));
  pixmap.setDevicePixelRatio(ratio);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  draw(painter);
  return pixmap;
}

QPolygonF starOf(std::initializer_list<QPointF> corners) {
  return QPolygonF(QList<QPointF>(corners));
}

void drawPen(QPainter& painter) {
  painter.drawPolygon(starOf({{5, 19}, {6.2, 14.8}, {15.8, 5.2}, {18.8, 8.2}, {9.2, 17.8}}));
  painter.drawLine(QPointF(13.6, 7.4), QPointF(16.6, 10.4));
}

void drawMarker(QPainter& painter) {
  painter.setBrush(QColor(0xFF, 0xD2, 0x4D, 0xB0));
  painter.drawPolygon(starOf({{8, 13}, {15, 4.5}, {19.5, 8.2}, {12.5, 16.7}, {7, 17.5}}));
  painter.drawLine(QPointF(4, 20.4), QPointF(20, 20.4));
}

void drawEraser(QPainter& painter) {
  painter.drawPolygon(starOf({{4.5, 14.5}, {13, 6}, {19, 12}, {11.5, 19.5}, {9.5, 19.5}}));
  painter.drawLine(QPointF(8.8, 10.2), QPointF(14.8, 16.2));
  painter.drawLine(QPointF(11.5, 19.5), QPointF(20, 19.5));
}

void drawSelect(QPainter& painter) {
  painter.drawPolygon(
      starOf({{6, 4}, {6, 18}, {9.6, 14.8}, {12, 20}, {14.4, 19}, {12, 13.8}, {17, 13.4}}));
}

void drawImage(QPainter& painter) {
  painter.drawRoundedRect(QRectF(4, 5.5, 16, 13), 2, 2);
  painter.drawPolyline(starOf({{4.5, 16.5}, {9.5, 11.5}, {12.5, 14.5}, {15, 12}, {19.5, 16.5}}));
  painter.drawEllipse(QPointF(15.4, 9.2), 1.3, 1.3);
}

void drawPointer(QPainter& painter) {
  painter.drawEllipse(QPointF(12, 12), 7.5, 7.5);
  painter.setBrush(QColor(0xE5, 0x3E, 0x3E));
  painter.setPen(Qt::NoPen);
  painter.drawEllipse(QPointF(12, 12), 3.2, 3.2);
}

void drawArrow(QPainter& painter, QPointF from, QPointF to) {
  painter.drawLine(from, to);
  const double angle = std::atan2(to.y() - from.y(), to.x() - from.x());
  for (const double side : {angle - 2.6, angle + 2.6}) {
    painter.drawLine(to, to + 5.5 * QPointF(std::cos(side), std::sin(side)));
  }
}

void drawTurn(QPainter& painter, bool isLeft) {
  if (!isLeft) {
    painter.translate(kSide, 0);
    painter.scale(-1, 1);
  }
  QPainterPath path(QPointF(5.5, 9.5));
  path.lineTo(14, 9.5);
  path.arcTo(QRectF(9.5, 9.5, 9, 9), 90, -180);
  path.lineTo(9.5, 18.5);
  painter.drawPath(path);
  painter.drawPolyline(starOf({{9, 6}, {5.5, 9.5}, {9, 13}}));
}

void drawSign(QPainter& painter, Sign sign) {
  switch (sign) {
    case Sign::kSelect:
      return drawSelect(painter);
    case Sign::kPen:
      return drawPen(painter);
    case Sign::kMarker:
      return drawMarker(painter);
    case Sign::kEraser:
      return drawEraser(painter);
    case Sign::kText:
      painter.drawPolyline(starOf({{5.5, 8}, {5.5, 5.5}, {18.5, 5.5}, {18.5, 8}}));
      painter.drawLine(QPointF(12, 5.5), QPointF(12, 19));
      painter.drawLine(QPointF(9.5, 19), QPointF(14.5, 19));
      return;
    case Sign::kRectangle:
      painter.drawRect(QRectF(4.5, 6.5, 15, 11));
      return;
    case Sign::kRhombus:
      painter.drawPolygon(starOf({{12, 4}, {20, 12}, {12, 20}, {4, 12}}));
      return;
    case Sign::kEllipse:
      painter.drawEllipse(QPointF(12, 12), 8.5, 5.5);
      return;
    case Sign::kCircle:
      painter.drawEllipse(QPointF(12, 12), 7.5, 7.5);
      return;
    case Sign::kTriangle:
      painter.drawPolygon(starOf({{12, 4.5}, {20, 18.5}, {4, 18.5}}));
      return;
    case Sign::kLine:
      painter.drawLine(QPointF(5, 19), QPointF(19, 5));
      return;
    case Sign::kArrow:
      return drawArrow(painter, {5, 19}, {18.5, 5.5});
    case Sign::kImage:
      return drawImage(painter);
    case Sign::kPointer:
      return drawPointer(painter);
    case Sign::kMagnifier:
      painter.drawEllipse(QPointF(10.5, 10.5), 5.5, 5.5);
      painter.drawLine(QPointF(14.6, 14.6), QPointF(19.5, 19.5));
      return;
    case Sign::kUndo:
      return drawTurn(painter, true);
    case Sign::kRedo:
      return drawTurn(painter, false);
    case Sign::kDelete:
      painter.drawLine(QPointF(5, 7.5), QPointF(19, 7.5));
      painter.drawPolyline(starOf({{7, 7.5}, {8, 19.5}, {16, 19.5}, {17, 7.5}}));
      painter.drawPolyline(starOf({{9.5, 7.5}, {9.5, 5}, {14.5, 5}, {14.5, 7.5}}));
      return;
    case Sign::kPrevious:
      painter.drawPolyline(starOf({{14.5, 5.5}, {8, 12}, {14.5, 18.5}}));
      return;
    case Sign::kNext:
      painter.drawPolyline(starOf({{9.5, 5.5}, {16, 12}, {9.5, 18.5}}));
      return;
    case Sign::kAdd:
      painter.drawLine(QPointF(12, 5.5), QPointF(12, 18.5));
      painter.drawLine(QPointF(5.5, 12), QPointF(18.5, 12));
      return;
    case Sign::kClear:
      painter.drawRoundedRect(QRectF(5.5, 4.5, 13, 15), 1.5, 1.5);
      painter.drawLine(QPointF(9.3, 9.3), QPointF(14.7, 14.7));
      painter.drawLine(QPointF(14.7, 9.3), QPointF(9.3, 14.7));
      return;
    case Sign::kExport:
      drawArrow(painter, {12, 15}, {12, 4.5});
      painter.drawPolyline(starOf({{5, 14}, {5, 19.5}, {19, 19.5}, {19, 14}}));
      return;
    case Sign::kPlay:
      painter.setBrush(painter.pen().color());
      painter.drawPolygon(starOf({{8, 5.5}, {18, 12}, {8, 18.5}}));
      return;
    case Sign::kPause:
      painter.setBrush(painter.pen().color());
      painter.drawRect(QRectF(7.5, 6, 2.6, 12));
      painter.drawRect(QRectF(14, 6, 2.6, 12));
      return;
    case Sign::kWindow:
      break;
  }
  // The program's own sign: a board with a stroke on it.
  painter.setBrush(Qt::white);
  painter.drawRoundedRect(QRectF(2.5, 4, 19, 14), 2, 2);
  painter.setPen(QPen(kAccent, 2, Qt::SolidLine, Qt::RoundCap));
  QPainterPath stroke(QPointF(6, 13));
  stroke.cubicTo(9, 4, 12, 18, 18, 8);
  painter.drawPath(stroke);
}

QPixmap signPicture(Sign sign, const QColor& ink) {
  return picture([&](QPainter& painter) {
    painter.setPen(QPen(ink, kLine, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    drawSign(painter, sign);
  });
}

}  // namespace

QIcon iconOf(Sign sign) {
  QIcon icon(signPicture(sign, kInk));
  icon.addPixmap(signPicture(sign, kPale), QIcon::Disabled);
  return icon;
}

QIcon colourIcon(const QColor& colour) {
  return picture([&](QPainter& painter) {
    painter.setPen(QPen(colour.darker(120), 1));
    painter.setBrush(colour);
    painter.drawEllipse(QPointF(kSide / 2, kSide / 2), 8.5, 8.5);
  });
}

QIcon widthIcon(double part) {
  return picture([&](QPainter& painter) {
    painter.setPen(QPen(kInk, 1.5 + 6 * part, Qt::SolidLine, Qt::RoundCap));
    QPainterPath path(QPointF(5, 14));
    path.cubicTo(9, 6, 14, 20, 19, 10);
    painter.drawPath(path);
  });
}

}  // namespace whiteboard
