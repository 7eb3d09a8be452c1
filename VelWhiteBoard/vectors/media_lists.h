/// @file
/// A participant's playlist.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "VelWhiteBoard/vectors/base_vector.h"

namespace VelWhiteBoard {

/// One playable item of a media list. Not a vector: it has no `type` and no `ts`. Clients do not
/// derive classes from it.
/// @ingroup media_lists
class VELWHITEBOARD_EXPORT VelWbVecMediaItem : public RecordOf<VelWbVecMediaItem, Record> {
 public:
  /// Identifier, chosen by the client; the library does not read it.
  std::optional<std::string> ID;
  /// The user who owns the item.
  std::int64_t owner = 0;
  /// Address of the media.
  std::optional<std::string> url;
  /// Length, in the sender's unit.
  std::int64_t duration = 0;
  /// Kind of media, a code of the clients.
  std::int64_t category = 0;
  /// Title for people.
  std::optional<std::string> title;
  /// Address of the cover picture.
  std::optional<std::string> cover;

  static const RecordClass& ownClass();  ///< What describes this class to generic code.

  /// The field-by-field copy; it leaves nothing out.
  std::shared_ptr<VelWbVecMediaItem> mutableCopyWithZone() const;

  /// Calls `visit` with each property in turn.
  template <class Visitor>
  static constexpr void properties(Visitor&& visit) {
    visit(property<&VelWbVecMediaItem::ID>("ID"));
    visit(property<&VelWbVecMediaItem::owner>("owner"));
    visit(property<&VelWbVecMediaItem::url>("url"));
    visit(property<&VelWbVecMediaItem::duration>("duration"));
    visit(property<&VelWbVecMediaItem::category>("category"));
    visit(property<&VelWbVecMediaItem::title>("title"));
    visit(property<&VelWbVecMediaItem::cover>("cover"));
  }
};

/// Publishes a participant's list of media: type "mediaList". Clients do not derive classes from
/// it.
/// @ingroup media_lists
class VELWHITEBOARD_EXPORT VelWbVecMediaList : public VectorOf<VelWbVecMediaList, VelWbBaseVector> {
 public:
  /// The user to whom the list belongs.
  std::int64_t owner = 0;
  /// The items in display order; copies of the list share them.
  std::optional<std::vector<std::shared_ptr<VelWbVecMediaItem>>> list;

  static const RecordClass& ownClass();  ///< What describes this class to generic code.

  /// Takes over the other list's items, all of them in place of its own; nothing when the other has
  /// no `list`. No other field changes. `type` and `ID` are not compared.
  /// @throws std::bad_alloc with nothing changed.
  void merge(const VelWbVecMediaList& other);

  /// The class of the elements of each property that is a list of records: "list" holds media
  /// items.
  static std::map<std::string, const RecordClass*> modelContainerPropertyGenericClass();

  /// Calls `visit` with each property in turn, the base's first.
  template <class Visitor>
  static constexpr void properties(Visitor&& visit) {
    VelWbBaseVector::properties(visit);
    visit(property<&VelWbVecMediaList::owner>("owner"));
    visit(property<&VelWbVecMediaList::list>("list"));
  }

 protected:
  /// Leaves out `owner`; the items are shared, not copied.
  std::shared_ptr<Record> makeMutableCopy() const override;
};

}  // namespace VelWhiteBoard
