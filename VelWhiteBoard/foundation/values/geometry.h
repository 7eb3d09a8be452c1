/// @file
/// Points, sizes and rectangles.
#pragma once

namespace VelWhiteBoard {

/// @addtogroup positions
/// @{

/// A position. The operation that takes or gives it names the space: view points (origin in a
/// corner of the board) or the board's normalised coordinates (origin in its centre).
///
/// Comparison is that of doubles: 0.0 equals -0.0, and a NaN equals nothing. All three types here
/// are plain values that any thread may copy.
struct Point {
  double x = 0;  ///< Horizontal coordinate.
  double y = 0;  ///< Vertical coordinate; the client decides whether it grows downward or upward.

  /// Whether both coordinates are equal.
  friend bool operator==(const Point&, const Point&) = default;
};

/// A width and a height, in the unit of the operation that takes or gives it. A negative or zero
/// size is allowed; the operation says what it means.
struct Size {
  double width = 0;   ///< Horizontal extent.
  double height = 0;  ///< Vertical extent.

  /// Whether both extents are equal.
  friend bool operator==(const Size&, const Size&) = default;
};

/// A rectangle: the corner at which x and y are smallest (for a size that is not negative), and
/// the extent from there.
struct Rect {
  Point origin;  ///< The corner of smallest x and y, if no extent is negative.
  Size size;     ///< The extent from there.

  /// Whether corner and extent are equal.
  friend bool operator==(const Rect&, const Rect&) = default;
};

/// @}

}  // namespace VelWhiteBoard
