/// @file
/// Objects that occupy a rectangle of the board: boxes, files and images, media, text.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "VelWhiteBoard/foundation/values/geometry.h"
#include "VelWhiteBoard/vectors/strokes.h"

namespace VelWhiteBoard {

/// A box: a position and a size in normalised board coordinates.
///
/// A box is not extended piece by piece; a later vector of the same `type` and `ID` edits it.
/// At the tool manager's `version` 1 the `y` of a box is its far edge: the near one is `y` - `h`.
/// Clients do not derive classes from a box or from the classes below.
/// @ingroup boxes
class VELWHITEBOARD_EXPORT VelWbVecSquare : public VectorOf<VelWbVecSquare, VelWbVecPoint> {
 public:
  /// Width as a fraction of the board's; in an update the size is given when both sides are above
  /// 0.
  double w = 0;
  /// Height as a fraction of the board's.
  double h = 0;

  static const RecordClass& ownClass();  ///< What describes this class to generic code.

  /// Edits this box with what the update carries.
  ///
  /// The position is taken when both coordinates are above -10, the size when both sides are above
  /// 0, `ts` always. `end`, `path` and `ps` never change. Each derived class adds the fields of its
  /// own, when the update is of that class too.
  ///
  /// @param update any vector, the receiver included. One of another `type` or `ID` changes
  ///   nothing, not even `ts`. One without a position or a size changes only the rest.
  /// @throws std::bad_alloc with nothing changed.
  virtual void merge(const VelWbBaseVector& update);

  /// Calls `visit` with each property in turn, the base's first.
  template <class Visitor>
  static constexpr void properties(Visitor&& visit) {
    VelWbVecPoint::properties(visit);
    visit(property<&VelWbVecSquare::w>("w"));
    visit(property<&VelWbVecSquare::h>("h"));
  }

 protected:
  /// Leaves out `ps`.
  std::shared_ptr<Record> makeMutableCopy() const override;
};

/// A file on the board: types "image" and "cursor". A new vector of type "camera" that the factory
/// makes is a file, too; one that is decoded is a `VelWbCaptureInfo`.
/// @ingroup boxes
class VELWHITEBOARD_EXPORT VelWbVecFile : public VectorOf<VelWbVecFile, VelWbVecSquare> {
 public:
  /// Where the content is; in an update empty: not given.
  std::optional<std::string> url;
  /// Rotation of the box, in the sender's unit. Merging never changes it.
  double rotation = 0;
  /// Marks an object that may not be deleted. Merging always takes the update's value.
  bool undeletable = false;

  static const RecordClass& ownClass();  ///< What describes this class to generic code.

  void merge(const VelWbBaseVector& update) override;

  /// Calls `visit` with each property in turn, the base's first.
  template <class Visitor>
  static constexpr void properties(Visitor&& visit) {
    VelWbVecSquare::properties(visit);
    visit(property<&VelWbVecFile::url>("url"));
    visit(property<&VelWbVecFile::rotation>("rotation"));
    visit(property<&VelWbVecFile::undeletable>("undeletable"));
  }

 protected:
  /// Leaves out `ps`.
  std::shared_ptr<Record> makeMutableCopy() const override;
};

/// A media item on the board: type "media". Its times and `duration` are in the sender's unit, and
/// `status` is defined by the sender; the library reads none of them.
/// @ingroup boxes
class VELWHITEBOARD_EXPORT VelWbVecVideo : public VectorOf<VelWbVecVideo, VelWbVecFile> {
 public:
  /// Identifier of the owner; in an update below 1: not given.
  std::int64_t owner = 0;
  /// "video" or "audio"; in an update absent: not given, empty: taken.
  std::optional<std::string> kind;
  /// Playback time set by hand; in an update negative: not given.
  std::int64_t manualPlayTs = 0;
  /// Playback time of automatic play; always taken from an update.
  std::int64_t autoPlayTs = 0;
  /// A text of the sender's; in an update empty: not given.
  std::optional<std::string> status;
  /// Length of the media; merging never changes it.
  std::int64_t duration = 0;
  /// Title for people; in an update empty: not given.
  std::optional<std::string> title;
  /// Address of the cover picture; in an update absent: not given, empty: taken.
  std::optional<std::string> cover;

  static const RecordClass& ownClass();  ///< What describes this class to generic code.

  void merge(const VelWbBaseVector& update) override;

  /// Calls `visit` with each property in turn, the base's first.
  template <class Visitor>
  static constexpr void properties(Visitor&& visit) {
    VelWbVecFile::properties(visit);
    visit(property<&VelWbVecVideo::owner>("owner"));
    visit(property<&VelWbVecVideo::kind>("kind"));
    visit(property<&VelWbVecVideo::manualPlayTs>("manualPlayTs"));
    visit(property<&VelWbVecVideo::autoPlayTs>("autoPlayTs"));
    visit(property<&VelWbVecVideo::status>("status"));
    visit(property<&VelWbVecVideo::duration>("duration"));
    visit(property<&VelWbVecVideo::title>("title"));
    visit(property<&VelWbVecVideo::cover>("cover"));
  }

 protected:
  /// Leaves out `ps`, `path` and `undeletable`.
  std::shared_ptr<Record> makeMutableCopy() const override;
};

/// A text box: type "text". Its `ps` is the width of the sender's board as shown, not of the
/// reference board.
/// @ingroup boxes
class VELWHITEBOARD_EXPORT VelWbVecText : public VectorOf<VelWbVecText, VelWbVecSquare> {
 public:
  /// The text; a line feed ends a line. In an update empty: not given, so merging cannot clear it.
  std::optional<std::string> text;
  /// Font size in the sender's view points; in an update 0 or less: not given.
  double fontSize = 0;
  /// Font family; in an update empty: not given.
  std::optional<std::string> fontName;
  /// Text colour, `#RRGGBBAA`; in an update empty: not given.
  std::optional<std::string> color;
  /// Background colour; in an update absent: not given, empty: taken.
  std::optional<std::string> bgColor;

  static const RecordClass& ownClass();  ///< What describes this class to generic code.

  void merge(const VelWbBaseVector& update) override;

  /// The font size in view points on a board of the given size, in view points: the size's width
  /// times `fontSize` over `ps`. `fontSize` itself when `ps` is not given (below 1). Only the width
  /// of the size counts, and any value is computed with: a zero, negative or infinite width and NaN
  /// give what the formula gives. Reads the record only, so it does not need the tool manager's
  /// thread.
  double fontSizeWith(Size size) const;

  /// Calls `visit` with each property in turn, the base's first.
  template <class Visitor>
  static constexpr void properties(Visitor&& visit) {
    VelWbVecSquare::properties(visit);
    visit(property<&VelWbVecText::text>("text"));
    visit(property<&VelWbVecText::fontSize>("fontSize"));
    visit(property<&VelWbVecText::fontName>("fontName"));
    visit(property<&VelWbVecText::color>("color"));
    visit(property<&VelWbVecText::bgColor>("bgColor"));
  }

 protected:
  /// Leaves nothing out.
  std::shared_ptr<Record> makeMutableCopy() const override;
};

}  // namespace VelWhiteBoard
