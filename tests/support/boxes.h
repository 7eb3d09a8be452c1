/// @file
/// Boxes and their updates, for the tests of merging.
#pragma once

#include "VelWhiteBoard/vectors/boxes.h"

namespace VelWhiteBoard {

/// The coordinate that says "not given" in an update.
inline constexpr double kNotGiven = -10.0;

/// A box of the class, all of whose inherited fields are set.
template <class T>
T box() {
  T result;
  result.type = "t";
  result.ts = 1;
  result.ID = "b";
  result.x = 0.1;
  result.y = 0.2;
  result.ps = 400;
  result.end = true;
  result.path = Path{{1, 2, 3}};
  result.w = 0.3;
  result.h = 0.4;
  return result;
}

/// An update of it that carries only its time.
template <class T>
T update() {
  T result;
  result.type = "t";
  result.ts = 2;
  result.ID = "b";
  result.x = kNotGiven;
  result.y = kNotGiven;
  return result;
}

}  // namespace VelWhiteBoard
