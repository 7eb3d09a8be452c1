#include "window/tools/select_tool.h"

#include <QPen>
#include <algorithm>
#include <array>
#include <utility>

#include "window/tools/moving.h"

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

constexpr double kTolerance = 6;
constexpr double kHandle = 9;
constexpr double kSmallestBox = 8;
constexpr double kSmallestMove = 3;
/// The frame lies so far outside, where the line of a shape does not hide it.
constexpr double kGap = 4;
const QColor kFrame(0x3B, 0x6F, 0xD4);

std::array<QPointF, 4> cornersOf(const QRectF& rect) {
  return {rect.topLeft(), rect.topRight(), rect.bottomRight(), rect.bottomLeft()};
}

bool isUndeletable(const vwb::VelWbBaseVector& entry) {
  const auto* file = vwb::recordCast<const vwb::VelWbVecFile>(&entry);
  return file != nullptr && file->undeletable;
}

}  // namespace

SelectTool::SelectTool(Session& session, BoardView& view, EditText editText)
    : session_(session), view_(view), editText_(std::move(editText)) {}

vwb::VectorPtr SelectTool::entry() const {
  return selected_.empty() ? nullptr : session_.board().shownEntry(selected_);
}

void SelectTool::select(const std::string& ID) {
  selected_ = ID;
  view_.toolChanged();
}

QRectF SelectTool::frame() const {
  const vwb::VectorPtr selected = entry();
  if (!selected) return {};
  if (isResizable(*selected)) {
    // Records come from other machines, and may have any size.
    const QRectF page(0, 0, view_.boardSize().width, view_.boardSize().height);
    const QRectF around = page.adjusted(-page.width(), -page.height(), page.width(), page.height());
    return frameOf(*selected, view_.boardSize()) & around;
  }
  const Shape* shape = view_.scene().find(selected_);
  return shape != nullptr ? shape->bounds(view_.boardSize()) : QRectF();
}

void SelectTool::press(QPointF at) {
  from_ = at;
  before_ = nullptr;
  drag_ = Drag::kNone;
  if (const vwb::VectorPtr selected = entry(); selected && isResizable(*selected)) {
    const auto corners = cornersOf(frame());
    for (std::size_t i = 0; i < corners.size(); ++i) {
      if ((corners[i] - at).manhattanLength() > kHandle) continue;
      fixedCorner_ = corners[(i + 2) % corners.size()];
      return begin(Drag::kResize, *selected);
    }
  }
  const Shape* hit = view_.scene().at(at, kTolerance);
  if (hit == nullptr || !hit->vector()->ID) return select({});
  select(*hit->vector()->ID);
  begin(Drag::kMove, *hit->vector());
}

void SelectTool::begin(Drag drag, const vwb::VelWbBaseVector& entry) {
  drag_ = drag;
  before_ = entry.copyWithZone();
  inkBefore_ = session_.board().ink().copyOf(selected_);
}

bool SelectTool::isThere() const {
  return inkBefore_.has_value() || session_.board().storage().entryWithID(selected_) != nullptr;
}

vwb::VectorPtr SelectTool::changeAt(QPointF at) const {
  if (!before_) return nullptr;
  const vwb::Size board = view_.boardSize();
  if (drag_ == Drag::kMove) return moveOf(*before_, at - from_, board);
  QRectF to = QRectF(fixedCorner_, at).normalized();
  to.setWidth(std::max(to.width(), kSmallestBox));
  to.setHeight(std::max(to.height(), kSmallestBox));
  return resizeOf(*before_, to, board);
}

void SelectTool::move(QPointF at) {
  if (drag_ == Drag::kNone) return;
  const vwb::VectorPtr change =
      (at - from_).manhattanLength() < kSmallestMove ? nullptr : changeAt(at);
  if (change) {
    session_.show(*change);
  } else {
    session_.board().restoreInk(selected_, inkBefore_);
  }
  view_.toolChanged();
}

void SelectTool::release(QPointF at) {
  if (drag_ == Drag::kNone) return;
  const vwb::VectorPtr change =
      (at - from_).manhattanLength() < kSmallestMove ? nullptr : changeAt(at);
  drag_ = Drag::kNone;
  before_ = nullptr;
  if (change && isThere()) {
    session_.draw(change);
  } else {
    session_.board().restoreInk(selected_, inkBefore_);
  }
  view_.toolChanged();
}

void SelectTool::doubleClick(QPointF at) {
  press(at);
  drag_ = Drag::kNone;
  before_ = nullptr;
  const vwb::VectorPtr selected = entry();
  if (selected && vwb::recordCast<const vwb::VelWbVecText>(selected.get()) != nullptr) {
    const std::string ID = selected_;  // taking the other tool ends the selection
    editText_(ID);
  }
}

void SelectTool::cancel() {
  if (drag_ != Drag::kNone) session_.board().restoreInk(selected_, inkBefore_);
  drag_ = Drag::kNone;
  before_ = nullptr;
  select({});
}

void SelectTool::remove() {
  const vwb::VectorPtr selected = entry();
  if (!selected || isUndeletable(*selected)) return;
  session_.remove(std::exchange(selected_, {}));
  view_.toolChanged();
}

bool SelectTool::key(QKeyEvent& event) {
  if (drag_ != Drag::kNone) return event.key() == Qt::Key_Escape ? (cancel(), true) : true;
  const double step = event.modifiers().testFlag(Qt::ShiftModifier) ? 10 : 1;
  const auto nudge = [&](double x, double y) {
    const vwb::VectorPtr selected = entry();
    if (!selected) return false;
    const vwb::VectorPtr change = moveOf(*selected, {x * step, y * step}, view_.boardSize());
    if (change) session_.draw(change);
    view_.toolChanged();
    return true;
  };
  switch (event.key()) {
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
      remove();
      return true;
    case Qt::Key_Escape:
      cancel();
      return true;
    case Qt::Key_Left:
      return nudge(-1, 0);
    case Qt::Key_Right:
      return nudge(1, 0);
    case Qt::Key_Up:
      return nudge(0, -1);
    case Qt::Key_Down:
      return nudge(0, 1);
    default:
      return false;
  }
}

void SelectTool::paint(QPainter& painter) const {
  const QRectF around = frame();
  if (around.isNull()) return;
  painter.setPen(QPen(kFrame, 1.4, Qt::DashLine));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(around.adjusted(-kGap, -kGap, kGap, kGap));
  const vwb::VectorPtr selected = entry();
  if (!selected || !isResizable(*selected)) return;
  painter.setPen(QPen(kFrame, 1.4));
  painter.setBrush(Qt::white);
  for (const QPointF& corner : cornersOf(around)) painter.drawEllipse(corner, 4.5, 4.5);
}

}  // namespace whiteboard
