// The signs on the buttons, drawn here: they are sharp on every screen.
#pragma once

#include <QColor>
#include <QIcon>

namespace whiteboard {

enum class Sign {
  kSelect,
  kPen,
  kMarker,
  kEraser,
  kText,
  kRectangle,
  kRhombus,
  kEllipse,
  kCircle,
  kTriangle,
  kLine,
  kArrow,
  kImage,
  kPointer,
  kMagnifier,
  kUndo,
  kRedo,
  kDelete,
  kPrevious,
  kNext,
  kAdd,
  kClear,
  kExport,
  kPlay,
  kPause,
  kWindow,
};

/// A sign in the ink of the window; disabled buttons show it pale.
QIcon iconOf(Sign sign);
/// A disc of a colour.
QIcon colourIcon(const QColor& colour);
/// A dot that is as large as a stroke is wide, of a range of 0 (thinnest) to 1.
QIcon widthIcon(double part);

}  // namespace whiteboard
