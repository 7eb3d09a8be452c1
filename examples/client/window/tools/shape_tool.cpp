#include "window/tools/shape_tool.h"

#include <QRectF>
#include <algorithm>
#include <cmath>
#include <utility>

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

/// A shape that is smaller is not meant, in view points.
constexpr double kSmallest = 4;

vwb::Value elementOf(QPointF at, vwb::Size board) {
  const vwb::Point point = vwb::VWBToolManager::convertPointToScale({at.x(), at.y()}, board);
  return vwb::Value::array({point.x, point.y});
}

bool isLine(const vwb::VelWbVecDiagram& diagram) {
  return diagram.kind == vwb::VelWBVectorStrKindLine ||
         diagram.kind == vwb::VelWBVectorStrKindArrowLine;
}

/// The point at which a square, or the square around a circle, ends.
QPointF squared(QPointF from, QPointF to) {
  const QPointF drag = to - from;
  const double side = std::max(std::abs(drag.x()), std::abs(drag.y()));
  return from + QPointF(std::copysign(side, drag.x()), std::copysign(side, drag.y()));
}

}  // namespace

void placeDiagram(vwb::VelWbVecDiagram& diagram, QPointF from, QPointF to, vwb::Size board) {
  const QRectF box = QRectF(from, to).normalized();
  vwb::VWBToolManager::convertPoint({box.x(), box.y()}, {box.width(), box.height()}, diagram,
                                    board);
  if (isLine(diagram)) {
    diagram.points.emplace();
    diagram.points->push_back(elementOf(from, board));
    diagram.points->push_back(elementOf(to, board));
  }
  if (auto* circle = vwb::recordCast<vwb::VelWbVecCircle>(&diagram)) {
    circle->radiusX = circle->w / 2;
    circle->radiusY = circle->h / 2;
  }
}

ShapeTool::ShapeTool(Session& session, BoardView& view, std::string kind)
    : session_(session), view_(view), kind_(std::move(kind)) {}

std::shared_ptr<vwb::VelWbVecDiagram> ShapeTool::shapeTo(QPointF at) const {
  auto shape = vwb::recordPointerCast<vwb::VelWbVecDiagram>(
      vwb::VWBToolManager::sharedManager().genVectorWithType(vwb::VelWBVectorTypeDiagram, ID_,
                                                             kind_));
  const bool isCircle = kind_ == vwb::VelWBVectorStrKindCircle;
  placeDiagram(*shape, from_, isCircle ? squared(from_, at) : at, view_.boardSize());
  return shape;
}

void ShapeTool::press(QPointF at) {
  ID_ = session_.newIdentifier();
  from_ = at;
}

void ShapeTool::move(QPointF at) {
  if (!ID_.empty()) session_.show(*shapeTo(at));
}

void ShapeTool::release(QPointF at) {
  if (ID_.empty()) return;
  const QPointF drag = at - from_;
  if (std::max(std::abs(drag.x()), std::abs(drag.y())) < kSmallest) return cancel();
  session_.draw(shapeTo(at));
  ID_.clear();
}

void ShapeTool::cancel() { session_.board().forgetInk(std::exchange(ID_, {})); }

}  // namespace whiteboard
