/// @file
/// Positioned records and the strokes of pen, marker and eraser.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "VelWhiteBoard/foundation/geometry.h"
#include "VelWhiteBoard/foundation/path.h"
#include "VelWhiteBoard/vectors/base_vector.h"

namespace VelWhiteBoard {

/// A record with a position that may grow into a path. Also the base of every box.
///
/// Coordinates are normalised: the origin is the board's centre, -0.5 to +0.5 spans its width and
/// its height, y grows downward as in the view.
class VELWHITEBOARD_EXPORT VelWbVecPoint : public VectorOf<VelWbVecPoint, VelWbBaseVector> {
 public:
  /// The newest position.
  double x = 0;
  double y = 0;
  /// The board width, in view points, at which the vector's sizes were taken; below 1: not given.
  std::int64_t ps = 0;
  /// True on the piece that finishes the stroke.
  bool end = false;
  /// The positions so far, oldest first: horizontal, vertical, time in the unit of `ts`.
  std::optional<Path> path;

  static const RecordClass& ownClass();

  /// Folds a later piece of the same stroke into this one.
  ///
  /// Only positions newer than the newest stored one are taken, so a piece that arrives twice adds
  /// nothing the second time; `ts`, `end`, `x` and `y` follow the piece. A vector without a path
  /// starts one with its own position. Cost is proportional to the piece, not to the stroke.
  ///
  /// @param update any vector, the receiver included; one of another `type` or `ID`, or one without
  /// a
  ///   position, changes nothing. A line with an `offset` moves the stroke and adds no positions.
  virtual void append(const VelWbBaseVector& update);

  /// When the stroke began: the time of its first position, or `ts` when that has none.
  double startTimeStamp() const;

  template <class Visitor>
  static constexpr void properties(Visitor&& visit) {
    VelWbBaseVector::properties(visit);
    visit(property<&VelWbVecPoint::x>("x"));
    visit(property<&VelWbVecPoint::y>("y"));
    visit(property<&VelWbVecPoint::ps>("ps"));
    visit(property<&VelWbVecPoint::end>("end"));
    visit(property<&VelWbVecPoint::path>("path"));
  }

 protected:
  /// What `append` does here; answers whether `update` belongs to this stroke.
  bool appendPositions(const VelWbBaseVector& update);

  std::shared_ptr<Record> makeMutableCopy() const override;
};

/// A stroke: type "line" (pen), "markerPen" or "eraser".
class VELWHITEBOARD_EXPORT VelWbVecLine : public VectorOf<VelWbVecLine, VelWbVecPoint> {
 public:
  /// The colour, #RRGGBBAA; absent for erasers.
  std::optional<std::string> color;
  /// Index into the tool manager's width table for the type; negative: not given.
  std::int64_t widthIndex = 0;
  /// Stroke width, in view points, on a board `ps` wide; below 1: not given.
  std::int64_t pixel = 0;
  /// A displacement of the whole stroke, in a form that the clients agree on; its elements are kept
  /// as they came.
  std::optional<Array> offset;

  VelWbVecLine() = default;
  VelWbVecLine(const VelWbVecLine& other) = default;
  VelWbVecLine(VelWbVecLine&& other) = default;
  VelWbVecLine& operator=(const VelWbVecLine& other) = default;
  VelWbVecLine& operator=(VelWbVecLine&& other) = default;
  /// Asks for no memory, whatever `offset` holds: vectors end while there is none, too.
  ~VelWbVecLine() override;

  static const RecordClass& ownClass();

  /// As for any positioned record; then a line also hands over its `pixel`, `ps` and `widthIndex`
  /// where given, and its `offset` always, so a piece without one clears an earlier one. `color`
  /// never changes.
  void append(const VelWbBaseVector& update) override;

  /// The width in view points on the board as it is now, the tool manager's `wbSize`. To be called
  /// on the thread that uses the tool manager.
  double lineWidth() const;
  /// The width in view points on a board of the given size; only its width counts. Without `pixel`
  /// and `ps` the tool manager's table for the type decides, so the same thread rule holds.
  double lineWidthWith(Size size) const;

  template <class Visitor>
  static constexpr void properties(Visitor&& visit) {
    VelWbVecPoint::properties(visit);
    visit(property<&VelWbVecLine::color>("color"));
    visit(property<&VelWbVecLine::widthIndex>("widthIndex"));
    visit(property<&VelWbVecLine::pixel>("pixel"));
    visit(property<&VelWbVecLine::offset>("offset"));
  }

 protected:
  std::shared_ptr<Record> makeMutableCopy() const override;
};

}  // namespace VelWhiteBoard
