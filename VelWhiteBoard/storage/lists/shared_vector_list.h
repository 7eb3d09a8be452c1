/// @file
/// A list of vectors that can be captured at any instant at next to no cost.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "VelWhiteBoard/vectors/base_vector.h"

namespace VelWhiteBoard {

/// Vectors in order. Copying takes one step for each 65,536 entries, because copies share their
/// entries until one of them changes. A save captures a page that way while the pen goes on.
///
/// An entry keeps its place (a number) until `moveToGap`; a removed entry leaves a gap.
///
/// Failure: an operation that throws `std::bad_alloc` has changed nothing. What cannot throw says
/// so; the two `reserve` operations make the change that follows them such an operation.
///
/// Threads: not synchronised. Distinct lists may be used from distinct threads, copies included.
class SharedVectorList {
 public:
  using Place = std::size_t;

  SharedVectorList() = default;
  /// Null elements are left out.
  explicit SharedVectorList(const VectorList& vectors);

  /// Number of entries.
  std::size_t size() const noexcept { return size_; }
  bool empty() const noexcept { return size_ == 0; }
  /// One beyond the place of the last entry.
  Place endPlace() const noexcept { return end_; }

  /// The entry at a place below `endPlace()`; null for a gap.
  const VectorPtr& at(Place place) const noexcept;
  /// The last entry; the list must not be empty.
  const VectorPtr& back() const noexcept { return at(end_ - 1); }

  /// Makes room for one more entry: the next `pushReserved` needs no memory.
  void reserveBack();
  /// Adds an entry, which must not be null; `reserveBack` must have been called since the list was
  /// last copied or changed. Answers its place.
  Place pushReserved(VectorPtr vector) noexcept;
  /// Adds an entry, which must not be null; answers its place.
  Place push_back(VectorPtr vector);

  /// Makes the entry at a place removable without memory, until the list is copied.
  void reserveErase(Place place) { static_cast<void>(ownChunk(place)); }
  /// Takes the entry at a place out, after `reserveErase`; a gap stays a gap.
  void eraseReserved(Place place) noexcept;
  /// Puts back an entry that `eraseReserved` took from the end, before anything else was changed.
  void putBack(Place place, VectorPtr vector) noexcept;
  /// Puts another entry, which must not be null, in the place of one.
  void replace(Place place, VectorPtr vector);

  /// Whether so much of the list is gaps that packing it pays.
  bool isSparse() const noexcept;
  /// Moves an entry to a gap before it; there must be nothing but gaps in between.
  void moveToGap(Place from, Place to);
  /// Frees memory beyond the end that the list alone refers to.
  void dropUnused() noexcept;

  /// All entries, in order.
  VectorList vectors() const;

  /// Calls `visit` with each entry, first to last.
  template <class Visit>
  void forEach(const Visit& visit) const {
    for (Place place = 0; place < end_; ++place) {
      if (const VectorPtr& vector = at(place)) visit(vector);
    }
  }

  SharedVectorList(const SharedVectorList& other);
  SharedVectorList(SharedVectorList&& other) noexcept;
  SharedVectorList& operator=(SharedVectorList other) noexcept;
  ~SharedVectorList() = default;

 private:
  static constexpr std::size_t kChunkEntries = 256;
  static constexpr std::size_t kBlockChunks = 256;
  static constexpr std::size_t kBlockEntries = kBlockChunks * kChunkEntries;

  /// A part that copies of a list share until one of them is about to change it.
  template <class T>
  struct Part {
    std::shared_ptr<T> shared;
    /// Whether this list alone refers to the part.
    bool own;
  };
  using Chunk = std::vector<VectorPtr>;
  using Block = std::vector<Part<Chunk>>;

  Block& ownBlock(std::size_t index);
  Chunk& ownChunk(Place place);
  VectorPtr& entry(Place place) noexcept;

  // Chunks may reach beyond the end; what stands there is null.
  mutable std::vector<Part<Block>> blocks_;
  /// The chunk that takes the next entry, once `reserveBack` has seen to it; null when unknown.
  mutable Chunk* tail_ = nullptr;
  Place end_ = 0;
  std::size_t size_ = 0;
};

}  // namespace VelWhiteBoard
