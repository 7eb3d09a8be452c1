// The board in a window.
#pragma once

#include <QElapsedTimer>
#include <QImage>
#include <QPointF>
#include <QRectF>
#include <QTimer>
#include <QWidget>
#include <VelWhiteBoard/VelWhiteBoard.h>
#include <memory>
#include <vector>

#include "drawing/scene.h"
#include "lesson/board.h"
#include "window/tools/tool.h"

namespace whiteboard {

/// Shows the page of a board, 16:9 in the middle of its space, and hands mouse, pen and touch to
/// the tool: to one of them at a time. Only what has changed is drawn again: the view keeps a
/// picture of the entries, and clears and draws the rectangles that the scene names.
class BoardView : public QWidget {
  Q_OBJECT

 public:
  explicit BoardView(Board& board, QWidget* parent = nullptr);

  Board& board() { return board_; }
  Scene& scene() { return scene_; }
  /// The board's size in view points, and its place in the view.
  VelWhiteBoard::Size boardSize() const { return scene_.size(); }
  QRectF boardRect() const { return place_; }
  QPointF toBoard(QPointF inView) const { return inView - place_.topLeft(); }

  /// Null: the board is only looked at. The tool belongs to the caller, who takes it away before it
  /// goes.
  void setTool(Tool* tool);
  Tool* tool() const { return tool_; }
  /// What the tool draws over the board has changed.
  void toolChanged();

  /// How long it took from an input event until what it changed was painted, in milliseconds, since
  /// the last call.
  std::vector<double> takeLatencies();

  /// The page as it is seen.
  QImage picture() const;

  QSize sizeHint() const override { return {960, 540}; }

 signals:
  /// The hand has gone down on the board, or come up again.
  void penDown(bool down);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void tabletEvent(QTabletEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  bool event(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void takeReport(const VelWhiteBoard::ChangeReport& report);
  void takePage();
  void fit();
  /// Marks what the scene names as to be painted.
  void updateStale();
  void drawStale();
  void paintLens(QPainter& painter) const;
  /// What the hand holds while it is down on the board.
  enum class Hand { kNone, kMouse, kPen, kFinger };

  bool touch(QTouchEvent& event);
  void press(Hand hand, QPointF inView);
  void move(Hand hand, QPointF inView);
  void release(Hand hand, QPointF inView);
  /// The hand is down no longer, without having come up here: a stroke ends where it is, anything
  /// else is given up.
  void interrupt();
  void setDown(Hand hand);
  void beginMeasuring();

  Board& board_;
  Scene scene_;
  Tool* tool_ = nullptr;
  Hand hand_ = Hand::kNone;  // that is down
  int finger_ = 0;           // that draws
  QElapsedTimer sincePen_;
  QRectF place_;
  QImage layer_;              // the entries, transparent where there is nothing
  std::vector<QRect> stale_;  // pixels of the layer that are to be drawn again
  QTimer fitTimer_;
  QElapsedTimer sinceInput_;
  bool isMeasuring_ = false;
  std::vector<double> latencies_;
};

}  // namespace whiteboard
