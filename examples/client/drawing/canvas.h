// Limits, colours and places: what every part of the drawing needs.
#pragma once

#include <QColor>
#include <QPainter>
#include <QPainterPath>
#include <QPointF>
#include <QPolygonF>
#include <QRectF>
#include <VelWhiteBoard/VelWhiteBoard.h>
#include <optional>
#include <string>

namespace whiteboard {

/// Where a client without a colour of its own draws.
QColor ink();
/// The colour of #RRGGBBAA or #RRGGBB, with or without "#" and in either case; none when the text
/// is something else.
std::optional<QColor> colourOf(const std::optional<std::string>& text);

/// Whether anything can be drawn on a board of this size: 1 to 16384 view points each way.
bool isDrawable(VelWhiteBoard::Size board);
/// The board, in view points.
QRectF areaOf(VelWhiteBoard::Size board);
/// `points` points of the base board, whose width is 400, on a board of the given size.
double onBoard(double points, VelWhiteBoard::Size board);

/// A position, in fractions, that can be drawn: records come from other machines. What is too far
/// off the board comes nearer; none for what is not finite.
std::optional<VelWhiteBoard::Point> drawableFraction(VelWhiteBoard::Point fraction);
/// The view point of a drawable fraction.
QPointF viewPointOf(VelWhiteBoard::Point fraction, VelWhiteBoard::Size board);
/// The box in view points, limited in the same way; width and height may be negative. None when it
/// is not finite or has no extent at all.
std::optional<QRectF> boxOf(const VelWhiteBoard::VelWbVecSquare& box, VelWhiteBoard::Size board);
/// The part of `inked` that lies on the board, grown by what antialiasing may touch beside it;
/// empty when nothing does.
QRectF seenOf(const QRectF& inked, VelWhiteBoard::Size board);
/// Whether two rectangles share a point. Unlike QRectF's own test it also takes those without
/// extent.
bool touches(const QRectF& a, const QRectF& b);

/// How far a point is from a line of corners; infinite when there are no corners.
double distanceTo(const QPolygonF& line, QPointF point);

/// Whether the painter writes shapes into a file (SVG, PDF) instead of pixels.
bool isVector(const QPainter& painter);

/// Keeps the state of a painter for a scope: pens, clips, transformations.
class SavedState {
 public:
  explicit SavedState(QPainter& painter) : painter_(painter) { painter_.save(); }
  ~SavedState() { painter_.restore(); }
  SavedState(const SavedState&) = delete;
  SavedState& operator=(const SavedState&) = delete;

 private:
  QPainter& painter_;
};

}  // namespace whiteboard
