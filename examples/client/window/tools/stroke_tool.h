// Pen, marker and eraser.
#pragma once

#include <QTimer>
#include <VelWhiteBoard/VelWhiteBoard.h>
#include <cstdint>
#include <memory>
#include <string>

#include "lesson/session.h"
#include "window/board_view.h"
#include "window/tools/tool.h"

namespace whiteboard {

/// Draws a stroke. Each position is shown at once; what has been drawn is sent forty times a
/// second, so that a pen that reports a thousand positions does not make a thousand messages.
class StrokeTool : public Tool {
 public:
  /// `tool` is the library's number: `VelWBToolLine`, `VelWBToolMarkerPen` or `VelWBToolEraser`.
  StrokeTool(Session& session, BoardView& view, std::uint64_t tool);

  void press(QPointF at) override;
  void move(QPointF at) override;
  void release(QPointF at) override;
  void hover(QPointF at) override;
  void cancel() override;
  void paint(QPainter& painter) const override;
  QCursor cursor() const override;

 private:
  /// A piece of one position.
  std::shared_ptr<VelWhiteBoard::VelWbVecLine> pieceAt(QPointF at) const;
  void add(const std::shared_ptr<VelWhiteBoard::VelWbVecLine>& piece);
  void sendWaiting();

  Session& session_;
  BoardView& view_;
  std::uint64_t tool_;
  std::string ID_;                                      // of the stroke that is drawn; empty: none
  std::shared_ptr<VelWhiteBoard::VelWbVecLine> first_;  // piece of that stroke
  std::shared_ptr<VelWhiteBoard::VelWbVecLine> waiting_;  // shown, not sent
  QPointF last_;
  QPointF above_;
  QTimer timer_;
};

}  // namespace whiteboard
