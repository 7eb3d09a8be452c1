#include "drawing/frames.h"

#include <QPolygonF>
#include <algorithm>
#include <cmath>

#include "drawing/canvas.h"
#include "drawing/outline.h"
#include "drawing/signs.h"

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

// Points of the base board.
constexpr double kLensWidth = 1.5;
constexpr double kLensRadius = 6;
constexpr double kEdgeWidth = 0.5;  // of the pointer's white edge

/// The pointer's corners, in view points; none when it is not at a place that can be drawn.
QPolygonF pointerOf(const vwb::VelWbVecFile& cursor, vwb::Size board) {
  const vwb::Point tip = vwb::VWBToolManager::convertVectorToPoint(cursor, board);
  const QRectF area = areaOf(board).adjusted(-board.width, -board.width, board.width, board.width);
  if (!std::isfinite(tip.x) || !std::isfinite(tip.y) || !area.contains(tip.x, tip.y)) return {};
  QPolygonF pointer({{0, 0}, {0, 10}, {2.4, 7.8}, {4, 11.4}, {5.6, 10.7}, {4, 7.2}, {7.2, 7}});
  const double unit = onBoard(1, board);
  for (QPointF& corner : pointer) corner = QPointF(tip.x, tip.y) + corner * unit;
  return pointer;
}

bool isLens(const vwb::VelWbVecSquare& box) { return box.type == vwb::VelWBVectorStrMagnifier; }

}  // namespace

QRectF Cursor::inked(vwb::Size board) const {
  const QPolygonF pointer = pointerOf(cursor_, board);
  if (pointer.isEmpty()) return {};
  const double half = onBoard(kEdgeWidth, board) / 2;
  return pointer.boundingRect().adjusted(-half, -half, half, half);
}

void Cursor::paint(QPainter& painter, vwb::Size board, const QRectF& part) const {
  static_cast<void>(part);
  const QPolygonF pointer = pointerOf(cursor_, board);
  if (pointer.isEmpty()) return;
  QPainterPath inside;
  inside.addPolygon(pointer);
  inside.closeSubpath();
  painter.fillPath(inside, ink());
  QPainterPath edge;
  edge.setFillRule(Qt::WindingFill);
  addOutline(pointer, onBoard(kEdgeWidth, board), true, edge);
  painter.fillPath(edge, Qt::white);
}

bool Cursor::hits(QPointF at, double tolerance, vwb::Size board) const {
  static_cast<void>(at), static_cast<void>(tolerance), static_cast<void>(board);
  return false;
}

double Frame::widthOn(vwb::Size board) const {
  return isLens(box_) ? onBoard(kLensWidth, board) : frameWidth(board);
}

QRectF Frame::inked(vwb::Size board) const {
  const auto box = boxOf(box_, board);
  if (!box) return {};
  const double half = widthOn(board) / 2;
  return box->normalized().adjusted(-half, -half, half, half);
}

void Frame::paint(QPainter& painter, vwb::Size board, const QRectF& part) const {
  static_cast<void>(part);
  const auto box = boxOf(box_, board);
  if (!box) return;
  if (vwb::recordCast<const vwb::VelWbCaptureInfo>(&box_) != nullptr) {
    paintEmptyBox(painter, *box, board);
    paintSign(painter, Sign::kImage, *box);
  } else {
    paintFrame(painter, *box, widthOn(board), isLens(box_) ? lensRadius(*box, board) : 0);
  }
}

bool Frame::hits(QPointF at, double tolerance, vwb::Size board) const {
  const auto box = boxOf(box_, board);
  if (!box) return false;
  return box->normalized().adjusted(-tolerance, -tolerance, tolerance, tolerance).contains(at);
}

double lensRadius(const QRectF& lens, vwb::Size board) {
  return std::min(
      {onBoard(kLensRadius, board), std::abs(lens.width()) / 2, std::abs(lens.height()) / 2});
}

}  // namespace whiteboard
