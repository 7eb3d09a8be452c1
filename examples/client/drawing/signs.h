// What stands for content that is not shown: frames and signs.
#pragma once

#include <QColor>
#include <QPainter>
#include <QPointF>
#include <QRectF>
#include <VelWhiteBoard/VelWhiteBoard.h>

namespace whiteboard {

QColor captionColour();

/// The outline of a box, drawn on its edges.
/// @param width in view points
/// @param radius of the corners, 0 for sharp ones
void paintFrame(QPainter& painter, const QRectF& box, double width, double radius = 0);
/// A box whose content is not shown.
void paintEmptyBox(QPainter& painter, const QRectF& box, VelWhiteBoard::Size board);
/// How wide the frame of such a box is, in view points.
double frameWidth(VelWhiteBoard::Size board);

enum class Sign {
  kImage,  ///< a sun over two mountains
  kPlay,   ///< a disc with a triangle that points to the right
  kSound,  ///< bars of different height, as of a sound
};
/// Paints a sign into the middle of the box.
void paintSign(QPainter& painter, Sign sign, const QRectF& box);

}  // namespace whiteboard
