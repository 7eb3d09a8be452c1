/// @file
/// A page's present state, with an index by identifier.
#pragma once

#include <cstddef>
#include <set>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "VelWhiteBoard/storage/shared_vector_list.h"

namespace VelWhiteBoard {

/// How many entries without identifier each vector is, in all snap lists of a storage: tells
/// quickly that naming a vector concerns no list.
using UnnamedEntries = std::unordered_map<const VelWbBaseVector*, std::size_t>;

/// A page's snap list: no search walks it.
///
/// Failure: an operation that throws `std::bad_alloc` has changed nothing; one that is `noexcept`
/// may drop the index, which the next `ensureIndex` builds anew.
///
/// Threads: as the storage guards it.
class SnapList {
 public:
  using Place = SharedVectorList::Place;
  static constexpr Place kNowhere = static_cast<Place>(-1);

  SnapList() = default;
  explicit SnapList(SharedVectorList list);
  ~SnapList() { detach(); }
  SnapList(const SnapList&) = delete;
  SnapList& operator=(const SnapList&) = delete;

  /// Counts the entries without identifier in `unnamed`, which must outlive the list, from now on.
  void attach(UnnamedEntries& unnamed);
  /// Ends that.
  void detach() noexcept;

  const SharedVectorList& list() const noexcept { return list_; }
  bool empty() const noexcept { return list_.empty(); }
  const VectorPtr& back() const noexcept { return list_.back(); }

  /// To be called before the operations below, once a `noexcept` operation may have dropped the
  /// index.
  void ensureIndex();

  void push_back(const VectorPtr& vector);
  /// Takes back what `push_back` has just added.
  void undoPush() noexcept;
  /// Takes the last entry out; `undoPop` with its place and itself brings it back, as long as
  /// nothing else has changed.
  void pop_back();
  void undoPop(Place place, VectorPtr vector) noexcept;
  /// Makes the entries at these places removable without memory.
  void reserveErase(const std::vector<Place>& places);
  /// Takes the entries at these places out, after `reserveErase`.
  void eraseReserved(const std::vector<Place>& places) noexcept;
  /// Empties the list; answers what it held, to be dropped where time does not matter.
  SharedVectorList clear() noexcept;
  /// Puts an earlier state of the list in its place.
  void rollBack(SharedVectorList earlier) noexcept;

  /// To be called when an entry's identifier, absent before, has been given or taken back.
  void hasBeenNamed(const VelWbBaseVector& vector) noexcept;

  /// The place of the first entry whose `ID` is `identifier`.
  Place findFirst(std::string_view identifier) const noexcept;
  /// The place of the last one.
  Place findLast(std::string_view identifier) const noexcept;
  /// The place of the first entry whose type is "magnifier".
  Place firstMagnifier() const noexcept;
  /// The places of all entries that are equal to `entry`, which is an entry itself.
  std::vector<Place> findEqual(const VelWbBaseVector& entry) const;

 private:
  using Key = std::pair<std::size_t, Place>;

  bool isAt(Place place, std::string_view identifier) const noexcept;
  void buildIndex();
  void dropIndex() noexcept;
  void addToIndex(const VelWbBaseVector& vector, Place place);
  void addNamed(std::size_t hash, Place place);
  void addUnnamed(const VelWbBaseVector& vector, Place place);
  void removeFromIndex(const VelWbBaseVector& vector, Place place) noexcept;
  void removeNamed(std::size_t hash, Place place) noexcept;
  void removeUnnamed(const VelWbBaseVector& vector, Place place) noexcept;
  void packIfSparse() noexcept;

  SharedVectorList list_;
  bool isIndexed_ = true;
  // Hashes instead of identifiers, because the identifiers stand in the entries.
  /// Hash of an identifier -> one of the places where it stands.
  std::unordered_map<std::size_t, Place> index_;
  /// The other places, of identifiers that stand at several.
  std::set<Key> others_;
  std::set<Place> magnifiers_;
  /// Entry without an identifier -> its place.
  std::unordered_multimap<const VelWbBaseVector*, Place> unnamed_;
  UnnamedEntries* counted_ = nullptr;
};

}  // namespace VelWhiteBoard
