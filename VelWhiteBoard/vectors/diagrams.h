/// @file
/// Drawn shapes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "VelWhiteBoard/foundation/values/geometry.h"
#include "VelWhiteBoard/vectors/boxes.h"

namespace VelWhiteBoard {

/// A shape outlined in a box: type "diagram" without radii. The factory makes it for every kind but
/// "circle" and "ellipse"; a dictionary without the key "radiusX" becomes one whatever its `kind`.
/// Clients do not derive classes from it or from the class below.
/// @ingroup diagrams
class VELWHITEBOARD_EXPORT VelWbVecDiagram : public VectorOf<VelWbVecDiagram, VelWbVecSquare> {
 public:
  /// The shape, one of the `VelWBVectorStrKind` names. Merging never changes it.
  std::optional<std::string> kind;
  /// The shape's defining points, in a form that the clients agree on; kept as they came. In an
  /// update absent or without elements: not given.
  std::optional<Array> points;
  /// Outline colour, `#RRGGBBAA`; in an update empty: not given.
  std::optional<std::string> color;
  /// Outline width, in the sender's view points, on a board `ps` wide; below 1: not given.
  std::int64_t pixel = 0;

  VelWbVecDiagram() = default;                              ///< All properties at their defaults.
  VelWbVecDiagram(const VelWbVecDiagram& other) = default;  ///< Copies every property.
  VelWbVecDiagram(VelWbVecDiagram&& other) = default;       ///< Takes every property.
  /// Copies every property.
  VelWbVecDiagram& operator=(const VelWbVecDiagram& other) = default;
  /// Takes every property.
  VelWbVecDiagram& operator=(VelWbVecDiagram&& other) = default;
  /// Allocates no memory, whatever `points` holds: a vector may be destroyed when memory has run
  /// out.
  ~VelWbVecDiagram() override;

  static const RecordClass& ownClass();  ///< What describes this class to generic code.

  /// As for any box. If the update is a diagram, its other fields are taken too, `ps` included, and
  /// its size when both sides are 0 or more, although boxes ignore a side of 0.
  /// @throws std::bad_alloc with nothing changed.
  void merge(const VelWbBaseVector& update) override;

  /// The outline width in view points on the board as it is now, the tool manager's `wbSize`. To be
  /// called on the thread that uses the tool manager.
  double lineWidth() const;
  /// The outline width in view points on a board of the given size; only its width counts. 1 when
  /// `pixel` or `ps` is not given. Any thread.
  double lineWidthWith(Size size) const;

  /// Calls `visit` with each property in turn, the base's first.
  template <class Visitor>
  static constexpr void properties(Visitor&& visit) {
    VelWbVecSquare::properties(visit);
    visit(property<&VelWbVecDiagram::kind>("kind"));
    visit(property<&VelWbVecDiagram::points>("points"));
    visit(property<&VelWbVecDiagram::color>("color"));
    visit(property<&VelWbVecDiagram::pixel>("pixel"));
  }

 protected:
  /// Leaves out `path`; an absent `points` becomes an empty array.
  std::shared_ptr<Record> makeMutableCopy() const override;
};

/// A diagram with radii: type "diagram". The factory makes it for the kinds "circle" and "ellipse";
/// a dictionary with the key "radiusX" becomes one whatever its `kind`.
/// @ingroup diagrams
class VELWHITEBOARD_EXPORT VelWbVecCircle : public VectorOf<VelWbVecCircle, VelWbVecDiagram> {
 public:
  /// The horizontal radius, in the sender's unit; in an update negative: not given.
  double radiusX = 0;
  /// The vertical radius, in the same way, whether or not the horizontal one is given.
  double radiusY = 0;

  static const RecordClass& ownClass();  ///< What describes this class to generic code.

  void merge(const VelWbBaseVector& update) override;

  /// Calls `visit` with each property in turn, the base's first.
  template <class Visitor>
  static constexpr void properties(Visitor&& visit) {
    VelWbVecDiagram::properties(visit);
    visit(property<&VelWbVecCircle::radiusX>("radiusX"));
    visit(property<&VelWbVecCircle::radiusY>("radiusY"));
  }

 protected:
  /// As for any diagram.
  std::shared_ptr<Record> makeMutableCopy() const override;
};

}  // namespace VelWhiteBoard
