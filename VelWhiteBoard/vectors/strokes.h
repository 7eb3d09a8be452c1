/// @file
/// Positioned records and the strokes of pen, marker and eraser.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "VelWhiteBoard/foundation/values/geometry.h"
#include "VelWhiteBoard/foundation/values/path.h"
#include "VelWhiteBoard/vectors/base_vector.h"

namespace VelWhiteBoard {

/// A record with a position and, optionally, a path. Also the base of every box.
///
/// Coordinates are normalised: the origin is the board's centre, and -0.5 to +0.5 spans its width
/// and its height. y grows in the direction of the view's y, downward or upward, as the client
/// decides. Positions outside the board are allowed. A vector takes any number, NaN and the
/// infinities included.
///
/// Clients do not derive classes from it.
/// @ingroup vectors
class VELWHITEBOARD_EXPORT VelWbVecPoint : public VectorOf<VelWbVecPoint, VelWbBaseVector> {
 public:
  /// The newest position, normalised: horizontal.
  double x = 0;
  /// The same, vertical. At the tool manager's `version` 1 the `y` of a box is its far edge.
  double y = 0;
  /// The board width, in the sender's view points, to which the vector's sizes relate; below 1: not
  /// given.
  std::int64_t ps = 0;
  /// True on the piece that finishes the stroke.
  bool end = false;
  /// The positions so far, oldest first: horizontal, vertical (both normalised) and the time of the
  /// position in seconds, on the clock of `ts`. A position without a time has two numbers.
  std::optional<Path> path;

  static const RecordClass& ownClass();  ///< What describes this class to generic code.

  /// Folds a later piece of the same stroke into this one.
  ///
  /// A threshold decides which positions are taken: the time of the newest stored position, or -1
  /// when that one has no time or there is none. A vector without a path first starts one with its
  /// own position, and its `ts` is the threshold. A position with a time is taken when the time is
  /// above the threshold; a time above 0 then becomes the threshold. A position without a time is
  /// taken while the threshold is below 0. A position of fewer than two numbers is dropped. So a
  /// piece whose positions all have times above 0 adds nothing when it arrives a second time.
  /// Positions without a time, or at a time of 0 or less, may be added again.
  ///
  /// `ts`, `end`, `x` and `y` follow the piece, whether positions were taken or not. Cost is
  /// proportional to the piece, not to the stroke.
  ///
  /// @param update any vector, the receiver included. One of another `type` or `ID`, or without a
  ///   position, changes nothing. A line with an `offset` moves the stroke and adds no positions.
  /// @throws std::bad_alloc with nothing changed.
  virtual void append(const VelWbBaseVector& update);

  /// When the stroke began, in seconds: the time of its first position, or `ts` when that has none.
  double startTimeStamp() const;

  /// Calls `visit` with each property in turn, the base's first.
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
  /// The implementation of `append`; returns whether `update` belongs to this stroke.
  bool appendPositions(const VelWbBaseVector& update);

  /// Leaves nothing out.
  std::shared_ptr<Record> makeMutableCopy() const override;
};

/// A stroke: type "line" (pen), "markerPen" or "eraser". Clients do not derive classes from it.
/// @ingroup strokes
class VELWHITEBOARD_EXPORT VelWbVecLine : public VectorOf<VelWbVecLine, VelWbVecPoint> {
 public:
  /// The colour, `#RRGGBBAA`; absent for erasers.
  std::optional<std::string> color;
  /// Index into the tool manager's width table for the type; negative: not given.
  std::int64_t widthIndex = 0;
  /// Stroke width, in the sender's view points, on a board `ps` wide; below 1: not given.
  std::int64_t pixel = 0;
  /// A displacement of the whole stroke, in a form that the clients agree on; its elements are kept
  /// as they came.
  std::optional<Array> offset;

  VelWbVecLine() = default;                           ///< All properties at their defaults.
  VelWbVecLine(const VelWbVecLine& other) = default;  ///< Copies every property.
  VelWbVecLine(VelWbVecLine&& other) = default;       ///< Takes every property.
  VelWbVecLine& operator=(const VelWbVecLine& other) = default;  ///< Copies every property.
  VelWbVecLine& operator=(VelWbVecLine&& other) = default;       ///< Takes every property.
  /// Allocates no memory, whatever `offset` holds: a vector may be destroyed when memory has run
  /// out.
  ~VelWbVecLine() override;

  static const RecordClass& ownClass();  ///< What describes this class to generic code.

  /// As for any positioned record. If the update is a line, its `pixel`, `ps` and `widthIndex` are
  /// taken where given, and its `offset` always, so a piece without an offset clears an earlier
  /// one. `color` never changes.
  void append(const VelWbBaseVector& update) override;

  /// The width in view points on the board as it is now, the tool manager's `wbSize`. To be called
  /// on the thread that uses the tool manager.
  double lineWidth() const;
  /// The width in view points on a board of the given size, in view points; only its width counts.
  /// Any value is accepted. When `pixel` or `ps` is not given, the tool manager's table for the
  /// type decides instead, so this, too, is to be called on the tool manager's thread. A
  /// `widthIndex` outside the table means entry 0, a type without a table 2 points of `wbBaseSize`.
  double lineWidthWith(Size size) const;

  /// Calls `visit` with each property in turn, the base's first.
  template <class Visitor>
  static constexpr void properties(Visitor&& visit) {
    VelWbVecPoint::properties(visit);
    visit(property<&VelWbVecLine::color>("color"));
    visit(property<&VelWbVecLine::widthIndex>("widthIndex"));
    visit(property<&VelWbVecLine::pixel>("pixel"));
    visit(property<&VelWbVecLine::offset>("offset"));
  }

 protected:
  /// Leaves nothing out.
  std::shared_ptr<Record> makeMutableCopy() const override;
};

}  // namespace VelWhiteBoard
