// Lines with a width, as areas that are filled.
//
// A painter's own pens are not used for pixels: for thin lines they choose another way of drawing
// than for wide ones, and clip it to the part that is painted, so that a part does not look as it
// does within the whole. An outline depends on the line alone: what is near a corner or an edge of
// the line depends only on the edges that meet there.
#pragma once

#include <QColor>
#include <QPainterPath>
#include <QPen>
#include <QPointF>
#include <QPolygonF>
#include <QRectF>
#include <span>

namespace whiteboard {

/// Adds the outline of the line through these corners to `path`, with round ends and joins; a line
/// without length is a dot. To be filled with Qt::WindingFill.
/// @param isClosed whether the last corner is connected with the first.
void addOutline(std::span<const QPointF> corners, double width, bool isClosed, QPainterPath& path);

/// The same for what of the line may touch `area`.
void addOutlineNear(std::span<const QPointF> corners, double width, bool isClosed,
                    const QRectF& area, QPainterPath& path);

/// How far from an area, beside half the width, a line still counts as near: more than antialiasing
/// reaches, in view points.
inline constexpr double kNear = 2;

/// Whether the area is certainly covered by a line of this width through the corners.
bool isCovered(const QRectF& area, std::span<const QPointF> corners, double width);

/// The pen for painters that write shapes into files.
QPen roundPen(const QColor& colour, double width);

/// How many straight edges a part of a circle needs to look round.
int edgesOfArc(double radius, double angle);

/// An ellipse as a closed line of straight edges, around the middle of `box`.
QPolygonF ellipseLine(const QRectF& box);

}  // namespace whiteboard
