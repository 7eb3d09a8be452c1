// Writing texts.
#pragma once

#include <QPlainTextEdit>
#include <QPointer>
#include <VelWhiteBoard/VelWhiteBoard.h>
#include <memory>
#include <string>

#include "lesson/session.h"
#include "window/board_view.h"
#include "window/tools/tool.h"

namespace whiteboard {

/// Opens an editor where the hand goes down, on a text that is there or for a new one. The text is
/// taken when the hand goes down elsewhere, with Escape, or with Control and Enter.
class TextTool : public Tool {
 public:
  TextTool(Session& session, BoardView& view);
  ~TextTool() override { delete editor_; }

  void press(QPointF at) override;
  void move(QPointF) override {}
  void release(QPointF) override;
  void cancel() override { finish(); }
  void resized() override;
  QCursor cursor() const override { return Qt::IBeamCursor; }

  /// Edits a text of the page.
  void edit(const std::string& ID);
  /// Takes the text that is being written, if there is one.
  void finish();
  /// The open editor; null when there is none.
  QPlainTextEdit* editor() const { return editor_; }

 private:
  class Editor;

  void open(const QRectF& place);
  /// Gives the editor its letters and its place on the board as it is now.
  void putInPlace();

  Session& session_;
  BoardView& view_;
  QPointer<QPlainTextEdit> editor_;
  /// The text that is written, as it was before.
  std::shared_ptr<VelWhiteBoard::VelWbVecText> text_;
  bool isNew_ = false;
  bool opensOnRelease_ = false;
  QPointF at_;
  /// Of the editor, in fractions of the board.
  QRectF placeOnBoard_;
};

}  // namespace whiteboard
