// Makes one piece of two that wait to be sent.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>

namespace whiteboard {

/// Appends `next` to `waiting` if everybody who receives the joined piece then has the same stroke
/// as after both pieces, whether the receiver has earlier pieces of it or none. Tells whether it
/// has done so; otherwise nothing has changed.
///
/// Joined are pieces of one stroke without `offset`, the first of which does not end it. Each
/// position must have a time above 0 that is later than the time of the one before: others are
/// taken or dropped by what the receiver has already.
bool joinPieces(VelWhiteBoard::VelWbBaseVector& waiting,
                const VelWhiteBoard::VelWbBaseVector& next);

}  // namespace whiteboard
