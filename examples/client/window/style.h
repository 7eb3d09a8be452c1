// How the windows look.
#pragma once

class QApplication;

namespace whiteboard {

/// Light, quiet, with large buttons: the board is what one looks at.
void applyStyle(QApplication& application);

}  // namespace whiteboard
