#include "window/tools/show_tool.h"

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <utility>

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

/// Twenty times a second: smooth enough for those who look, and little to send.
constexpr qint64 kIntervalMilliseconds = 50;
/// The magnifier's size, as a fraction of the board's width.
constexpr double kLensWidth = 0.25;
constexpr double kLensHeight = 0.15;
/// A pointer has no size; this is what other clients may read.
constexpr double kPointerSize = 0.02;

}  // namespace

ShowTool::ShowTool(Session& session, BoardView& view, std::uint64_t type)
    : session_(session), view_(view), type_(type) {}

void ShowTool::show(QPointF at, bool atOnce) {
  if (!atOnce && sinceLast_.isValid() && sinceLast_.elapsed() < kIntervalMilliseconds) return;
  sinceLast_.start();
  if (ID_.empty()) ID_ = session_.newIdentifier();
  const auto box = vwb::recordPointerCast<vwb::VelWbVecSquare>(
      vwb::VWBToolManager::genVectorWithType(type_, ID_));
  if (!box) return;
  const vwb::Size board = view_.boardSize();
  const bool isLens = type_ == vwb::VelWBVectorTypeMagnifier;
  const vwb::Size size = isLens ? vwb::Size{kLensWidth * board.width, kLensHeight * board.width}
                                : vwb::Size{kPointerSize * board.width, kPointerSize * board.width};
  const QPointF corner = isLens ? at - QPointF(size.width / 2, size.height / 2) : at;
  vwb::VWBToolManager::convertPoint({corner.x(), corner.y()}, size, *box, board);
  session_.point(box);
}

void ShowTool::cancel() {
  if (!ID_.empty()) session_.stopPointing(std::exchange(ID_, {}));
}

}  // namespace whiteboard
