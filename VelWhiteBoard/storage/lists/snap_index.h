/// @file
/// Where the entries of a snap list stand, by identifier.
#pragma once

#include <cstddef>
#include <functional>
#include <iterator>
#include <set>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "VelWhiteBoard/storage/lists/shared_vector_list.h"

namespace VelWhiteBoard {

class SnapList;

/// The entries without identifier of all snap lists of a storage, each with the list that it stands
/// in: naming a vector concerns these lists and no others.
using UnnamedEntries = std::unordered_multimap<const VelWbBaseVector*, SnapList*>;

/// The places of a list's entries. Keeps hashes instead of identifiers, because the identifiers
/// stand in the entries; so every place that it answers is one where the entry *may* stand, and the
/// caller compares.
///
/// Failure: an operation that throws `std::bad_alloc` has changed nothing.
class SnapIndex {
 public:
  using Place = SharedVectorList::Place;

  SnapIndex() = default;
  ~SnapIndex() { detach(); }
  SnapIndex(const SnapIndex&) = delete;
  SnapIndex& operator=(const SnapIndex&) = delete;

  /// Enters the entries without identifier in `unnamed`, which must outlive the index, from now on.
  /// @param list whose index this is.
  void attach(UnnamedEntries& unnamed, SnapList& list);
  /// Ends that.
  void detach() noexcept;

  void add(const VelWbBaseVector& vector, Place place);
  void remove(const VelWbBaseVector& vector, Place place) noexcept;
  /// The entry stands elsewhere now; no other entry stands between the two places.
  void move(const VelWbBaseVector& vector, Place from, Place to) noexcept;
  /// An entry without identifier has been given its identifier.
  void hasBeenNamed(const VelWbBaseVector& vector);

  /// The first place with this identifier that `accepts` agrees to; `none` when there is no such.
  template <class Accepts>
  Place first(std::string_view identifier, Place none, const Accepts& accepts) const;
  /// The last one.
  template <class Accepts>
  Place last(std::string_view identifier, Place none, const Accepts& accepts) const;
  /// The places of entries of type "magnifier", in order.
  const std::set<Place>& magnifiers() const { return magnifiers_; }

 private:
  using Key = std::pair<std::size_t, Place>;

  static std::size_t hashOf(std::string_view identifier) noexcept {
    return std::hash<std::string_view>()(identifier);
  }
  void addNamed(std::size_t hash, Place place);
  void addUnnamed(const VelWbBaseVector& vector, Place place);
  void removeNamed(std::size_t hash, Place place) noexcept;
  void removeUnnamed(const VelWbBaseVector& vector, Place place) noexcept;
  /// Takes one entry out of the register.
  void unregister(const VelWbBaseVector* vector) noexcept;

  /// Hash of an identifier -> the first of the places where it stands.
  std::unordered_map<std::size_t, Place> first_;
  /// The other places, of identifiers that stand at several.
  std::set<Key> others_;
  std::set<Place> magnifiers_;
  /// Entry without an identifier -> its place.
  std::unordered_multimap<const VelWbBaseVector*, Place> unnamed_;
  UnnamedEntries* register_ = nullptr;
  SnapList* list_ = nullptr;
};

template <class Accepts>
SnapIndex::Place SnapIndex::first(std::string_view identifier, Place none,
                                  const Accepts& accepts) const {
  const std::size_t hash = hashOf(identifier);
  const auto found = first_.find(hash);
  if (found == first_.end()) return none;
  if (accepts(found->second)) return found->second;
  auto each = others_.lower_bound({hash, 0});
  for (; each != others_.end() && each->first == hash; ++each) {
    if (accepts(each->second)) return each->second;
  }
  return none;
}

template <class Accepts>
SnapIndex::Place SnapIndex::last(std::string_view identifier, Place none,
                                 const Accepts& accepts) const {
  const std::size_t hash = hashOf(identifier);
  const auto found = first_.find(hash);
  if (found == first_.end()) return none;
  auto each = others_.upper_bound({hash, static_cast<Place>(-1)});
  while (each != others_.begin() && std::prev(each)->first == hash) {
    --each;
    if (accepts(each->second)) return each->second;
  }
  return accepts(found->second) ? found->second : none;
}

}  // namespace VelWhiteBoard
