#include "window/board_view.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

using std::chrono_literals::operator""ms;

constexpr double kShape = 16.0 / 9.0;
/// The space around the board.
constexpr double kMargin = 12;
constexpr auto kFitAfter = 60ms;
constexpr double kLensZoom = 2;
constexpr std::size_t kMostStale = 64;
const QColor kDesk(0xE9, 0xEC, 0xF1);
const QColor kEdge(0xC9, 0xCF, 0xD8);

/// The largest rectangle of the board's shape in the middle of a space, on whole pixels.
QRectF placeIn(QSize space) {
  const double width = std::max(16.0, space.width() - 2 * kMargin);
  const double height = std::max(9.0, space.height() - 2 * kMargin);
  const double used = std::floor(std::min(width, height * kShape));
  const double high = std::floor(used / kShape);
  return {std::floor((space.width() - used) / 2), std::floor((space.height() - high) / 2), used,
          high};
}

}  // namespace

BoardView::BoardView(Board& board, QWidget* parent) : QWidget(parent), board_(board) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  setAttribute(Qt::WA_AcceptTouchEvents);
  setMouseTracking(true);
  setTabletTracking(true);
  setFocusPolicy(Qt::StrongFocus);
  setMinimumSize(320, 180);
  fitTimer_.setSingleShot(true);
  connect(&fitTimer_, &QTimer::timeout, this, &BoardView::fit);
  connect(&board_, &Board::changed, this, &BoardView::takeReport);
  connect(&board_, &Board::inkChanged, this, [this](const std::string& ID, std::size_t firstNew) {
    scene_.takeInk(ID, firstNew, board_.ink(), board_.pageKey());
    updateStale();
  });
  connect(&board_, &Board::inkOfPageChanged, this, &BoardView::takePage);
  connect(&board_, &Board::aboutToTurn, this, [this] {
    if (tool_ != nullptr) tool_->cancel();
  });
  takePage();
}

void BoardView::setTool(Tool* tool) {
  if (tool_ != nullptr) tool_->cancel();
  tool_ = tool;
  setDown(Hand::kNone);
  setCursor(tool_ != nullptr ? tool_->cursor() : QCursor(Qt::ArrowCursor));
  update();
}

void BoardView::toolChanged() { update(); }

std::vector<double> BoardView::takeLatencies() { return std::exchange(latencies_, {}); }

QImage BoardView::picture() const {
  QImage picture(layer_.size(), QImage::Format_RGB32);
  picture.setDevicePixelRatio(layer_.devicePixelRatio());
  picture.fill(Qt::white);
  QPainter(&picture).drawImage(QPointF(0, 0), layer_);
  return picture;
}

void BoardView::takeReport(const vwb::ChangeReport& report) {
  if (report.kind != vwb::ChangeReport::Kind::kEntries) return takePage();
  if (!report.isCurrent) return;
  for (const vwb::EntryChange& change : report.changes) scene_.take(change);
  updateStale();
}

void BoardView::takePage() {
  const auto page = board_.page();
  const vwb::VectorList entries = page ? board_.storage().snapWithPage(*page) : vwb::VectorList();
  scene_.show(entries, board_.ink(), page ? page->pageInfo() : "");
  updateStale();
  update();
}

void BoardView::resizeEvent(QResizeEvent*) {
  place_ = placeIn(size());
  // The old picture is shown larger or smaller until the hand rests.
  if (layer_.isNull()) {
    fit();
  } else {
    fitTimer_.start(kFitAfter);
  }
}

void BoardView::fit() {
  const double ratio = devicePixelRatioF();
  const QSize pixels(static_cast<int>(std::ceil(place_.width() * ratio)),
                     static_cast<int>(std::ceil(place_.height() * ratio)));
  layer_ = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
  layer_.setDevicePixelRatio(ratio);
  layer_.fill(Qt::transparent);
  scene_.setSize({place_.width(), place_.height()});
  if (tool_ != nullptr) tool_->resized();
  updateStale();
  update();
}

void BoardView::updateStale() {
  const double ratio = layer_.devicePixelRatio();
  if (const Shape* lens = scene_.lens()) {
    // It enlarges what is below it.
    update(lens->box(scene_.size()).translated(place_.topLeft()).toAlignedRect());
  }
  for (const QRectF& part : scene_.takeStale()) {
    const QRectF pixels(part.x() * ratio, part.y() * ratio, part.width() * ratio,
                        part.height() * ratio);
    const QRect aligned = pixels.toAlignedRect().adjusted(-1, -1, 1, 1) & layer_.rect();
    if (aligned.isEmpty()) continue;
    // Neighbours are drawn together: a stroke's pieces come one beside the other.
    if (!stale_.empty() && stale_.back().intersects(aligned)) {
      stale_.back() |= aligned;
    } else {
      stale_.push_back(aligned);
    }
    update(part.translated(place_.topLeft()).toAlignedRect().adjusted(-2, -2, 2, 2));
  }
  if (stale_.size() > kMostStale) {
    // Nothing was painted for a while, or much has changed: one large part takes less time.
    QRect all;
    for (const QRect& part : stale_) all |= part;
    stale_ = {all};
  }
}

void BoardView::drawStale() {
  if (stale_.empty()) return;
  const double ratio = layer_.devicePixelRatio();
  QPainter painter(&layer_);
  painter.setRenderHint(QPainter::Antialiasing);
  for (const QRect& pixels : std::exchange(stale_, {})) {
    const QRectF part(pixels.x() / ratio, pixels.y() / ratio, pixels.width() / ratio,
                      pixels.height() / ratio);
    painter.save();
    painter.setClipRect(part);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(part, Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    scene_.paint(painter, part);
    painter.restore();
  }
}

void BoardView::paintEvent(QPaintEvent* event) {
  // The window has been moved to a screen with other pixels.
  if (layer_.devicePixelRatio() != devicePixelRatioF()) fitTimer_.start(kFitAfter);
  drawStale();
  {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!place_.contains(event->rect())) {
      painter.fillRect(event->rect(), kDesk);
      painter.fillRect(place_.adjusted(-1, -1, 1, 1), kEdge);
    }
    painter.setClipRect(place_);
    painter.fillRect(place_, Qt::white);
    const QSizeF shown = layer_.deviceIndependentSize();
    if (std::abs(shown.width() - place_.width()) < 1.5) {
      painter.drawImage(place_.topLeft(), layer_);
    } else {
      painter.setRenderHint(QPainter::SmoothPixmapTransform);
      painter.drawImage(place_, layer_);
    }
    painter.translate(place_.topLeft());
    paintLens(painter);
    if (tool_ != nullptr) tool_->paint(painter);
  }
  if (!std::exchange(isMeasuring_, false)) return;
  latencies_.push_back(static_cast<double>(sinceInput_.nsecsElapsed()) / 1e6);
}

void BoardView::paintLens(QPainter& painter) const {
  const Shape* lens = scene_.lens();
  if (lens == nullptr) return;
  const QRectF place = lens->box(scene_.size());
  if (place.isEmpty()) return;
  painter.save();
  QPainterPath frame;
  const double radius = lens->lensRadius(scene_.size());
  frame.addRoundedRect(place, radius, radius);
  painter.setClipPath(frame, Qt::IntersectClip);
  painter.fillRect(place, Qt::white);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  const QPointF middle = place.center();
  const QSizeF part = place.size() / kLensZoom;
  const double ratio = layer_.devicePixelRatio();
  const QRectF from((middle.x() - part.width() / 2) * ratio,
                    (middle.y() - part.height() / 2) * ratio, part.width() * ratio,
                    part.height() * ratio);
  painter.drawImage(place, layer_, from);
  painter.setPen(QPen(QColor(0x3B, 0x6F, 0xD4), 3));
  painter.drawPath(frame);
  painter.restore();
}

}  // namespace whiteboard
