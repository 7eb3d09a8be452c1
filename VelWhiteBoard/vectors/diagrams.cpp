#include "VelWhiteBoard/vectors/diagrams.h"

#include <optional>
#include <string>
#include <utility>

#include "VelWhiteBoard/foundation/records/property_table.h"
#include "VelWhiteBoard/foundation/values/safe_values.h"
#include "VelWhiteBoard/vectors/drawing_settings.h"

namespace VelWhiteBoard {

namespace {

/// A diagram's fields without its path; the copy always has an array of points.
void leaveOutOfMutableCopy(VelWbVecDiagram& copy) {
  copy.path.reset();
  if (!copy.points) copy.points.emplace();
}

}  // namespace

const RecordClass& VelWbVecDiagram::ownClass() {
  static const RecordClass own =
      makeRecordClass<VelWbVecDiagram>("VelWbVecDiagram", &VelWbVecSquare::ownClass());
  return own;
}

VelWbVecDiagram::~VelWbVecDiagram() {
  if (points) dismantle(*points);
}

void VelWbVecDiagram::merge(const VelWbBaseVector& update) {
  if (!isSameStroke(update)) return;
  const auto* diagram = recordCast<const VelWbVecDiagram>(update);
  if (diagram == nullptr) return VelWbVecSquare::merge(update);
  // Copied first: nothing may throw once a field has changed.
  std::optional<std::string> newColor;
  if (diagram->color && !diagram->color->empty()) newColor = diagram->color;
  ArrayOwner newPoints;
  if (diagram->points && !diagram->points->empty()) newPoints = ArrayOwner(*diagram->points);
  VelWbVecSquare::merge(update);
  if (newColor) color = std::move(newColor);
  if (diagram->pixel >= 1) pixel = diagram->pixel;
  if (diagram->ps >= 1) ps = diagram->ps;
  if (newPoints.hasArray()) newPoints.swap(points);
  // Unlike for boxes a side of 0 is allowed: a shape may be flat.
  if (diagram->w >= 0.0 && diagram->h >= 0.0) {
    w = diagram->w;
    h = diagram->h;
  }
}

double VelWbVecDiagram::lineWidth() const {
  return lineWidthWith(DrawingSettings::shared().wbSize);
}

double VelWbVecDiagram::lineWidthWith(Size size) const {
  if (pixel < 1 || ps < 1) return 1.0;
  return size.width * static_cast<double>(pixel) / static_cast<double>(ps);
}

std::shared_ptr<Record> VelWbVecDiagram::makeMutableCopy() const {
  auto copy = std::make_shared<VelWbVecDiagram>(*this);
  leaveOutOfMutableCopy(*copy);
  return copy;
}

const RecordClass& VelWbVecCircle::ownClass() {
  static const RecordClass own =
      makeRecordClass<VelWbVecCircle>("VelWbVecCircle", &VelWbVecDiagram::ownClass());
  return own;
}

void VelWbVecCircle::merge(const VelWbBaseVector& update) {
  VelWbVecDiagram::merge(update);
  const auto* circle = recordCast<const VelWbVecCircle>(update);
  if (circle == nullptr || !isSameStroke(update)) return;
  if (circle->radiusX >= 0.0) radiusX = circle->radiusX;
  if (circle->radiusY >= 0.0) radiusY = circle->radiusY;
}

std::shared_ptr<Record> VelWbVecCircle::makeMutableCopy() const {
  auto copy = std::make_shared<VelWbVecCircle>(*this);
  leaveOutOfMutableCopy(*copy);
  return copy;
}

}  // namespace VelWhiteBoard
