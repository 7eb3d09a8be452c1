// Pictures that a participant puts on the board.
#pragma once

#include <QImage>
#include <QPointF>

#include "lesson/session.h"

namespace whiteboard {

/// Puts a picture on the page that is shown, with its middle at a view point and at its own shape.
/// It travels inside its vector, so it is made small enough for a message. False when it is no
/// picture.
bool insertPicture(Session& session, const QImage& picture, QPointF middle,
                   VelWhiteBoard::Size board);

}  // namespace whiteboard
