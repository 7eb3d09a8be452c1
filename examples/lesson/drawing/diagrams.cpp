// Drawn shapes.
#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "drawing/canvas.h"
#include "drawing/vector_drawing.h"

namespace lesson {

namespace vwb = VelWhiteBoard;

namespace {

// The head of an arrow: its length in widths of the line, and half its angle.
constexpr double kArrowHeadLength = 4.5;
constexpr double kArrowHeadAngle = 0.42;

/// The diagram's points in view points; empty unless there are at least `count` of them.
std::vector<vwb::Point> pointsOf(const vwb::VelWbVecDiagram& diagram, std::size_t count,
                                 vwb::Size size) {
  std::vector<vwb::Point> points;
  if (!diagram.points) return points;
  for (const vwb::Value& each : *diagram.points) {
    if (!each.is_array() || each.size() < 2 || !each[0].is_number() || !each[1].is_number()) {
      continue;
    }
    const auto seen = drawablePoint(vwb::VWBToolManager::convertPointScaleToPoint(
        {each[0].get<double>(), each[1].get<double>()}, size));
    if (seen) points.push_back(*seen);
  }
  if (points.size() < count) points.clear();
  return points;
}

void addPolygon(cairo_t* context, const std::vector<vwb::Point>& corners) {
  for (const vwb::Point& corner : corners) cairo_line_to(context, corner.x, corner.y);
  cairo_close_path(context);
}

/// Ends of a line or an arrow.
std::vector<vwb::Point> endsOf(const vwb::VelWbVecDiagram& diagram, const vwb::Rect& box,
                               vwb::Size size) {
  const std::vector<vwb::Point> points = pointsOf(diagram, 2, size);
  if (!points.empty()) return {points.front(), points.back()};
  const auto& [origin, extent] = box;
  return {origin, {origin.x + extent.width, origin.y + extent.height}};
}

void drawArrow(cairo_t* context, vwb::Point from, vwb::Point to) {
  const double width = cairo_get_line_width(context);
  const double angle = std::atan2(to.y - from.y, to.x - from.x);
  const double length = kArrowHeadLength * width;
  // The line ends inside the head, or its end would stand out beside the tip.
  cairo_move_to(context, from.x, from.y);
  cairo_line_to(context, to.x - std::cos(angle) * length * 0.8,
                to.y - std::sin(angle) * length * 0.8);
  cairo_stroke(context);
  cairo_move_to(context, to.x, to.y);
  for (const double side : {angle - kArrowHeadAngle, angle + kArrowHeadAngle}) {
    cairo_line_to(context, to.x - std::cos(side) * length, to.y - std::sin(side) * length);
  }
  cairo_close_path(context);
  cairo_fill(context);
}

void addTriangle(cairo_t* context, const vwb::VelWbVecDiagram& diagram, const vwb::Rect& box,
                 vwb::Size size) {
  const std::vector<vwb::Point> corners = pointsOf(diagram, 3, size);
  if (!corners.empty()) return addPolygon(context, corners);
  const auto& [origin, extent] = box;
  addPolygon(context, {{origin.x + extent.width / 2, origin.y},
                       {origin.x + extent.width, origin.y + extent.height},
                       {origin.x, origin.y + extent.height}});
}

void addRhombus(cairo_t* context, const vwb::Rect& box) {
  const auto& [origin, extent] = box;
  const double middleX = origin.x + extent.width / 2;
  const double middleY = origin.y + extent.height / 2;
  addPolygon(context, {{middleX, origin.y},
                       {origin.x + extent.width, middleY},
                       {middleX, origin.y + extent.height},
                       {origin.x, middleY}});
}

void addEllipse(cairo_t* context, const vwb::VelWbVecDiagram& diagram, const vwb::Rect& box,
                vwb::Size size) {
  double radiusX = box.size.width / 2;
  double radiusY = box.size.height / 2;
  const auto* const circle = vwb::recordCast<const vwb::VelWbVecCircle>(&diagram);
  if (circle != nullptr && circle->radiusX > 0 && circle->radiusY > 0) {
    radiusX = std::min(circle->radiusX * size.width, 1e6);
    radiusY = std::min(circle->radiusY * size.height, 1e6);
  }
  if (!(radiusX > 0 && radiusY > 0)) return;  // nothing can be scaled by 0
  const SavedState state(context);
  cairo_translate(context, box.origin.x + box.size.width / 2, box.origin.y + box.size.height / 2);
  cairo_scale(context, radiusX, radiusY);
  cairo_new_sub_path(context);
  cairo_arc(context, 0, 0, 1, 0, 2 * std::numbers::pi);
  cairo_close_path(context);
}

}  // namespace

void drawDiagram(cairo_t* context, const vwb::VelWbVecDiagram& diagram, vwb::Size size) {
  const auto box = drawableRect(vwb::VWBToolManager::convertVectorToNSRect(diagram, size));
  const vwb::Rect place = box.value_or(vwb::Rect{});
  setColour(context, colourOf(diagram.color).value_or(kInk));
  cairo_set_line_width(context, std::min(diagram.lineWidthWith(size), size.width));
  cairo_set_line_cap(context, CAIRO_LINE_CAP_ROUND);
  cairo_set_line_join(context, CAIRO_LINE_JOIN_ROUND);

  const std::string kind = diagram.kind.value_or("");
  if (kind == vwb::VelWBVectorStrKindLine || kind == vwb::VelWBVectorStrKindArrowLine) {
    const std::vector<vwb::Point> ends = endsOf(diagram, place, size);
    if (ends.front() == ends.back()) return;
    if (kind == vwb::VelWBVectorStrKindArrowLine) return drawArrow(context, ends[0], ends[1]);
    cairo_move_to(context, ends[0].x, ends[0].y);
    cairo_line_to(context, ends[1].x, ends[1].y);
  } else if (kind == vwb::VelWBVectorStrKindTriangle) {
    addTriangle(context, diagram, place, size);
  } else if (!box) {
    return;
  } else if (kind == vwb::VelWBVectorStrKindRhombus) {
    addRhombus(context, place);
  } else if (kind == vwb::VelWBVectorStrKindRectangle) {
    addRectangle(context, place);
  } else {
    addEllipse(context, diagram, place, size);
  }
  cairo_stroke(context);
}

}  // namespace lesson
