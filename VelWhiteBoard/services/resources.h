/// @file
/// Descriptions of courseware.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "VelWhiteBoard/foundation/export.h"
#include "VelWhiteBoard/foundation/records/coder.h"
#include "VelWhiteBoard/foundation/records/model_mapping.h"
#include "VelWhiteBoard/foundation/records/record.h"

namespace VelWhiteBoard {

/// One page image of a resource. Clients do not derive classes from it.
/// @ingroup courseware
class VELWHITEBOARD_EXPORT VelImageResource : public RecordOf<VelImageResource, Record> {
 public:
  /// Identifier of the image file.
  std::optional<std::string> fileID;
  /// Address of the image.
  std::optional<std::string> fileUrl;
  /// Identifier of the page image.
  std::uint64_t id = 0;

  static const RecordClass& ownClass();  ///< What describes this class to generic code.

  /// Calls `visit` with each property in turn.
  template <class Visitor>
  static constexpr void properties(Visitor&& visit) {
    visit(property<&VelImageResource::fileID>("fileID"));
    visit(property<&VelImageResource::fileUrl>("fileUrl"));
    visit(property<&VelImageResource::id>("id"));
  }
};

/// A piece of courseware shown on a board: a slide deck, a PDF document or a set of images.
///
/// A plain record that the client receives as a dictionary; nothing else in the library reads it.
/// It takes no lock. Clients do not derive classes from it.
/// @ingroup courseware
class VELWHITEBOARD_EXPORT VelWhiteBoardResource : public RecordOf<VelWhiteBoardResource, Record> {
 public:
  /// The board that shows the resource.
  std::int64_t WBID = 0;
  /// Identifier of the source file: a number here, a string in `VelImageResource`.
  std::int64_t fileID = 0;
  /// Address of the source file; its extension decides the type.
  std::optional<std::string> fileUrl;
  /// Identifier of the resource.
  std::uint64_t id = 0;
  /// The page images in page order; copies share them.
  std::optional<std::vector<std::shared_ptr<VelImageResource>>> images;
  /// Size of the source file, in the sender's unit.
  double filesize = 0;
  /// A second size, in the sender's unit, kept for the client.
  std::uint64_t size = 0;
  /// Number of pages as the sender states it; `getTotalPage()` does not read it.
  std::uint64_t totalPage = 0;
  /// Width of a page, in the sender's unit.
  std::int64_t width = 0;
  /// Height of a page, in the same unit.
  std::int64_t height = 0;

  static const RecordClass& ownClass();  ///< What describes this class to generic code.

  /// The display title. Without one the default "白板", which is returned but never stored.
  std::string title() const;
  /// Sets the title. An absent one restores the default; an empty one is a title.
  void setTitle(std::optional<std::string> title);

  /// 2 for a slide deck, 1 for a PDF document, 0 for images and everything unknown: decided by
  /// whether the extension of `fileUrl`, in lower case, contains "ppt" or else "pdf".
  std::uint64_t getResourceType() const;

  /// Number of elements of `images`.
  std::int64_t getTotalPage() const;

  /// The class of the elements of each property that is a list of records: "images" holds page
  /// images.
  static std::map<std::string, const RecordClass*> modelContainerPropertyGenericClass();

  /// Calls `visit` with each property in turn.
  template <class Visitor>
  static constexpr void properties(Visitor&& visit) {
    visit(property<&VelWhiteBoardResource::WBID>("WBID"));
    visit(property<&VelWhiteBoardResource::fileID>("fileID"));
    visit(property<&VelWhiteBoardResource::fileUrl>("fileUrl"));
    visit(property<&VelWhiteBoardResource::id>("id"));
    visit(property<&VelWhiteBoardResource::images>("images"));
    visit(property<&VelWhiteBoardResource::title_>("title"));
    visit(property<&VelWhiteBoardResource::filesize>("filesize"));
    visit(property<&VelWhiteBoardResource::size>("size"));
    visit(property<&VelWhiteBoardResource::totalPage>("totalPage"));
    visit(property<&VelWhiteBoardResource::width>("width"));
    visit(property<&VelWhiteBoardResource::height>("height"));
  }

 private:
  std::optional<std::string> title_;
};

}  // namespace VelWhiteBoard
