// Strokes of pen, marker and eraser.
#include <algorithm>
#include <optional>
#include <vector>

#include "drawing/canvas.h"
#include "drawing/vector_drawing.h"

namespace lesson {

namespace vwb = VelWhiteBoard;

namespace {

/// How far an `offset` moves the stroke, in normalised coordinates.
vwb::Point displacementOf(const vwb::VelWbVecLine& stroke) {
  if (!stroke.offset || stroke.offset->size() != 2) return {};
  const vwb::Value& x = (*stroke.offset)[0];
  const vwb::Value& y = (*stroke.offset)[1];
  if (!x.is_number() || !y.is_number()) return {};
  return {x.get<double>(), y.get<double>()};
}

/// The stroke's positions in view points; its own position when it has no path.
std::vector<vwb::Point> pointsOf(const vwb::VelWbVecLine& stroke, vwb::Size size) {
  std::vector<vwb::Point> points;
  const vwb::Point moved = displacementOf(stroke);
  const auto add = [&](double x, double y) {
    const vwb::Point point{x + moved.x, y + moved.y};
    const auto seen = drawablePoint(vwb::VWBToolManager::convertPointScaleToPoint(point, size));
    if (seen) points.push_back(*seen);
  };
  if (!stroke.path) {
    add(stroke.x, stroke.y);
    return points;
  }
  for (const vwb::Path::Position position : *stroke.path) {
    if (position.size() >= 2) add(position[0], position[1]);
  }
  return points;
}

vwb::Point middleOf(vwb::Point a, vwb::Point b) { return {(a.x + b.x) / 2, (a.y + b.y) / 2}; }

/// A curve with one control point, as the curve with two that cairo knows.
void addQuadraticCurve(cairo_t* context, vwb::Point from, vwb::Point control, vwb::Point to) {
  const auto towardsControl = [&](vwb::Point end) {
    return vwb::Point{end.x + (control.x - end.x) * 2 / 3, end.y + (control.y - end.y) * 2 / 3};
  };
  const vwb::Point first = towardsControl(from);
  const vwb::Point second = towardsControl(to);
  cairo_curve_to(context, first.x, first.y, second.x, second.y, to.x, to.y);
}

/// A curve from middle to middle of the segments, drawn towards the position between them: smooth,
/// and never far from where the pen was.
void addSmoothPath(cairo_t* context, const std::vector<vwb::Point>& points) {
  cairo_move_to(context, points.front().x, points.front().y);
  vwb::Point at = points.front();
  for (std::size_t i = 1; i + 1 < points.size(); ++i) {
    const vwb::Point middle = middleOf(points[i], points[i + 1]);
    addQuadraticCurve(context, at, points[i], middle);
    at = middle;
  }
  cairo_line_to(context, points.back().x, points.back().y);
}

}  // namespace

void drawStroke(cairo_t* context, const vwb::VelWbVecLine& stroke, vwb::Size size) {
  const std::vector<vwb::Point> points = pointsOf(stroke, size);
  if (points.empty()) return;
  cairo_set_line_cap(context, CAIRO_LINE_CAP_ROUND);
  cairo_set_line_join(context, CAIRO_LINE_JOIN_ROUND);
  cairo_set_line_width(context, std::min(stroke.lineWidthWith(size), size.width));
  addSmoothPath(context, points);
  cairo_stroke(context);
}

}  // namespace lesson
