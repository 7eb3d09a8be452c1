#include "window/tools/stroke_tool.h"

#include <QPen>
#include <utility>

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

constexpr int kSendMilliseconds = 25;
/// The hand has not moved unless it is this far from where it was, in view points.
constexpr double kLeastMove = 0.4;

}  // namespace

StrokeTool::StrokeTool(Session& session, BoardView& view, std::uint64_t tool)
    : session_(session), view_(view), tool_(tool) {
  timer_.setInterval(kSendMilliseconds);
  QObject::connect(&timer_, &QTimer::timeout, &view_, [this] { sendWaiting(); });
}

std::shared_ptr<vwb::VelWbVecLine> StrokeTool::pieceAt(QPointF at) const {
  auto piece =
      vwb::recordPointerCast<vwb::VelWbVecLine>(vwb::VWBToolManager::genVectorWithTool(tool_, ID_));
  vwb::VWBToolManager::convertPoint({at.x(), at.y()}, *piece, view_.boardSize());
  if (first_) {
    // Settings that are changed while the pen is down count for the next stroke.
    piece->color = first_->color;
    piece->pixel = first_->pixel;
    piece->ps = first_->ps;
    piece->widthIndex = first_->widthIndex;
  }
  piece->path.emplace();
  piece->path->push_back({piece->x, piece->y, piece->ts});
  return piece;
}

void StrokeTool::add(const std::shared_ptr<vwb::VelWbVecLine>& piece) {
  session_.show(*piece);
  if (waiting_) {
    waiting_->append(*piece);
  } else {
    waiting_ = piece;
  }
}

void StrokeTool::sendWaiting() {
  if (waiting_) session_.send(std::exchange(waiting_, nullptr));
}

void StrokeTool::press(QPointF at) {
  ID_ = session_.newIdentifier();
  last_ = at;
  above_ = at;
  session_.board().holdInk(ID_);
  first_ = pieceAt(at);
  add(vwb::recordPointerCast<vwb::VelWbVecLine>(vwb::VectorPtr(first_->copyWithZone())));
  sendWaiting();
  timer_.start();
}

void StrokeTool::move(QPointF at) {
  above_ = at;
  if (ID_.empty() || (at - last_).manhattanLength() < kLeastMove) return;
  last_ = at;
  add(pieceAt(at));
  if (tool_ == vwb::VelWBToolEraser) view_.toolChanged();
}

void StrokeTool::release(QPointF at) {
  if (ID_.empty()) return;
  timer_.stop();
  const auto piece = pieceAt(at);
  piece->end = true;
  session_.board().holdInk({});
  add(piece);
  sendWaiting();
  ID_.clear();
  first_ = nullptr;
}

void StrokeTool::cancel() {
  if (!ID_.empty()) release(last_);
}

void StrokeTool::hover(QPointF at) {
  above_ = at;
  if (tool_ == vwb::VelWBToolEraser) view_.toolChanged();
}

void StrokeTool::paint(QPainter& painter) const {
  if (tool_ != vwb::VelWBToolEraser || !view_.underMouse()) return;
  const double width = vwb::VWBToolManager::eraserWidth(0) * view_.boardSize().width /
                       vwb::VWBToolManager::sharedManager().wbBaseSize().width;
  painter.setPen(QPen(QColor(0x6B, 0x74, 0x82), 1.2));
  painter.setBrush(Qt::NoBrush);
  painter.drawEllipse(above_, width / 2, width / 2);
}

QCursor StrokeTool::cursor() const {
  return tool_ == vwb::VelWBToolEraser ? Qt::BlankCursor : Qt::CrossCursor;
}

}  // namespace whiteboard
