#include "drawing/squares.h"

#include <QImage>
#include <QPoint>
#include <QTransform>
#include <cmath>

#include "drawing/canvas.h"

namespace whiteboard {

namespace {

constexpr int kSide = 64;

/// In which row or column of squares a device pixel lies.
int squareOf(double pixel) { return static_cast<int>(std::floor(pixel / kSide)); }

}  // namespace

void paintInSquares(QPainter& painter, const QRectF& wanted, const PaintSquare& paintSquare) {
  const QTransform toDevice = painter.deviceTransform();
  const QTransform toView = toDevice.inverted();
  const QRectF pixels = toDevice.mapRect(wanted);
  const SavedState state(painter);
  painter.setWorldTransform(toView * painter.worldTransform());  // counts in pixels
  QImage square(kSide, kSide, QImage::Format_ARGB32_Premultiplied);
  for (int row = squareOf(pixels.top()); row <= squareOf(pixels.bottom()); ++row) {
    for (int column = squareOf(pixels.left()); column <= squareOf(pixels.right()); ++column) {
      const QPoint corner(column * kSide, row * kSide);
      square.fill(Qt::transparent);
      QPainter into(&square);
      into.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
      into.setTransform(toDevice * QTransform::fromTranslate(-corner.x(), -corner.y()));
      const bool isPainted = paintSquare(into, toView.mapRect(QRectF(corner, square.size())));
      into.end();
      if (isPainted) painter.drawImage(corner, square);
    }
  }
}

}  // namespace whiteboard
