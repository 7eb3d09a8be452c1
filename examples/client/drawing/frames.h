// Cursors, lenses and boxes without content.
#pragma once

#include "drawing/look.h"

namespace whiteboard {

/// A pointer, whose tip is at the corner of its box that is nearest to the view's origin.
class Cursor : public Look {
 public:
  explicit Cursor(const VelWhiteBoard::VelWbVecFile& cursor) : cursor_(cursor) {}

  void update(std::size_t firstNew) override { static_cast<void>(firstNew); }
  QRectF inked(VelWhiteBoard::Size board) const override;
  void paint(QPainter& painter, VelWhiteBoard::Size board, const QRectF& part) const override;
  bool hits(QPointF at, double tolerance, VelWhiteBoard::Size board) const override;

 private:
  const VelWhiteBoard::VelWbVecFile& cursor_;
};

/// A magnifier's lens with round corners, a camera's picture as an empty box, or any other box as
/// a frame.
class Frame : public Look {
 public:
  explicit Frame(const VelWhiteBoard::VelWbVecSquare& box) : box_(box) {}

  void update(std::size_t firstNew) override { static_cast<void>(firstNew); }
  QRectF inked(VelWhiteBoard::Size board) const override;
  void paint(QPainter& painter, VelWhiteBoard::Size board, const QRectF& part) const override;
  bool hits(QPointF at, double tolerance, VelWhiteBoard::Size board) const override;

 private:
  double widthOn(VelWhiteBoard::Size board) const;

  const VelWhiteBoard::VelWbVecSquare& box_;
};

/// How round the corners of a lens are, in view points.
double lensRadius(const QRectF& lens, VelWhiteBoard::Size board);

}  // namespace whiteboard
