/// @file
/// A page's list of vectors, made to be captured at any instant at next to no cost.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "VelWhiteBoard/vectors/base_vector.h"

namespace VelWhiteBoard {

/// Vectors in order. Copying takes a step for each 65,536 entries, because copies share their
/// entries until one of them changes; that is how a save takes a page as it is while the pen goes
/// on.
///
/// An entry keeps its place (a number) until `pack()`; a removed one leaves a gap.
///
/// Threads: none of its own. Distinct lists may be used from distinct threads, copies included.
class PageList {
 public:
  using Place = std::size_t;

  PageList() = default;
  explicit PageList(const VectorList& vectors);

  /// Number of entries.
  std::size_t size() const noexcept { return size_; }
  bool empty() const noexcept { return size_ == 0; }
  /// One beyond the place of the last entry.
  Place endPlace() const noexcept { return end_; }

  /// The entry at a place; null for a gap.
  const VectorPtr& at(Place place) const noexcept;
  /// The last entry; the list must not be empty.
  const VectorPtr& back() const noexcept { return at(end_ - 1); }

  /// Adds an entry, which must not be null; answers its place.
  Place push_back(VectorPtr vector);
  /// Puts another entry, which must not be null, in the place of one.
  void replace(Place place, VectorPtr vector);
  /// Takes the entry at a place out; nothing for a gap.
  void erase(Place place);

  /// Whether so much of the list is gaps that packing it pays.
  bool isSparse() const noexcept;
  /// Closes the gaps; every entry may get a new place.
  void pack();

  VectorList vectors() const;

  /// Calls `visit` with each entry, first to last.
  template <class Visit>
  void forEach(const Visit& visit) const {
    for (Place place = 0; place < end_; ++place) {
      if (const VectorPtr& vector = at(place)) visit(vector);
    }
  }

  PageList(const PageList& other);
  PageList(PageList&& other) noexcept;
  PageList& operator=(PageList other) noexcept;
  ~PageList() = default;

 private:
  static constexpr std::size_t kChunkEntries = 256;
  static constexpr std::size_t kBlockChunks = 256;
  static constexpr std::size_t kBlockEntries = kBlockChunks * kChunkEntries;

  /// A part that copies of a list share until one of them is about to change it.
  template <class T>
  struct Part {
    std::shared_ptr<T> shared;
    /// Whether no copy of what holds this reference has it, too.
    bool own;
  };
  using Chunk = std::vector<VectorPtr>;
  using Block = std::vector<Part<Chunk>>;

  Block& ownBlock(std::size_t index);
  Chunk& ownChunk(Place place);
  void dropLastEntry();

  mutable std::vector<Part<Block>> blocks_;
  Place end_ = 0;
  std::size_t size_ = 0;
};

/// A page's present state: a list with an index by identifier, so that no search walks it.
class SnapList {
 public:
  using Place = PageList::Place;
  static constexpr Place kNowhere = static_cast<Place>(-1);

  SnapList() = default;
  explicit SnapList(PageList list);

  const PageList& list() const noexcept { return list_; }
  bool empty() const noexcept { return list_.empty(); }
  const VectorPtr& back() const noexcept { return list_.back(); }

  void push_back(const VectorPtr& vector);
  void pop_back() { erase(list_.endPlace() - 1); }
  void erase(Place place);
  void clear() { *this = SnapList(); }
  /// To be called when a vector that had no identifier has been given one: it may be an entry.
  void hasBeenNamed(const VelWbBaseVector& vector);

  /// The place of the first entry whose `ID` is `identifier`.
  Place findFirst(std::string_view identifier) const;
  /// The place of the last one.
  Place findLast(std::string_view identifier) const;
  /// Takes out every entry that is equal to `vector`, which is an entry itself.
  void eraseEqual(const VelWbBaseVector& vector);

 private:
  /// Places of the entries with this identifier, in no order.
  std::vector<Place> places(std::string_view identifier) const;
  void buildIndex();
  void addToIndex(const VelWbBaseVector& vector, Place place);
  void removeFromIndex(const VelWbBaseVector& vector, Place place);

  PageList list_;
  /// Hash of an entry's identifier -> its place. Hashes, because identifiers stand in the entries.
  std::unordered_multimap<std::size_t, Place> index_;
  /// Entry without an identifier -> its place.
  std::unordered_multimap<const VelWbBaseVector*, Place> unnamed_;
};

}  // namespace VelWhiteBoard
