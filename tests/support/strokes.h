/// @file
/// Pieces of a stroke, for the tests of appending.
#pragma once

#include <utility>

#include "VelWhiteBoard/vectors/strokes.h"

namespace VelWhiteBoard {

/// A piece of the stroke "s".
inline VelWbVecLine piece(double x, double y, double ts) {
  VelWbVecLine line;
  line.type = "line";
  line.ID = "s";
  line.x = x;
  line.y = y;
  line.ts = ts;
  return line;
}

inline VelWbVecLine piece(double x, double y, double ts, Path path) {
  VelWbVecLine line = piece(x, y, ts);
  line.path = std::move(path);
  return line;
}

}  // namespace VelWhiteBoard
