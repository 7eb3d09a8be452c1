/// @file
/// Commands to a board, and the camera capture. Clients do not derive classes from these.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "VelWhiteBoard/vectors/boxes.h"

namespace VelWhiteBoard {

/// Takes one vector off the current page: type "remove".
/// @ingroup commands
class VELWHITEBOARD_EXPORT VelWbVecRemove : public VectorOf<VelWbVecRemove, VelWbBaseVector> {
 public:
  /// The `ID` of the vector to remove; absent: removes nothing.
  std::optional<std::string> rmID;

  static const RecordClass& ownClass();  ///< What describes this class to generic code.

  /// Calls `visit` with each property in turn, the base's first.
  template <class Visitor>
  static constexpr void properties(Visitor&& visit) {
    VelWbBaseVector::properties(visit);
    visit(property<&VelWbVecRemove::rmID>("rmID"));
  }

 protected:
  /// Leaves nothing out.
  std::shared_ptr<Record> makeMutableCopy() const override;
};

/// Empties the current page: type "clear". The fields are for clients; the storage does not read
/// them.
/// @ingroup commands
class VELWHITEBOARD_EXPORT VelWbVecClear : public VectorOf<VelWbVecClear, VelWbBaseVector> {
 public:
  /// The resource whose board is cleared.
  std::int64_t resource = 0;
  /// The page that is cleared.
  std::uint64_t clearPage = 0;

  static const RecordClass& ownClass();  ///< What describes this class to generic code.

  /// Calls `visit` with each property in turn, the base's first.
  template <class Visitor>
  static constexpr void properties(Visitor&& visit) {
    VelWbBaseVector::properties(visit);
    visit(property<&VelWbVecClear::resource>("resource"));
    visit(property<&VelWbVecClear::clearPage>("clearPage"));
  }

 protected:
  /// Leaves nothing out.
  std::shared_ptr<Record> makeMutableCopy() const override;
};

/// Shows another page: type "switchPage". Storages also use it to identify pages.
///
/// Set its `type`: a record without one is decoded by its keys, so it would come back from a file
/// or dictionary as a box.
/// @ingroup commands
class VELWHITEBOARD_EXPORT VelWbVecSwitchPage
    : public VectorOf<VelWbVecSwitchPage, VelWbBaseVector> {
 public:
  /// The board that is shown.
  std::int64_t WBID = 0;
  /// The resource (document) that is shown on it. Not part of the page key.
  std::int64_t resource = 0;
  /// Address of the page's content, its image or document.
  std::optional<std::string> url;
  /// The page that is shown.
  std::uint64_t curPage = 0;
  /// Number of pages of the resource.
  std::uint64_t totalPage = 0;
  /// Whether the page is shown as an image.
  bool imageMode = false;
  /// Width of the page's content, in the sender's unit: no fraction of a board.
  double w = 0;
  /// Height of the page's content, in the same unit.
  double h = 0;

  static const RecordClass& ownClass();  ///< What describes this class to generic code.

  /// The page key: `WBID` and `curPage` in decimal, joined by an underscore, such as "12_3". The
  /// names of a page's files, and the caches, use it.
  std::string pageInfo() const;

  /// The page that a page key names: the exact inverse of `pageInfo()`. The new record has the type
  /// "switchPage", the key's `WBID` and `curPage`, and nothing else set; it belongs to the caller.
  ///
  /// @param info any text. What `pageInfo()` cannot have produced gives null: a missing part, a
  ///   leading zero, a plus sign, a space, "-0", a number beyond its 64 bits, anything before or
  ///   behind.
  ///
  /// Any thread.
  static std::shared_ptr<VelWbVecSwitchPage> pageFromInfo(std::string_view info);

  /// Calls `visit` with each property in turn, the base's first.
  template <class Visitor>
  static constexpr void properties(Visitor&& visit) {
    VelWbBaseVector::properties(visit);
    visit(property<&VelWbVecSwitchPage::WBID>("WBID"));
    visit(property<&VelWbVecSwitchPage::resource>("resource"));
    visit(property<&VelWbVecSwitchPage::url>("url"));
    visit(property<&VelWbVecSwitchPage::curPage>("curPage"));
    visit(property<&VelWbVecSwitchPage::totalPage>("totalPage"));
    visit(property<&VelWbVecSwitchPage::imageMode>("imageMode"));
    visit(property<&VelWbVecSwitchPage::w>("w"));
    visit(property<&VelWbVecSwitchPage::h>("h"));
  }

 protected:
  /// Leaves nothing out.
  std::shared_ptr<Record> makeMutableCopy() const override;
};

/// Moves the view: type "offset".
/// @ingroup commands
class VELWHITEBOARD_EXPORT VelWbVecOffset : public VectorOf<VelWbVecOffset, VelWbBaseVector> {
 public:
  /// Axis or direction of the move, a code of the clients.
  std::int64_t direction = 0;
  /// Amount of the move, in the sender's unit.
  double value = 0;

  static const RecordClass& ownClass();  ///< What describes this class to generic code.

  /// Calls `visit` with each property in turn, the base's first.
  template <class Visitor>
  static constexpr void properties(Visitor&& visit) {
    VelWbBaseVector::properties(visit);
    visit(property<&VelWbVecOffset::direction>("direction"));
    visit(property<&VelWbVecOffset::value>("value"));
  }

 protected:
  /// Leaves nothing out.
  std::shared_ptr<Record> makeMutableCopy() const override;
};

/// A camera capture: type "camera". Made only by decoding; for this type the factory makes a
/// `VelWbVecFile`.
/// @ingroup boxes
class VELWHITEBOARD_EXPORT VelWbCaptureInfo : public VectorOf<VelWbCaptureInfo, VelWbVecSquare> {
 public:
  /// Whether the capture comes from the back camera.
  bool isBack = false;

  static const RecordClass& ownClass();  ///< What describes this class to generic code.

  /// Calls `visit` with each property in turn, the base's first.
  template <class Visitor>
  static constexpr void properties(Visitor&& visit) {
    VelWbVecSquare::properties(visit);
    visit(property<&VelWbCaptureInfo::isBack>("isBack"));
  }

 protected:
  /// Leaves out `ps`.
  std::shared_ptr<Record> makeMutableCopy() const override;
};

}  // namespace VelWhiteBoard
