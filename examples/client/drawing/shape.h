// The entries of a page, as they are drawn.
//
// A window keeps a picture of the entries. When something changes, it clears a small part of that
// picture and draws there what touches the part. So drawing a part is cheap, and gives exactly the
// pixels that drawing the whole gives. That holds for painters on pictures whose transformation is
// a scale and a move by whole pixels, with a clip of whole pixels.
#pragma once

#include <QPainter>
#include <QPointF>
#include <QRectF>
#include <VelWhiteBoard/VelWhiteBoard.h>
#include <cstddef>
#include <memory>
#include <optional>

namespace whiteboard {

class Look;

/// An entry of a page with what is remembered for drawing it.
///
/// Records come from other machines: numbers that are not finite, huge coordinates, widths and
/// texts are limited. A board of less than 1 or more than 16384 view points each way shows nothing.
///
/// Threads: one at a time, and the one that uses the tool manager; drawing, too, remembers things.
class Shape {
 public:
  explicit Shape(VelWhiteBoard::VectorPtr vector);
  ~Shape();
  Shape(const Shape&) = delete;
  Shape& operator=(const Shape&) = delete;

  const VelWhiteBoard::VectorPtr& vector() const { return vector_; }

  /// To be called when the vector has changed. `firstNew`: positions of the path before it are the
  /// same, and the rest of the look as well; 0: anything may have changed, but not the class.
  void update(std::size_t firstNew = 0);

  /// Where it may draw, in view points of a board of this size, widths and antialiasing included.
  /// Whole view points, and never beyond the board; empty when nothing can be seen. The vector may
  /// have changed already: until `update`, it is where the shape was drawn.
  QRectF bounds(VelWhiteBoard::Size board) const;
  /// Where it may draw otherwise than before the positions from `firstNew` on were added. For
  /// boxes: bounds.
  QRectF boundsFrom(std::size_t firstNew, VelWhiteBoard::Size board) const;

  bool isEraser() const;
  bool isMagnifier() const;
  /// The lens of a magnifier, or the box of any other box, in view points, as it is in the record
  /// and not turned; empty when it has none. The window draws what a lens enlarges.
  QRectF box(VelWhiteBoard::Size board) const;
  /// How round the corners of that lens are, in view points.
  double lensRadius(VelWhiteBoard::Size board) const;

  /// Draws what may touch `part` (view points); the painter's clip is the caller's. An eraser takes
  /// away what the painter has drawn before. Of a long stroke, only what is near the part is looked
  /// at closely; it is one path, so that a translucent marker is not darker where it meets itself.
  void paint(QPainter& painter, VelWhiteBoard::Size board, const QRectF& part) const;

  /// Whether a click at `at` (view points) hits it: near the line of a stroke or of a diagram, or
  /// inside a box. Erasers and cursors are never hit.
  bool hits(QPointF at, double tolerance, VelWhiteBoard::Size board) const;

 private:
  VelWhiteBoard::VectorPtr vector_;
  std::unique_ptr<Look> look_;            // null when nothing can be seen
  mutable std::optional<QRectF> bounds_;  // on a board of the size `boundsOn_`
  mutable VelWhiteBoard::Size boundsOn_;
};

}  // namespace whiteboard
