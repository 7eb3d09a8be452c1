#include "drawing/stroke.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "drawing/canvas.h"
#include "drawing/outline.h"
#include "drawing/squares.h"

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

constexpr std::size_t kChunk = 64;

// Strokes of no more positions and no larger width are drawn in one piece.
constexpr std::size_t kFew = 256;
constexpr double kThin = 24;  // view points

// How far a straight edge may be from the curve, in view points and in widths of the stroke, and
// how many stand for a piece.
constexpr double kTolerance = 0.05;
constexpr double kToleranceOfWidth = 0.001;
constexpr double kMostEdges = 200;

/// How far an `offset` moves the stroke, in fractions.
vwb::Point displacementOf(const vwb::VelWbVecLine& stroke) {
  if (!stroke.offset || stroke.offset->size() != 2) return {};
  const vwb::Value& x = (*stroke.offset)[0];
  const vwb::Value& y = (*stroke.offset)[1];
  if (!x.is_number() || !y.is_number()) return {};
  return {x.get<double>(), y.get<double>()};
}

bool isEraser(const vwb::VelWbVecLine& line) {
  return vwb::VelWbVectorDefines::isEraser(line.type);
}

QRectF grown(const QRectF& area, double by) { return area.adjusted(-by, -by, by, by); }

/// The smallest rectangle around three points.
QRectF around(QPointF a, QPointF b, QPointF c) {
  const auto [left, right] = std::minmax({a.x(), b.x(), c.x()});
  const auto [top, bottom] = std::minmax({a.y(), b.y(), c.y()});
  return {QPointF(left, top), QPointF(right, bottom)};
}

}  // namespace

void Stroke::update(std::size_t firstNew) {
  std::size_t first = indexOf(firstNew);
  if (!line_.path || first > positions_.size()) firstNew = first = 0;
  positions_.resize(first);
  left_.erase(std::lower_bound(left_.begin(), left_.end(), firstNew), left_.end());
  if (firstNew == 0) moved_ = displacementOf(line_);
  if (!line_.path) {
    add(line_.x, line_.y);
  } else {
    for (std::size_t i = firstNew; i < line_.path->size(); ++i) {
      const vwb::Path::Position position = (*line_.path)[i];
      const std::size_t before = positions_.size();
      if (position.size() >= 2) add(position[0], position[1]);
      if (positions_.size() == before) left_.push_back(i);
    }
  }
  findExtents(first < kChunk ? 0 : (first - kChunk) / kChunk);
}

void Stroke::add(double x, double y) {
  if (const auto drawable = drawableFraction({x + moved_.x, y + moved_.y})) {
    positions_.push_back(*drawable);
  }
}

/// The index in `positions_` of what is at `ofPath` in the path.
std::size_t Stroke::indexOf(std::size_t ofPath) const {
  const auto leftBefore = std::lower_bound(left_.begin(), left_.end(), ofPath) - left_.begin();
  return ofPath - static_cast<std::size_t>(leftBefore);
}

/// A chunk is 64 pieces of the curve; they depend on one position more on each side.
void Stroke::findExtents(std::size_t firstChunk) {
  chunks_.resize(std::min(firstChunk, chunks_.size()));
  while (chunks_.size() * kChunk < positions_.size()) {
    const std::size_t first = chunks_.size() * kChunk;
    chunks_.push_back(
        extentOf(first == 0 ? 0 : first - 1, std::min(first + kChunk + 1, positions_.size())));
  }
}

Stroke::Extent Stroke::extentOf(std::size_t first, std::size_t end) const {
  Extent extent{positions_[first], positions_[first]};
  for (std::size_t i = first + 1; i < end; ++i) {
    const vwb::Point at = positions_[i];
    extent.low = {std::min(extent.low.x, at.x), std::min(extent.low.y, at.y)};
    extent.high = {std::max(extent.high.x, at.x), std::max(extent.high.y, at.y)};
  }
  return extent;
}

QRectF Stroke::areaOfExtent(const Extent& extent, vwb::Size board) const {
  return {viewPointOf(extent.low, board), viewPointOf(extent.high, board)};
}

double Stroke::widthOn(vwb::Size board) const {
  return std::min(line_.lineWidthWith(board), board.width);
}

QRectF Stroke::inked(vwb::Size board) const {
  if (chunks_.empty()) return {};
  Extent all = chunks_.front();
  for (const Extent& chunk : chunks_) {
    all.low = {std::min(all.low.x, chunk.low.x), std::min(all.low.y, chunk.low.y)};
    all.high = {std::max(all.high.x, chunk.high.x), std::max(all.high.y, chunk.high.y)};
  }
  return grown(areaOfExtent(all, board), widthOn(board) / 2);
}

QRectF Stroke::inkedFrom(std::size_t firstNew, vwb::Size board) const {
  const std::size_t first = indexOf(firstNew);
  if (first < 3) return inked(board);
  if (positions_.size() < first) return {};
  // A new position bends the edge that led to the last one before it.
  return grown(areaOfExtent(extentOf(first - 2, positions_.size()), board), widthOn(board) / 2);
}

/// @param index 1 to the number of positions, without it.
Stroke::Piece Stroke::piece(std::size_t index, vwb::Size board) const {
  const QPointF before = viewPointOf(positions_[index - 1], board);
  const QPointF at = viewPointOf(positions_[index], board);
  const QPointF from = index == 1 ? before : (before + at) / 2;
  if (index + 1 == positions_.size()) return {from, from, at, true};
  return {from, at, (at + viewPointOf(positions_[index + 1], board)) / 2, false};
}

void Stroke::forRuns(const QRectF& area, vwb::Size board,
                     const std::function<void(const QPolygonF&)>& take) const {
  const double tolerance = kTolerance + kToleranceOfWidth * widthOn(board);
  QPolygonF run;
  const auto finish = [&] {
    if (!run.isEmpty()) take(run);
    run.clear();
  };
  const auto add = [&](const Piece& next) {
    if (run.isEmpty()) run << next.from;
    const QPointF bend = next.from - next.control * 2 + next.to;
    const double needed = std::sqrt(std::hypot(bend.x(), bend.y()) / (4 * tolerance));
    const int edges = next.isStraight ? 1 : static_cast<int>(std::min(needed, kMostEdges)) + 1;
    for (int i = 1; i < edges; ++i) {
      const double t = static_cast<double>(i) / edges;
      run << next.from * ((1 - t) * (1 - t)) + next.control * (2 * t * (1 - t)) + next.to * (t * t);
    }
    run << next.to;
  };

  if (positions_.size() == 1) {
    const QPointF dot = viewPointOf(positions_.front(), board);
    if (area.contains(dot)) take(QPolygonF({dot}));
    return;
  }
  for (std::size_t chunk = 0; chunk < chunks_.size(); ++chunk) {
    if (!touches(areaOfExtent(chunks_[chunk], board), area)) {
      finish();
      continue;
    }
    const std::size_t end = std::min((chunk + 1) * kChunk, positions_.size());
    for (std::size_t i = std::max<std::size_t>(chunk * kChunk, 1); i < end; ++i) {
      const Piece next = piece(i, board);
      if (touches(around(next.from, next.control, next.to), area)) {
        add(next);
      } else {
        finish();
      }
    }
  }
  finish();
}

QPainterPath Stroke::curve(vwb::Size board) const {
  QPainterPath path;
  for (std::size_t i = 1; i < positions_.size(); ++i) {
    const Piece next = piece(i, board);
    if (i == 1) path.moveTo(next.from);
    next.isStraight ? path.lineTo(next.to) : path.quadTo(next.control, next.to);
  }
  return path;
}

void Stroke::paint(QPainter& painter, vwb::Size board, const QRectF& part) const {
  const double width = widthOn(board);
  if (isVector(painter)) {
    const QPainterPath line = curve(board);
    const QRectF extent = line.controlPointRect();
    if (extent.width() > 0 || extent.height() > 0) {  // else a dot
      return painter.strokePath(line, roundPen(colourOf(line_.color).value_or(ink()), width));
    }
  }
  if (isEraser(line_)) painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
  if (isVector(painter) || (positions_.size() <= kFew && width <= kThin)) {
    fill(painter, board, part);
  } else {
    paintInSquares(painter, part.intersected(grown(inked(board), 1)),
                   [&](QPainter& into, const QRectF& area) { return fill(into, board, area); });
  }
}

bool Stroke::fill(QPainter& painter, vwb::Size board, const QRectF& area) const {
  const double width = widthOn(board);
  QPainterPath outline;
  outline.setFillRule(Qt::WindingFill);
  bool isFull = false;
  forRuns(grown(area, width / 2 + kNear), board, [&](const QPolygonF& run) {
    isFull = isFull || isCovered(area, run, width);
    if (!isFull) addOutline(run, width, false, outline);
  });
  const QColor colour = isEraser(line_) ? Qt::black : colourOf(line_.color).value_or(ink());
  if (isFull) {
    painter.fillRect(grown(area, 1), colour);
  } else {
    painter.fillPath(outline, colour);
  }
  return isFull || !outline.isEmpty();
}

bool Stroke::hits(QPointF at, double tolerance, vwb::Size board) const {
  if (isEraser(line_)) return false;
  const double reach = widthOn(board) / 2 + tolerance;
  bool isHit = false;
  forRuns(grown(QRectF(at, at), reach), board,
          [&](const QPolygonF& run) { isHit = isHit || distanceTo(run, at) <= reach; });
  return isHit;
}

}  // namespace whiteboard
