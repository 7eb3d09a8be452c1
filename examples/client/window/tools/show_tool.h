// Tools that show others where to look.
#pragma once

#include <QElapsedTimer>
#include <cstdint>
#include <string>

#include "lesson/session.h"
#include "window/board_view.h"
#include "window/tools/tool.h"

namespace whiteboard {

/// Shows the others a pointer, or a magnifier, where the hand is. Neither stays on the page.
class ShowTool : public Tool {
 public:
  /// `type` is the library's code: `VelWBVectorTypeCursor` or `VelWBVectorTypeMagnifier`.
  ShowTool(Session& session, BoardView& view, std::uint64_t type);

  void press(QPointF at) override { show(at, true); }
  void move(QPointF at) override { show(at, false); }
  void release(QPointF at) override { show(at, true); }
  void hover(QPointF at) override { show(at, false); }
  void cancel() override;

 private:
  void show(QPointF at, bool atOnce);

  Session& session_;
  BoardView& view_;
  std::uint64_t type_;
  std::string ID_;
  QElapsedTimer sinceLast_;
};

}  // namespace whiteboard
