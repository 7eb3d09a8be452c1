#include "drawing/canvas.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <system_error>

namespace lesson {

namespace vwb = VelWhiteBoard;

namespace {

// Cairo counts in 24.8 fixed point, which ends at 8 million.
constexpr double kFarthest = 1e6;

constexpr double kBaseWidth = 400;

}  // namespace

std::optional<Colour> colourOf(const std::optional<std::string>& text) {
  if (!text) return std::nullopt;
  std::string_view digits = *text;
  if (digits.starts_with('#')) digits.remove_prefix(1);
  if (digits.size() != 6 && digits.size() != 8) return std::nullopt;
  std::uint32_t value = 0;
  const char* const end = digits.data() + digits.size();
  const auto [rest, error] = std::from_chars(digits.data(), end, value, 16);
  if (error != std::errc() || rest != end) return std::nullopt;
  if (digits.size() == 6) value = value << 8 | 0xFF;
  const auto channel = [value](unsigned shift) { return (value >> shift & 0xFF) / 255.0; };
  return Colour{channel(24), channel(16), channel(8), channel(0)};
}

void setColour(cairo_t* context, const Colour& colour) {
  cairo_set_source_rgba(context, colour.red, colour.green, colour.blue, colour.alpha);
}

std::optional<vwb::Point> drawablePoint(vwb::Point point) {
  if (!std::isfinite(point.x) || !std::isfinite(point.y)) return std::nullopt;
  return vwb::Point{std::clamp(point.x, -kFarthest, kFarthest),
                    std::clamp(point.y, -kFarthest, kFarthest)};
}

std::optional<vwb::Rect> drawableRect(vwb::Rect rect) {
  const auto corner = drawablePoint(rect.origin);
  const auto opposite =
      drawablePoint({rect.origin.x + rect.size.width, rect.origin.y + rect.size.height});
  if (!corner || !opposite || *corner == *opposite) return std::nullopt;
  return vwb::Rect{*corner, {opposite->x - corner->x, opposite->y - corner->y}};
}

double onBoard(double points, vwb::Size size) { return points * size.width / kBaseWidth; }

void addRectangle(cairo_t* context, const vwb::Rect& rect) {
  cairo_rectangle(context, rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
}

}  // namespace lesson
