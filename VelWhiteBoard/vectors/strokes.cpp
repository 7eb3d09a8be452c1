#include "VelWhiteBoard/vectors/strokes.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "VelWhiteBoard/foundation/records/property_table.h"
#include "VelWhiteBoard/foundation/values/safe_values.h"
#include "VelWhiteBoard/vectors/drawing_settings.h"
#include "VelWhiteBoard/vectors/vector_defines.h"

namespace VelWhiteBoard {

namespace {

/// Where a position keeps its time.
constexpr std::size_t kTimeElement = 2;
/// The threshold of a path whose newest position has no time; below every time that may raise it.
constexpr double kNoTime = -1.0;

bool hasTime(Path::Position position) { return position.size() > kTimeElement; }

/// Adds the positions of `update` that are newer than `threshold` to `path`. `path` must not be the
/// update's own path.
void addNewer(Path& path, double threshold, const VelWbVecPoint& update) {
  if (!update.path) {
    if (update.ts > threshold) path.push_back({update.x, update.y, update.ts});
    return;
  }
  for (const Path::Position position : *update.path) {
    if (position.size() < 2) continue;
    if (!hasTime(position)) {
      if (threshold < 0.0) path.push_back(position);
      continue;
    }
    const double time = position[kTimeElement];
    if (!(time > threshold)) continue;
    path.push_back(position);
    // A time of 0 or less does not raise the threshold; positions without a time may still follow.
    if (time > 0.0) threshold = time;
  }
}

/// Folds the positions of `update` into the path of `stroke`. When it throws, nothing has changed.
void foldPositions(VelWbVecPoint& stroke, const VelWbVecPoint& update) {
  if (!stroke.path) {
    Path seeded;
    seeded.push_back({stroke.x, stroke.y, stroke.ts});
    addNewer(seeded, stroke.ts, update);
    stroke.path.emplace(std::move(seeded));
    return;
  }
  const bool timed = !stroke.path->empty() && hasTime(stroke.path->back());
  const double threshold = timed ? stroke.path->back()[kTimeElement] : kNoTime;
  if (!update.path || (update.path->size() == 1 && &stroke != &update)) {
    // One position, as nearly all pieces have: adding it either works or changes nothing.
    addNewer(*stroke.path, threshold, update);
    return;
  }
  // They are added to a copy of the path: it is cheap, and the update may be the stroke itself.
  Path grown = *stroke.path;
  addNewer(grown, threshold, update);
  *stroke.path = std::move(grown);
}

/// Takes over what `update` says about the width.
void takeWidths(VelWbVecLine& stroke, const VelWbVecLine& update) noexcept {
  if (update.pixel >= 1) stroke.pixel = update.pixel;
  if (update.ps >= 1) stroke.ps = update.ps;
  if (update.widthIndex >= 0) stroke.widthIndex = update.widthIndex;
}

}  // namespace

const RecordClass& VelWbVecPoint::ownClass() {
  static const RecordClass own =
      makeRecordClass<VelWbVecPoint>("VelWbVecPoint", &VelWbBaseVector::ownClass());
  return own;
}

void VelWbVecPoint::append(const VelWbBaseVector& update) { appendPositions(update); }

bool VelWbVecPoint::appendPositions(const VelWbBaseVector& update) {
  if (!isSameStroke(update)) return false;
  const auto* positioned = recordCast<const VelWbVecPoint>(update);
  if (positioned == nullptr) return true;

  const auto* line = recordCast<const VelWbVecLine>(update);
  const bool moves = line != nullptr && line->offset.has_value();
  if (!moves) foldPositions(*this, *positioned);

  ts = positioned->ts;
  end = positioned->end;
  x = positioned->x;
  y = positioned->y;
  return true;
}

double VelWbVecPoint::startTimeStamp() const {
  if (!path || path->empty() || !hasTime((*path)[0])) return ts;
  return (*path)[0][kTimeElement];
}

std::shared_ptr<Record> VelWbVecPoint::makeMutableCopy() const {
  return std::make_shared<VelWbVecPoint>(*this);
}

const RecordClass& VelWbVecLine::ownClass() {
  static const RecordClass own =
      makeRecordClass<VelWbVecLine>("VelWbVecLine", &VelWbVecPoint::ownClass());
  return own;
}

VelWbVecLine::~VelWbVecLine() {
  if (offset) dismantle(*offset);
}

void VelWbVecLine::append(const VelWbBaseVector& update) {
  const auto* line = recordCast<const VelWbVecLine>(update);
  if (line != nullptr && line->offset) {
    if (!isSameStroke(update)) return;
    ArrayOwner newOffset(*line->offset);
    // A move adds no positions: from here on nothing needs memory.
    appendPositions(update);
    takeWidths(*this, *line);
    newOffset.swap(offset);
    return;
  }
  if (!appendPositions(update) || line == nullptr) return;
  takeWidths(*this, *line);
  if (offset) ArrayOwner().swap(offset);
}

double VelWbVecLine::lineWidth() const { return lineWidthWith(DrawingSettings::shared().wbSize); }

double VelWbVecLine::lineWidthWith(Size size) const {
  if (pixel >= 1 && ps >= 1) {
    return size.width * static_cast<double>(pixel) / static_cast<double>(ps);
  }
  const DrawingSettings& settings = DrawingSettings::shared();
  const double scale = size.width / settings.wbBaseSize.width;

  const std::vector<double>* table = nullptr;
  if (VelWbVectorDefines::isLine(type)) table = &settings.lineWidths();
  if (VelWbVectorDefines::isMarkerPen(type)) table = &settings.markerWidths();
  if (VelWbVectorDefines::isEraser(type)) table = &settings.eraserWidths();
  if (table == nullptr) {
    constexpr double kWidthOfOtherTypes = 2.0;
    return kWidthOfOtherTypes * scale;
  }
  const auto index = static_cast<std::size_t>(std::max<std::int64_t>(widthIndex, 0));
  const auto width = static_cast<float>(table->at(index < table->size() ? index : 0));
  return static_cast<double>(width) * scale;
}

std::shared_ptr<Record> VelWbVecLine::makeMutableCopy() const {
  return std::make_shared<VelWbVecLine>(*this);
}

}  // namespace VelWhiteBoard
