// Moving and resizing entries.
#pragma once

#include <QPointF>
#include <QRectF>
#include <VelWhiteBoard/VelWhiteBoard.h>

namespace whiteboard {

/// The rectangle of an entry's box, in view points; empty when it is no box.
QRectF frameOf(const VelWhiteBoard::VelWbBaseVector& entry, VelWhiteBoard::Size board);

/// Whether an entry can be given another size: boxes can, strokes cannot.
bool isResizable(const VelWhiteBoard::VelWbBaseVector& entry);

/// The vector that moves an entry by a distance in view points; null when it cannot be moved.
VelWhiteBoard::VectorPtr moveOf(const VelWhiteBoard::VelWbBaseVector& entry, QPointF by,
                                VelWhiteBoard::Size board);

/// The vector that gives a box another rectangle, in view points; null when it cannot be resized.
VelWhiteBoard::VectorPtr resizeOf(const VelWhiteBoard::VelWbBaseVector& entry, const QRectF& to,
                                  VelWhiteBoard::Size board);

}  // namespace whiteboard
