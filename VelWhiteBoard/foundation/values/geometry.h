/// @file
/// Points, sizes and rectangles.
#pragma once

namespace VelWhiteBoard {

/// A position. The operation that takes or gives it names the space: view points (origin in a
/// corner of the board) or the board's normalised coordinates (origin in its centre).
///
/// Comparison is that of doubles: 0.0 equals -0.0, and a NaN equals nothing. All three types here
/// are plain values that any thread may copy.
struct Point {
  double x = 0;
  double y = 0;

  friend bool operator==(const Point&, const Point&) = default;
};

/// A width and a height, in the unit of the operation that takes or gives it. A negative or zero
/// size is allowed; the operation says what it means.
struct Size {
  double width = 0;
  double height = 0;

  friend bool operator==(const Size&, const Size&) = default;
};

/// A rectangle: the corner at which x and y are smallest (for a size that is not negative), and
/// the extent from there.
struct Rect {
  Point origin;
  Size size;

  friend bool operator==(const Rect&, const Rect&) = default;
};

}  // namespace VelWhiteBoard
