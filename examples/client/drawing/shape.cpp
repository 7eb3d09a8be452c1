#include "drawing/shape.h"

#include <utility>

#include "drawing/canvas.h"
#include "drawing/diagram.h"
#include "drawing/file_box.h"
#include "drawing/frames.h"
#include "drawing/look.h"
#include "drawing/stroke.h"
#include "drawing/text_box.h"

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

/// What can be seen, in whole view points: what is clipped, is clipped to that.
QRectF wholePoints(const QRectF& inked, vwb::Size board) {
  if (inked.isNull()) return {};
  return QRectF(seenOf(inked, board).toAlignedRect()).intersected(areaOf(board));
}

}  // namespace

std::unique_ptr<Look> lookOf(const vwb::VelWbBaseVector& vector) {
  if (const auto* line = vwb::recordCast<const vwb::VelWbVecLine>(&vector)) {
    return std::make_unique<Stroke>(*line);
  }
  if (const auto* diagram = vwb::recordCast<const vwb::VelWbVecDiagram>(&vector)) {
    return std::make_unique<Diagram>(*diagram);
  }
  if (const auto* text = vwb::recordCast<const vwb::VelWbVecText>(&vector)) {
    return std::make_unique<TextBox>(*text);
  }
  if (const auto* file = vwb::recordCast<const vwb::VelWbVecFile>(&vector)) {
    if (file->type == vwb::VelWBVectorStrCursor) return std::make_unique<Cursor>(*file);
    return std::make_unique<FileBox>(*file);
  }
  if (const auto* box = vwb::recordCast<const vwb::VelWbVecSquare>(&vector)) {
    return std::make_unique<Frame>(*box);
  }
  return nullptr;
}

Shape::Shape(vwb::VectorPtr vector)
    : vector_(std::move(vector)), look_(vector_ ? lookOf(*vector_) : nullptr) {}

Shape::~Shape() = default;

void Shape::update(std::size_t firstNew) {
  if (look_) look_->update(firstNew);
  bounds_.reset();
}

QRectF Shape::bounds(vwb::Size board) const {
  if (!look_ || !isDrawable(board)) return {};
  if (!bounds_ || board.width != boundsOn_.width || board.height != boundsOn_.height) {
    bounds_ = wholePoints(look_->inked(board), board);
    boundsOn_ = board;
  }
  return *bounds_;
}

QRectF Shape::boundsFrom(std::size_t firstNew, vwb::Size board) const {
  if (!look_ || !isDrawable(board)) return {};
  return wholePoints(look_->inkedFrom(firstNew, board), board);
}

bool Shape::isEraser() const {
  return vector_ && vwb::VelWbVectorDefines::isEraser(vector_->type) &&
         vwb::recordCast<const vwb::VelWbVecLine>(vector_.get()) != nullptr;
}

bool Shape::isMagnifier() const {
  return vector_ && vector_->type == vwb::VelWBVectorStrMagnifier &&
         vwb::recordCast<const vwb::VelWbVecSquare>(vector_.get()) != nullptr;
}

QRectF Shape::box(vwb::Size board) const {
  const auto* const square = vwb::recordCast<const vwb::VelWbVecSquare>(vector_.get());
  if (square == nullptr || !isDrawable(board)) return {};
  return boxOf(*square, board).value_or(QRectF()).normalized();
}

double Shape::lensRadius(vwb::Size board) const {
  return whiteboard::lensRadius(box(board), board);
}

void Shape::paint(QPainter& painter, vwb::Size board, const QRectF& part) const {
  const QRectF seen = bounds(board);
  if (seen.isEmpty() || !touches(seen, part)) return;
  const SavedState state(painter);
  painter.setRenderHint(QPainter::Antialiasing);
  if (look_->isClipped() && !isVector(painter)) {
    painter.setClipRect(seen.toAlignedRect(), Qt::IntersectClip);
  }
  look_->paint(painter, board, part);
}

bool Shape::hits(QPointF at, double tolerance, vwb::Size board) const {
  return look_ && isDrawable(board) && look_->hits(at, tolerance, board);
}

}  // namespace whiteboard
