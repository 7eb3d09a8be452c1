// Selecting, moving, resizing and deleting entries.
#pragma once

#include <QRectF>
#include <VelWhiteBoard/VelWhiteBoard.h>
#include <functional>
#include <optional>
#include <string>

#include "lesson/session.h"
#include "window/board_view.h"
#include "window/tools/tool.h"

namespace whiteboard {

/// Selects the uppermost entry under the hand. Dragging moves it, dragging a corner gives a box
/// another size, Delete takes it off the page.
class SelectTool : public Tool {
 public:
  /// Told of a text that was double-clicked.
  using EditText = std::function<void(const std::string& ID)>;

  SelectTool(Session& session, BoardView& view, EditText editText);

  void press(QPointF at) override;
  void move(QPointF at) override;
  void release(QPointF at) override;
  void doubleClick(QPointF at) override;
  void cancel() override;
  void paint(QPainter& painter) const override;
  bool key(QKeyEvent& event) override;
  QCursor cursor() const override { return Qt::ArrowCursor; }

  const std::string& selected() const { return selected_; }

 private:
  enum class Drag { kNone, kMove, kResize };

  VelWhiteBoard::VectorPtr entry() const;
  void select(const std::string& ID);
  void remove();
  /// The frame around the selected entry.
  QRectF frame() const;
  void begin(Drag drag, const VelWhiteBoard::VelWbBaseVector& entry);
  /// Whether others have left the entry on the page.
  bool isThere() const;
  /// What the drag so far makes of the entry; null when nothing.
  VelWhiteBoard::VectorPtr changeAt(QPointF at) const;

  Session& session_;
  BoardView& view_;
  EditText editText_;
  std::string selected_;  // empty: nothing
  Drag drag_ = Drag::kNone;
  QPointF from_;
  /// The corner that stays while a box is resized.
  QPointF fixedCorner_;
  VelWhiteBoard::VectorPtr before_;
  /// The own ink of the entry when the drag began; none when there was none.
  std::optional<OwnInk::Ink> inkBefore_;
};

}  // namespace whiteboard
