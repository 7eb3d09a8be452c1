// What the hand does on the board.
#pragma once

#include <QCursor>
#include <QKeyEvent>
#include <QPainter>
#include <QPointF>

namespace whiteboard {

/// A tool that is held by the hand. Points are view points of the board: the origin is its upper
/// left corner. The hand may leave the board while it is down.
class Tool {
 public:
  Tool() = default;
  virtual ~Tool() = default;
  Tool(const Tool&) = delete;
  Tool& operator=(const Tool&) = delete;

  virtual void press(QPointF at) = 0;
  virtual void move(QPointF at) = 0;
  virtual void release(QPointF at) = 0;
  /// The hand moves above the board.
  virtual void hover(QPointF /*at*/) {}
  virtual void doubleClick(QPointF at) { press(at); }
  /// Gives up what was begun: another tool is taken, the window loses the focus.
  virtual void cancel() {}
  /// The board has another size, or another place in its view.
  virtual void resized() {}
  /// Draws what lies over the board while the tool is used.
  virtual void paint(QPainter& /*painter*/) const {}
  /// Whether the tool has used the key.
  virtual bool key(QKeyEvent& /*event*/) { return false; }
  virtual QCursor cursor() const { return Qt::CrossCursor; }
};

}  // namespace whiteboard
