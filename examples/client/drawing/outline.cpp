#include "drawing/outline.h"

#include <QPolygonF>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <vector>

#include "drawing/canvas.h"

namespace whiteboard {

namespace {

// How far an edge may be from the arc for which it stands, in view points.
constexpr double kTolerance = 0.04;

/// An edge of the line: its direction, of length 1, and its length.
struct Edge {
  QPointF direction;
  double length = 0;
};

/// The outline of one line, as the sum of a rectangle for each edge and of a sector for each join.
/// All of them turn the same way, so no place of the line has winding number 0.
class Outline {
 public:
  Outline(std::vector<QPointF> corners, double width)
      : corners_(std::move(corners)), radius_(width / 2) {}

  void addTo(QPainterPath& path, bool isClosed) {
    findEdges(isClosed);
    isClosed ? addRing(path) : addBand(path);
  }

 private:
  void findEdges(bool isClosed) {
    const std::size_t count = isClosed ? corners_.size() : corners_.size() - 1;
    for (std::size_t i = 0; i < count; ++i) {
      const QPointF way = corners_[(i + 1) % corners_.size()] - corners_[i];
      const double length = std::hypot(way.x(), way.y());
      edges_.push_back({way / length, length});
    }
  }

  /// From the line to its left side.
  QPointF sideOf(const Edge& edge) const {
    return QPointF(edge.direction.y(), -edge.direction.x()) * radius_;
  }

  void addBand(QPainterPath& path) {
    const QPointF first = sideOf(edges_.front());
    const QPointF last = sideOf(edges_.back());
    left_ << corners_.front() + first;
    right_ << corners_.front() - first;
    for (std::size_t i = 1; i < edges_.size(); ++i) join(corners_[i], edges_[i - 1], edges_[i]);
    left_ << corners_.back() + last;
    right_ << corners_.back() - last;
    addArc(left_, corners_.back(), last, edges_.back().direction * radius_, std::numbers::pi);
    std::reverse(right_.begin(), right_.end());
    left_ += right_;
    addArc(left_, corners_.front(), -first, -edges_.front().direction * radius_, std::numbers::pi);
    path.addPolygon(left_);
    path.closeSubpath();
  }

  void addRing(QPainterPath& path) {
    for (std::size_t i = 0; i < edges_.size(); ++i) {
      join(corners_[i], edges_[(i + edges_.size() - 1) % edges_.size()], edges_[i]);
    }
    std::reverse(right_.begin(), right_.end());
    for (const QPolygonF& side : {left_, right_}) {
      path.addPolygon(side);
      path.closeSubpath();
    }
  }

  /// Both sides of the corner where the two edges meet.
  void join(QPointF corner, const Edge& before, const Edge& after) {
    const QPointF from = sideOf(before);
    const QPointF to = sideOf(after);
    const double cosine = QPointF::dotProduct(before.direction, after.direction);
    const double sine = -QPointF::dotProduct(from, after.direction) / radius_;
    const bool turnsRight = sine >= 0;  // away from the left side
    QPolygonF& outer = turnsRight ? left_ : right_;
    QPolygonF& inner = turnsRight ? right_ : left_;
    const double sign = turnsRight ? 1 : -1;

    outer << corner + from * sign;
    addArc(outer, corner, from * sign, before.direction * radius_,
           std::atan2(std::abs(sine), cosine));
    outer << corner + to * sign;

    inner << corner - from * sign;
    // Both ends must lie within both rectangles, or what is between them is cut off.
    const double overlap = radius_ * std::abs(sine);
    if (cosine < 0 || before.length < overlap || after.length < overlap) inner << corner;
    inner << corner - to * sign;
  }

  /// The corners between the ends of an arc that begins at `start` from the middle and turns to
  /// `towards`, which is at a right angle to it.
  void addArc(QPolygonF& side, QPointF middle, QPointF start, QPointF towards, double angle) const {
    const int edges = edgesOfArc(radius_, angle);
    for (int i = 1; i < edges; ++i) {
      const double turned = angle * i / edges;
      side << middle + start * std::cos(turned) + towards * std::sin(turned);
    }
  }

  std::vector<QPointF> corners_;  // no two neighbours are the same
  double radius_;
  std::vector<Edge> edges_;
  QPolygonF left_;
  QPolygonF right_;
};

/// Compared exactly: QPointF takes near points for equal.
bool isSame(QPointF a, QPointF b) { return a.x() == b.x() && a.y() == b.y(); }

}  // namespace

void addOutline(std::span<const QPointF> corners, double width, bool isClosed, QPainterPath& path) {
  if (corners.empty() || !(width > 0)) return;
  std::vector<QPointF> distinct;
  distinct.reserve(corners.size());
  for (const QPointF corner : corners) {
    if (distinct.empty() || !isSame(distinct.back(), corner)) distinct.push_back(corner);
  }
  while (isClosed && distinct.size() > 1 && isSame(distinct.front(), distinct.back())) {
    distinct.pop_back();
  }
  if (distinct.size() == 1) {
    path.addEllipse(distinct.front(), width / 2, width / 2);
    return;
  }
  Outline(std::move(distinct), width).addTo(path, isClosed);
}

void addOutlineNear(std::span<const QPointF> corners, double width, bool isClosed,
                    const QRectF& area, QPainterPath& path) {
  const double reach = width / 2 + kNear;
  const QRectF wanted = area.adjusted(-reach, -reach, reach, reach);
  const std::size_t edges = isClosed ? corners.size() : corners.size() - 1;
  const auto endOf = [&](std::size_t edge) { return corners[(edge + 1) % corners.size()]; };
  const auto isNear = [&](std::size_t edge) {
    return touches(QRectF(corners[edge], endOf(edge)).normalized(), wanted);
  };
  // A ring is cut open where it is not near.
  std::size_t start = 0;
  while (start < edges && isNear(start)) ++start;
  if (start == edges) return addOutline(corners, width, isClosed, path);
  if (!isClosed) start = 0;
  std::vector<QPointF> run;
  for (std::size_t i = 0; i < edges; ++i) {
    const std::size_t edge = (start + i) % edges;
    if (isNear(edge)) {
      if (run.empty()) run.push_back(corners[edge]);
      run.push_back(endOf(edge));
    } else {
      addOutline(run, width, false, path);
      run.clear();
    }
  }
  addOutline(run, width, false, path);
}

bool isCovered(const QRectF& area, std::span<const QPointF> corners, double width) {
  // All of the circle around a corner is covered.
  const double covered = width / 2 - std::hypot(area.width(), area.height()) / 2 - kNear;
  return covered > 0 && std::any_of(corners.begin(), corners.end(), [&](QPointF corner) {
           const QPointF away = corner - area.center();
           return std::hypot(away.x(), away.y()) < covered;
         });
}

QPen roundPen(const QColor& colour, double width) {
  return {colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

int edgesOfArc(double radius, double angle) {
  if (radius <= kTolerance) return 1;
  return static_cast<int>(std::ceil(angle / (2 * std::acos(1 - kTolerance / radius))));
}

QPolygonF ellipseLine(const QRectF& box) {
  const double radius = std::max(box.width(), box.height()) / 2;
  const int edges = std::max(12, edgesOfArc(radius, 2 * std::numbers::pi));
  QPolygonF line;
  for (int i = 0; i < edges; ++i) {
    const double turned = 2 * std::numbers::pi * i / edges;
    line << box.center() +
                QPointF(std::cos(turned) * box.width() / 2, std::sin(turned) * box.height() / 2);
  }
  return line;
}

}  // namespace whiteboard
