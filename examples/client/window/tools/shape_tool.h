// Shapes that are drawn by dragging.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <memory>
#include <string>

#include "lesson/session.h"
#include "window/board_view.h"
#include "window/tools/tool.h"

namespace whiteboard {

/// Draws one of the library's seven kinds of diagrams from corner to corner, or from end to end.
class ShapeTool : public Tool {
 public:
  /// `kind` is one of the library's names, such as "rectangle".
  ShapeTool(Session& session, BoardView& view, std::string kind);

  void press(QPointF at) override;
  void move(QPointF at) override;
  void release(QPointF at) override;
  void cancel() override;

 private:
  /// The shape from the first point to the second.
  std::shared_ptr<VelWhiteBoard::VelWbVecDiagram> shapeTo(QPointF at) const;

  Session& session_;
  BoardView& view_;
  std::string kind_;
  std::string ID_;  // of the shape that is drawn; empty: none
  QPointF from_;
};

/// Gives a diagram its place, from one point to another, in view points of a board: its box and,
/// for lines and ellipses, its ends or radii.
void placeDiagram(VelWhiteBoard::VelWbVecDiagram& diagram, QPointF from, QPointF to,
                  VelWhiteBoard::Size board);

}  // namespace whiteboard
