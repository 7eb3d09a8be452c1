#include <cfloat>

#include "VelWhiteBoard/foundation/records/record.h"
#include "VelWhiteBoard/foundation/values/truncation.h"
#include "VelWhiteBoard/tools/tool_manager.h"
#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/strokes.h"

// Two clients on different processors must agree to the last bit. So nothing here is simplified:
// each line is one of the agreed formulas, in the agreed order, rounded to double after each
// operation. x87 arithmetic would round later; build with -msse2 -mfpmath=sse there.
static_assert(FLT_EVAL_METHOD == 0, "the conversions need arithmetic that rounds to double");

namespace VelWhiteBoard {
namespace {

/// The version whose boxes store their far edge.
constexpr std::uint64_t kFarEdgeVersion = 1;

double cutToFiveDecimals(double value) {
  return static_cast<double>(truncatedToSigned(value * 100000.0)) / 100000.0;
}

/// From a fraction of the board counted from its far edge (1 there means the origin of the view) to
/// the distance from the centre.
double centredFromFar(double fraction) { return (1.0 - (fraction + fraction)) * 0.5; }

/// From the distance from the centre to a fraction of the board.
double fractionFromCentre(double centred) { return (centred + -0.5) + 1.0; }

}  // namespace

// ---- Into a vector ----

void VWBToolManager::convertPoint(Point point, VelWbVecPoint& toVector) {
  convertPoint(point, toVector, sharedManager().wbSize());
}

void VWBToolManager::convertPoint(Point point, VelWbVecPoint& toVector, Size wbSize) {
  sharedManager()._convertPoint(point, toVector, wbSize);
}

void VWBToolManager::_convertPoint(Point point, VelWbVecPoint& toVector) const {
  _convertPoint(point, toVector, wbSize());
}

void VWBToolManager::_convertPoint(Point point, VelWbVecPoint& toVector, Size wbSize) const {
  toVector.x = point.x / wbSize.width;
  if (version() != kFarEdgeVersion) {
    toVector.y = point.y / wbSize.height;
    toVector.x = centredFromFar(1.0 - toVector.x);
    toVector.y = centredFromFar(1.0 - toVector.y);
  } else {
    if (const auto* box = recordCast<const VelWbVecSquare>(toVector)) {
      const double boxHeight = _convertVectorToNSRect(*box, wbSize).size.height;
      toVector.y = (wbSize.height - (point.y + boxHeight)) / wbSize.height;
    } else {
      toVector.y = (wbSize.height - point.y) / wbSize.height;
    }
    toVector.x = centredFromFar(1.0 - toVector.x);
    toVector.y = centredFromFar(toVector.y);
  }
  toVector.x = cutToFiveDecimals(toVector.x);
  toVector.y = cutToFiveDecimals(toVector.y);
}

void VWBToolManager::convertSize(Size size, VelWbVecSquare& toVector) {
  convertSize(size, toVector, sharedManager().wbSize());
}

void VWBToolManager::convertSize(Size size, VelWbVecSquare& toVector, Size wbSize) {
  sharedManager()._convertSize(size, toVector, wbSize);
}

void VWBToolManager::_convertSize(Size size, VelWbVecSquare& toVector) const {
  _convertSize(size, toVector, wbSize());
}

void VWBToolManager::_convertSize(Size size, VelWbVecSquare& toVector, Size wbSize) const {
  toVector.w = cutToFiveDecimals(size.width / wbSize.width);
  toVector.h = cutToFiveDecimals(size.height / wbSize.height);
}

void VWBToolManager::convertPoint(Point point, Size size, VelWbVecSquare& toVector) {
  convertPoint(point, size, toVector, sharedManager().wbSize());
}

void VWBToolManager::convertPoint(Point point, Size size, VelWbVecSquare& toVector, Size wbSize) {
  convertSize(size, toVector, wbSize);
  convertPoint(point, toVector, wbSize);
}

Point VWBToolManager::convertPointToScale(Point point) {
  return convertPointToScale(point, sharedManager().wbSize());
}

Point VWBToolManager::convertPointToScale(Point point, Size wbSize) {
  return sharedManager()._convertPointToScale(point, wbSize);
}

Point VWBToolManager::_convertPointToScale(Point point) const {
  return _convertPointToScale(point, wbSize());
}

Point VWBToolManager::_convertPointToScale(Point point, Size wbSize) const {
  const double x = 1.0 - point.x / wbSize.width;
  const double y = version() == kFarEdgeVersion ? (wbSize.height - point.y) / wbSize.height
                                                : 1.0 - point.y / wbSize.height;
  return {cutToFiveDecimals(centredFromFar(x)), cutToFiveDecimals(centredFromFar(y))};
}

// ---- Out of a vector ----

Point VWBToolManager::convertVectorToPoint(const VelWbVecPoint& vector) {
  return convertVectorToPoint(vector, sharedManager().wbSize());
}

Point VWBToolManager::convertVectorToPoint(const VelWbVecPoint& vector, Size wbSize) {
  return sharedManager()._convertVectorToPoint(vector, wbSize);
}

Point VWBToolManager::_convertVectorToPoint(const VelWbVecPoint& vector, Size wbSize) const {
  double y = vector.y;
  if (version() == kFarEdgeVersion) {
    if (const auto* box = recordCast<const VelWbVecSquare>(vector)) y = y - box->h;
  }
  return _convertPointScaleToPoint({vector.x, y}, wbSize);
}

Point VWBToolManager::convertPointScaleToPoint(Point point) {
  return convertPointScaleToPoint(point, sharedManager().wbSize());
}

Point VWBToolManager::convertPointScaleToPoint(Point point, Size wbSize) {
  return sharedManager()._convertPointScaleToPoint(point, wbSize);
}

Point VWBToolManager::_convertPointScaleToPoint(Point point, Size wbSize) const {
  // The two ways to add a half differ in the last bit.
  const double y = version() == kFarEdgeVersion ? point.y + 0.5 : fractionFromCentre(point.y);
  return {wbSize.width * fractionFromCentre(point.x), wbSize.height * y};
}

Rect VWBToolManager::convertVectorToNSRect(const VelWbVecSquare& vector) {
  return convertVectorToNSRect(vector, sharedManager().wbSize());
}

Rect VWBToolManager::convertVectorToNSRect(const VelWbVecSquare& vector, Size wbSize) {
  return sharedManager()._convertVectorToNSRect(vector, wbSize);
}

Rect VWBToolManager::_convertVectorToNSRect(const VelWbVecSquare& vector, Size wbSize) const {
  // Unlike the conversion to a point, this one takes the height off without asking for the class.
  const double y = version() == kFarEdgeVersion ? vector.y - vector.h : vector.y;
  const Point origin = _convertPointScaleToPoint({vector.x, y}, wbSize);
  return {origin, {wbSize.width * vector.w, wbSize.height * vector.h}};
}

}  // namespace VelWhiteBoard
