#include "window/tools/moving.h"

#include <memory>

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

double numberAt(const vwb::Array& array, std::size_t index) {
  return index < array.size() && array[index].is_number() ? array[index].get<double>() : 0.0;
}

/// A stroke is moved by its whole displacement; the update has no positions.
vwb::VectorPtr moveOfStroke(const vwb::VelWbVecLine& stroke, QPointF by, vwb::Size board) {
  const auto update = stroke.copyWithZone();
  auto* line = vwb::recordCast<vwb::VelWbVecLine>(update.get());
  line->path.reset();
  line->ts = vwb::VelWbVectorManager::shareManager().genTs();
  const vwb::Array before = stroke.offset.value_or(vwb::Array());
  line->offset.emplace();
  line->offset->push_back(numberAt(before, 0) + by.x() / board.width);
  line->offset->push_back(numberAt(before, 1) + by.y() / board.height);
  return update;
}

/// Where a coordinate goes when the range from `from` on that is `extent` long becomes the one from
/// `to` on that is `newExtent` long.
double mapped(double at, double from, double extent, double to, double newExtent) {
  return extent > 0 ? to + (at - from) * newExtent / extent : at + to - from;
}

void mapPoints(vwb::VelWbVecDiagram& diagram, const vwb::VelWbVecSquare& before) {
  if (!diagram.points) return;
  for (vwb::Value& point : *diagram.points) {
    if (!point.is_array() || point.size() < 2) continue;
    if (!point[0].is_number() || !point[1].is_number()) continue;
    point[0] = mapped(point[0].get<double>(), before.x, before.w, diagram.x, diagram.w);
    point[1] = mapped(point[1].get<double>(), before.y, before.h, diagram.y, diagram.h);
  }
}

}  // namespace

QRectF frameOf(const vwb::VelWbBaseVector& entry, vwb::Size board) {
  const auto* box = vwb::recordCast<const vwb::VelWbVecSquare>(&entry);
  if (box == nullptr) return {};
  const vwb::Rect rect = vwb::VWBToolManager::convertVectorToNSRect(*box, board);
  return {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
}

bool isResizable(const vwb::VelWbBaseVector& entry) {
  return vwb::recordCast<const vwb::VelWbVecSquare>(&entry) != nullptr;
}

vwb::VectorPtr moveOf(const vwb::VelWbBaseVector& entry, QPointF by, vwb::Size board) {
  if (const auto* stroke = vwb::recordCast<const vwb::VelWbVecLine>(&entry)) {
    return moveOfStroke(*stroke, by, board);
  }
  return resizeOf(entry, frameOf(entry, board).translated(by), board);
}

vwb::VectorPtr resizeOf(const vwb::VelWbBaseVector& entry, const QRectF& to, vwb::Size board) {
  const auto* before = vwb::recordCast<const vwb::VelWbVecSquare>(&entry);
  if (before == nullptr) return nullptr;
  const auto update = entry.copyWithZone();
  auto* box = vwb::recordCast<vwb::VelWbVecSquare>(update.get());
  box->path.reset();
  // The content stays as it is on the board, and need not travel again.
  if (auto* file = vwb::recordCast<vwb::VelWbVecFile>(box)) file->url.reset();
  if (auto* text = vwb::recordCast<vwb::VelWbVecText>(box)) text->text.reset();
  box->ts = vwb::VelWbVectorManager::shareManager().genTs();
  vwb::VWBToolManager::convertPoint({to.x(), to.y()}, {to.width(), to.height()}, *box, board);
  if (auto* diagram = vwb::recordCast<vwb::VelWbVecDiagram>(box)) mapPoints(*diagram, *before);
  if (auto* circle = vwb::recordCast<vwb::VelWbVecCircle>(box)) {
    if (before->w > 0) circle->radiusX *= box->w / before->w;
    if (before->h > 0) circle->radiusY *= box->h / before->h;
  }
  return update;
}

}  // namespace whiteboard
