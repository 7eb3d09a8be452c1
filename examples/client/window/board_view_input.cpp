// What mouse, pen and fingers do to a board.
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTabletEvent>
#include <QTouchEvent>

#include "window/board_view.h"

namespace whiteboard {

namespace {

/// For so long after a pen was near, fingers are taken for the hand that holds it.
constexpr qint64 kPenMilliseconds = 500;

}  // namespace

void BoardView::beginMeasuring() {
  if (isMeasuring_) return;
  isMeasuring_ = true;
  sinceInput_.start();
}

void BoardView::setDown(Hand hand) {
  const bool wasDown = hand_ != Hand::kNone;
  hand_ = hand;
  // That a pen has left is told to the program, not to a window.
  if (hand == Hand::kPen) qApp->installEventFilter(this);
  if (hand == Hand::kNone) qApp->removeEventFilter(this);
  if (wasDown != (hand != Hand::kNone)) emit penDown(!wasDown);
}

void BoardView::interrupt() {
  if (hand_ == Hand::kNone) return;
  tool_->cancel();
  setDown(Hand::kNone);
  update();
}

void BoardView::press(Hand hand, QPointF inView) {
  if (tool_ == nullptr || hand_ != Hand::kNone) return;
  beginMeasuring();
  setDown(hand);
  tool_->press(toBoard(inView));
}

void BoardView::move(Hand hand, QPointF inView) {
  if (tool_ == nullptr || (hand_ != hand && hand_ != Hand::kNone)) return;
  beginMeasuring();
  hand_ == hand ? tool_->move(toBoard(inView)) : tool_->hover(toBoard(inView));
}

void BoardView::release(Hand hand, QPointF inView) {
  if (tool_ == nullptr || hand_ != hand) return;
  beginMeasuring();
  // Down no longer, should the tool take the focus away; others turn pages when it is done.
  hand_ = Hand::kNone;
  tool_->release(toBoard(inView));
  hand_ = hand;
  setDown(Hand::kNone);
}

void BoardView::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) press(Hand::kMouse, event->position());
}

void BoardView::mouseMoveEvent(QMouseEvent* event) {
  // The button came up where this window did not hear of it.
  const bool isUp = !event->buttons().testFlag(Qt::LeftButton);
  if (hand_ == Hand::kMouse && isUp) return release(Hand::kMouse, event->position());
  move(Hand::kMouse, event->position());
}

void BoardView::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) release(Hand::kMouse, event->position());
}

void BoardView::mouseDoubleClickEvent(QMouseEvent* event) {
  if (tool_ == nullptr || hand_ != Hand::kNone || event->button() != Qt::LeftButton) return;
  setDown(Hand::kMouse);
  tool_->doubleClick(toBoard(event->position()));
}

void BoardView::tabletEvent(QTabletEvent* event) {
  sincePen_.start();
  const bool isTip = event->button() != Qt::RightButton && event->button() != Qt::MiddleButton;
  switch (event->type()) {
    case QEvent::TabletPress:
      // What the finger draws meanwhile is the hand that rests.
      if (isTip && hand_ == Hand::kFinger) interrupt();
      if (isTip) press(Hand::kPen, event->position());
      break;
    case QEvent::TabletMove:
      if (hand_ == Hand::kPen && event->buttons() == Qt::NoButton) {
        release(Hand::kPen, event->position());
      } else {
        move(Hand::kPen, event->position());
      }
      break;
    case QEvent::TabletRelease:
      if (isTip) release(Hand::kPen, event->position());
      break;
    default:
      return event->ignore();
  }
  event->accept();
}

bool BoardView::touch(QTouchEvent& event) {
  if (tool_ == nullptr || event.points().isEmpty()) return false;
  // The first finger draws. Others change nothing; nor does the hand that holds a pen.
  const bool isPenNear =
      hand_ == Hand::kPen || (sincePen_.isValid() && sincePen_.elapsed() < kPenMilliseconds);
  if (event.type() == QEvent::TouchBegin) {
    finger_ = event.points().first().id();
    if (!isPenNear) press(Hand::kFinger, event.points().first().position());
    return true;
  }
  if (hand_ != Hand::kFinger) return true;
  const QEventPoint* finger = event.pointById(finger_);
  if (finger == nullptr) return true;
  const bool isUp = event.type() == QEvent::TouchEnd || finger->state() == QEventPoint::Released;
  isUp ? release(Hand::kFinger, finger->position()) : move(Hand::kFinger, finger->position());
  return true;
}

bool BoardView::event(QEvent* event) {
  switch (event->type()) {
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
      if (touch(*static_cast<QTouchEvent*>(event))) {
        event->accept();
        return true;
      }
      break;
    case QEvent::TouchCancel:
      if (hand_ == Hand::kFinger) interrupt();
      event->accept();
      return true;
    case QEvent::WindowDeactivate:
      interrupt();
      break;
    default:
      break;
  }
  return QWidget::event(event);
}

bool BoardView::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::TabletLeaveProximity && hand_ == Hand::kPen) interrupt();
  return QWidget::eventFilter(watched, event);
}

void BoardView::focusOutEvent(QFocusEvent* event) {
  interrupt();
  QWidget::focusOutEvent(event);
}

void BoardView::hideEvent(QHideEvent* event) {
  interrupt();
  QWidget::hideEvent(event);
}

void BoardView::keyPressEvent(QKeyEvent* event) {
  if (tool_ != nullptr && tool_->key(*event)) return;
  QWidget::keyPressEvent(event);
}

}  // namespace whiteboard
