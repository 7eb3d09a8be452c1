#include "lesson/stroke_joining.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace whiteboard {

using namespace VelWhiteBoard;

namespace {

/// The positions of a joined piece. Keeps it far below the longest message.
constexpr std::size_t kPositionsLimit = 2000;

bool isStrokeType(const VelWbBaseVector& vector) {
  return VelWbVectorDefines::isLine(vector.type) || VelWbVectorDefines::isMarkerPen(vector.type) ||
         VelWbVectorDefines::isEraser(vector.type);
}

/// The times of positions, each of which must be later than those before.
class RisingTimes {
 public:
  /// Takes the positions of a piece; tells whether all are as they must be.
  bool take(const VelWbVecLine& piece) {
    if (!piece.path) return take(piece.x, piece.y, piece.ts);
    if (piece.path->empty()) return false;
    return std::all_of(piece.path->begin(), piece.path->end(), [this](Path::Position position) {
      return position.size() == 3 && take(position[0], position[1], position[2]);
    });
  }
  std::size_t count() const { return count_; }

 private:
  bool take(double x, double y, double time) {
    // An infinite or missing number would not come back from the text of the message.
    if (!std::isfinite(x) || !std::isfinite(y) || !std::isfinite(time)) return false;
    if (!(time > latest_)) return false;
    latest_ = time;
    ++count_;
    return true;
  }

  double latest_ = 0;
  std::size_t count_ = 0;
};

}  // namespace

bool joinPieces(VelWbBaseVector& waiting, const VelWbBaseVector& next) {
  auto* stroke = recordCast<VelWbVecLine>(&waiting);
  const auto* piece = recordCast<const VelWbVecLine>(&next);
  if (stroke == nullptr || piece == nullptr || stroke == piece) return false;
  if (!isStrokeType(*stroke) || !stroke->isSameStroke(*piece)) return false;
  if (stroke->offset || piece->offset || stroke->end) return false;
  RisingTimes times;
  if (!times.take(*stroke) || !times.take(*piece)) return false;
  if (times.count() > kPositionsLimit) return false;
  stroke->append(*piece);
  return true;
}

}  // namespace whiteboard
