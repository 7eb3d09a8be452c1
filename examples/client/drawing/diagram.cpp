#include "drawing/diagram.h"

#include <algorithm>
#include <cmath>

#include "drawing/canvas.h"
#include "drawing/outline.h"
#include "drawing/squares.h"

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

// The head of an arrow: its length in widths of the line, and half its angle. The line ends inside
// the head, or its end would stand out beside the tip.
constexpr double kHeadLength = 4.5;
constexpr double kHeadAngle = 0.42;
constexpr double kLineIntoHead = 0.8;

// More corners than a shape needs. Of a line, the last point counts in any case.
constexpr std::size_t kMostPoints = 1000;

// An outline that is not wider, in view points, is drawn in one piece.
constexpr double kThin = 24;

QPointF turned(double angle, double length) {
  return {std::cos(angle) * length, std::sin(angle) * length};
}

}  // namespace

void Diagram::update(std::size_t firstNew) {
  static_cast<void>(firstNew);
  points_.clear();
  if (!diagram_.points) return;
  for (const vwb::Value& each : *diagram_.points) {
    if (!each.is_array() || each.size() < 2 || !each[0].is_number() || !each[1].is_number()) {
      continue;
    }
    const auto point = drawableFraction({each[0].get<double>(), each[1].get<double>()});
    if (!point) continue;
    if (points_.size() == kMostPoints) points_.pop_back();
    points_.push_back(*point);
  }
}

double Diagram::widthOn(vwb::Size board) const {
  return std::min(diagram_.lineWidthWith(board), board.width);
}

Diagram::Form Diagram::lineForm(const QRectF& box, vwb::Size board) const {
  const bool hasPoints = points_.size() >= 2;
  const QPointF from = hasPoints ? viewPointOf(points_.front(), board) : box.topLeft();
  const QPointF to = hasPoints ? viewPointOf(points_.back(), board) : box.bottomRight();
  Form form;
  if (from.x() == to.x() && from.y() == to.y()) return form;
  form.line << from << to;
  if (diagram_.kind != vwb::VelWBVectorStrKindArrowLine) return form;
  const double length = kHeadLength * widthOn(board);
  const double angle = std::atan2(to.y() - from.y(), to.x() - from.x());
  form.line.back() = to - turned(angle, length * kLineIntoHead);
  form.head << to << to - turned(angle - kHeadAngle, length)
            << to - turned(angle + kHeadAngle, length);
  return form;
}

Diagram::Form Diagram::ellipseForm(const QRectF& box, vwb::Size board) const {
  double radiusX = box.width() / 2;
  double radiusY = box.height() / 2;
  const auto* const circle = vwb::recordCast<const vwb::VelWbVecCircle>(&diagram_);
  if (circle != nullptr && circle->radiusX > 0 && circle->radiusY > 0) {
    radiusX = std::min(circle->radiusX, 3.0) * board.width;
    radiusY = std::min(circle->radiusY, 3.0) * board.height;
  }
  Form form;
  if (!(radiusX > 0 && radiusY > 0)) return form;
  const QPointF radii(radiusX, radiusY);
  form.ellipse = QRectF(box.center() - radii, box.center() + radii);
  form.line = ellipseLine(form.ellipse);
  form.isClosed = true;
  return form;
}

Diagram::Form Diagram::formOn(vwb::Size board) const {
  const auto place = boxOf(diagram_, board);
  const QRectF box = place.value_or(QRectF());
  const std::string kind = diagram_.kind.value_or("");
  if (kind == vwb::VelWBVectorStrKindLine || kind == vwb::VelWBVectorStrKindArrowLine) {
    if (!place && points_.size() < 2) return {};
    return lineForm(box, board);
  }
  Form form;
  form.isClosed = true;
  const QPointF middle = box.center();
  if (kind == vwb::VelWBVectorStrKindTriangle) {
    if (points_.size() >= 3) {
      for (const vwb::Point& point : points_) form.line << viewPointOf(point, board);
    } else if (place) {
      form.line << QPointF(middle.x(), box.top()) << box.bottomRight() << box.bottomLeft();
    }
  } else if (!place) {
    return {};
  } else if (kind == vwb::VelWBVectorStrKindRhombus) {
    form.line << QPointF(middle.x(), box.top()) << QPointF(box.right(), middle.y())
              << QPointF(middle.x(), box.bottom()) << QPointF(box.left(), middle.y());
  } else if (kind == vwb::VelWBVectorStrKindRectangle) {
    form.line << box.topLeft() << box.topRight() << box.bottomRight() << box.bottomLeft();
  } else {
    return ellipseForm(box, board);
  }
  return form;
}

QRectF Diagram::inked(vwb::Size board) const {
  const Form form = formOn(board);
  if (form.line.isEmpty()) return {};
  const double half = widthOn(board) / 2;
  const QRectF area = form.line.boundingRect().adjusted(-half, -half, half, half);
  return form.head.isEmpty() ? area : area.united(form.head.boundingRect());
}

QPainterPath Diagram::centreLineOf(const Form& form) {
  QPainterPath path;
  if (!form.ellipse.isEmpty()) {
    path.addEllipse(form.ellipse);
  } else {
    path.addPolygon(form.line);
    if (form.isClosed) path.closeSubpath();
  }
  return path;
}

void Diagram::paint(QPainter& painter, vwb::Size board, const QRectF& part) const {
  const Form form = formOn(board);
  if (form.line.isEmpty()) return;
  const double width = widthOn(board);
  const QColor colour = colourOf(diagram_.color).value_or(ink());
  QPainterPath head;
  head.setFillRule(Qt::WindingFill);
  if (!form.head.isEmpty()) {
    head.addPolygon(form.head);
    head.closeSubpath();
  }
  if (isVector(painter)) {
    painter.strokePath(centreLineOf(form), roundPen(colour, width));
    painter.fillPath(head, colour);
  } else if (width <= kThin) {
    addOutline(form.line, width, form.isClosed, head);
    painter.fillPath(head, colour);
  } else {
    paintInSquares(painter, part.intersected(seenOf(inked(board), board)),
                   [&](QPainter& into, const QRectF& area) {
                     const bool isFull = isCovered(area, form.line, width);
                     QPainterPath path = head;
                     if (!isFull) addOutlineNear(form.line, width, form.isClosed, area, path);
                     isFull ? into.fillRect(area.adjusted(-1, -1, 1, 1), colour)
                            : into.fillPath(path, colour);
                     return true;
                   });
  }
}

bool Diagram::hits(QPointF at, double tolerance, vwb::Size board) const {
  Form form = formOn(board);
  if (form.line.isEmpty()) return false;
  if (form.isClosed) form.line << form.line.front();
  return distanceTo(form.line, at) <= widthOn(board) / 2 + tolerance ||
         distanceTo(form.head, at) <= tolerance || form.head.containsPoint(at, Qt::WindingFill);
}

}  // namespace whiteboard
