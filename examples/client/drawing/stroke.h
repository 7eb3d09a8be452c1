// Strokes of pen, marker and eraser.
#pragma once

#include <QPainterPath>
#include <QPolygonF>
#include <functional>
#include <vector>

#include "drawing/look.h"

namespace whiteboard {

/// A smooth line through the positions: from the first one, a quadratic curve whose control point
/// is the next position leads to the middle between that and the one after it, and so on; a
/// straight edge leads to the last position.
class Stroke : public Look {
 public:
  explicit Stroke(const VelWhiteBoard::VelWbVecLine& line) : line_(line) { update(0); }

  void update(std::size_t firstNew) override;
  QRectF inked(VelWhiteBoard::Size board) const override;
  QRectF inkedFrom(std::size_t firstNew, VelWhiteBoard::Size board) const override;
  void paint(QPainter& painter, VelWhiteBoard::Size board, const QRectF& part) const override;
  bool hits(QPointF at, double tolerance, VelWhiteBoard::Size board) const override;

 private:
  /// The smallest and largest fractions of some positions.
  struct Extent {
    VelWhiteBoard::Point low;
    VelWhiteBoard::Point high;
  };
  /// A piece of the curve, in view points. The last one of a stroke is straight.
  struct Piece {
    QPointF from;
    QPointF control;
    QPointF to;
    bool isStraight = false;
  };

  void add(double x, double y);
  std::size_t indexOf(std::size_t ofPath) const;
  void findExtents(std::size_t firstChunk);
  Extent extentOf(std::size_t first, std::size_t end) const;
  QRectF areaOfExtent(const Extent& extent, VelWhiteBoard::Size board) const;
  double widthOn(VelWhiteBoard::Size board) const;
  Piece piece(std::size_t index, VelWhiteBoard::Size board) const;
  /// Calls `take` with each coherent run of the curve that comes near the area, as straight edges.
  void forRuns(const QRectF& area, VelWhiteBoard::Size board,
               const std::function<void(const QPolygonF&)>& take) const;
  QPainterPath curve(VelWhiteBoard::Size board) const;
  /// Fills what of the stroke is near the area; returns whether there is anything.
  bool fill(QPainter& painter, VelWhiteBoard::Size board, const QRectF& area) const;

  const VelWhiteBoard::VelWbVecLine& line_;
  VelWhiteBoard::Point moved_;                   // the displacement of the whole stroke
  std::vector<VelWhiteBoard::Point> positions_;  // fractions, displaced; finite
  std::vector<std::size_t> left_;                // indices of the path that are no positions
  std::vector<Extent> chunks_;                   // of the pieces of 64 positions each
};

}  // namespace whiteboard
