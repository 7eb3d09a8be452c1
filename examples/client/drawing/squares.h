// Drawing in squares of a fixed grid.
#pragma once

#include <QPainter>
#include <QRectF>
#include <functional>

namespace whiteboard {

/// Draws into a square, whose painter counts in view points as the caller's does; `area` is the
/// square, in view points. Returns whether it has drawn anything.
using PaintSquare = std::function<bool(QPainter& into, const QRectF& area)>;

/// Draws in squares of 64 pixels of the device: each that touches `wanted`, in view points, is
/// drawn whole on a picture of its own, and that is put onto the painter, in its composition mode.
///
/// Where a scaled picture or a long outline is drawn in one piece, the rounding of a pixel may
/// depend on the part that is drawn; a square is always the same. And an area of many corners takes
/// less time: the rasteriser searches the pixels of each row one by one.
void paintInSquares(QPainter& painter, const QRectF& wanted, const PaintSquare& paintSquare);

}  // namespace whiteboard
