/// @file
/// A page's present state.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "VelWhiteBoard/storage/lists/shared_vector_list.h"
#include "VelWhiteBoard/storage/lists/snap_index.h"

namespace VelWhiteBoard {

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

  /// What a list held before it was cleared, to be dropped where time does not matter.
  struct Contents {
    SharedVectorList list;
    std::unique_ptr<SnapIndex> index;
  };

  SnapList() : index_(std::make_unique<SnapIndex>()) {}
  explicit SnapList(SharedVectorList list);
  SnapList(const SnapList&) = delete;
  SnapList& operator=(const SnapList&) = delete;

  /// Enters the entries without identifier in `unnamed`, which must outlive the list, from now on.
  void attach(UnnamedEntries& unnamed);
  /// Ends that.
  void detach() noexcept;

  const SharedVectorList& list() const noexcept { return list_; }
  bool empty() const noexcept { return list_.empty(); }
  const VectorPtr& back() const noexcept { return list_.back(); }

  /// To be called before the operations below once a `noexcept` operation may have dropped the
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
  /// Takes the entries at these places out, after `reserveErase`. Other entries may get new places.
  void eraseReserved(const std::vector<Place>& places) noexcept;
  /// Empties the list.
  Contents clear() noexcept;
  /// Puts an earlier state of the list in its place.
  void rollBack(SharedVectorList earlier) noexcept;

  /// To be called when an entry's identifier, absent before, has been given or taken back.
  void hasBeenNamed(const VelWbBaseVector& vector) noexcept;

  /// The place of the first entry whose `ID` is `identifier`.
  Place findFirst(std::string_view identifier) const;
  /// The place of the last one.
  Place findLast(std::string_view identifier) const;
  /// The place of the first entry whose type is "magnifier".
  Place firstMagnifier() const noexcept;
  /// The places of all entries that are equal to `entry`, which is an entry itself.
  std::vector<Place> findEqual(const VelWbBaseVector& entry) const;

 private:
  bool isAt(Place place, std::string_view identifier) const noexcept;
  void dropIndex() noexcept;
  void packSome() noexcept;
  bool packNext();

  SharedVectorList list_;
  /// Null: to be built anew.
  std::unique_ptr<SnapIndex> index_;
  UnnamedEntries* register_ = nullptr;
  // Packing goes on a little with each entry that is taken out, so that no call takes long. It has
  // come as far as `packFrom_`; from `packTo_` until there, there are gaps only.
  bool isPacking_ = false;
  Place packTo_ = 0;
  Place packFrom_ = 0;
};

}  // namespace VelWhiteBoard
