#include "drawing/canvas.h"

#include <QPaintEngine>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string_view>
#include <system_error>

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

// In boards from the middle. The rasteriser counts to 32767 pixels; with this it is not reached on
// a board of 8192 pixels.
constexpr double kFarthest = 3;

constexpr double kLargestBoard = 16384;
constexpr double kBaseWidth = 400;

// What antialiasing and the setting of letters may touch beside a shape, in view points.
constexpr double kBeside = 1.5;

double nearer(double viewPoint, double side) {
  return std::clamp(viewPoint, -kFarthest * side, (kFarthest + 1) * side);
}

double distanceToSegment(QPointF from, QPointF to, QPointF point) {
  const QPointF along = to - from;
  const double square = QPointF::dotProduct(along, along);
  const double part =
      square > 0 ? std::clamp(QPointF::dotProduct(point - from, along) / square, 0.0, 1.0) : 0.0;
  const QPointF off = point - (from + along * part);
  return std::hypot(off.x(), off.y());
}

}  // namespace

QColor ink() { return {0x30, 0x30, 0x33}; }

std::optional<QColor> colourOf(const std::optional<std::string>& text) {
  if (!text) return std::nullopt;
  std::string_view digits = *text;
  if (digits.starts_with('#')) digits.remove_prefix(1);
  if (digits.size() != 6 && digits.size() != 8) return std::nullopt;
  std::uint32_t value = 0;
  const char* const end = digits.data() + digits.size();
  const auto [rest, error] = std::from_chars(digits.data(), end, value, 16);
  if (error != std::errc() || rest != end) return std::nullopt;
  if (digits.size() == 6) value = value << 8 | 0xFF;
  const auto channel = [value](unsigned shift) { return static_cast<int>(value >> shift & 0xFF); };
  return QColor(channel(24), channel(16), channel(8), channel(0));
}

bool isDrawable(vwb::Size board) {
  const auto isSide = [](double side) { return side >= 1 && side <= kLargestBoard; };
  return isSide(board.width) && isSide(board.height);
}

QRectF areaOf(vwb::Size board) { return {0, 0, board.width, board.height}; }

double onBoard(double points, vwb::Size board) { return points * board.width / kBaseWidth; }

std::optional<vwb::Point> drawableFraction(vwb::Point fraction) {
  if (!std::isfinite(fraction.x) || !std::isfinite(fraction.y)) return std::nullopt;
  return vwb::Point{std::clamp(fraction.x, -kFarthest, kFarthest),
                    std::clamp(fraction.y, -kFarthest, kFarthest)};
}

QPointF viewPointOf(vwb::Point fraction, vwb::Size board) {
  const vwb::Point seen = vwb::VWBToolManager::convertPointScaleToPoint(fraction, board);
  return {seen.x, seen.y};
}

std::optional<QRectF> boxOf(const vwb::VelWbVecSquare& box, vwb::Size board) {
  const auto [origin, size] = vwb::VWBToolManager::convertVectorToNSRect(box, board);
  const double right = origin.x + size.width;
  const double bottom = origin.y + size.height;
  for (const double number : {origin.x, origin.y, right, bottom}) {
    if (!std::isfinite(number)) return std::nullopt;
  }
  const QPointF corner(nearer(origin.x, board.width), nearer(origin.y, board.height));
  const QPointF opposite(nearer(right, board.width), nearer(bottom, board.height));
  // Compared exactly: QPointF takes near points for equal.
  if (corner.x() == opposite.x() && corner.y() == opposite.y()) return std::nullopt;
  return QRectF(corner, opposite);
}

QRectF seenOf(const QRectF& inked, vwb::Size board) {
  if (!isDrawable(board)) return {};
  const QRectF seen = inked.normalized().adjusted(-kBeside, -kBeside, kBeside, kBeside);
  return seen.intersects(areaOf(board)) ? seen.intersected(areaOf(board)) : QRectF();
}

bool touches(const QRectF& a, const QRectF& b) {
  return a.left() <= b.right() && b.left() <= a.right() && a.top() <= b.bottom() &&
         b.top() <= a.bottom();
}

double distanceTo(const QPolygonF& line, QPointF point) {
  if (line.isEmpty()) return std::numeric_limits<double>::infinity();
  double distance = distanceToSegment(line.front(), line.front(), point);
  for (qsizetype i = 1; i < line.size(); ++i) {
    distance = std::min(distance, distanceToSegment(line[i - 1], line[i], point));
  }
  return distance;
}

bool isVector(const QPainter& painter) {
  const QPaintEngine* const engine = painter.paintEngine();
  if (engine == nullptr) return false;
  const QPaintEngine::Type type = engine->type();
  return type == QPaintEngine::SVG || type == QPaintEngine::Pdf || type == QPaintEngine::Picture;
}

}  // namespace whiteboard
