#include "VelWhiteBoard/storage/lists/snap_list.h"

#include <new>
#include <utility>

#include "VelWhiteBoard/vectors/vector_defines.h"

namespace VelWhiteBoard {

SnapList::SnapList(SharedVectorList list) : list_(std::move(list)) { ensureIndex(); }

void SnapList::attach(UnnamedEntries& unnamed) {
  if (index_) index_->attach(unnamed, *this);
  register_ = &unnamed;
}

void SnapList::detach() noexcept {
  if (index_) index_->detach();
  register_ = nullptr;
}

void SnapList::ensureIndex() {
  if (index_) return;
  auto index = std::make_unique<SnapIndex>();
  for (Place place = 0; place < list_.endPlace(); ++place) {
    if (const VectorPtr& entry = list_.at(place)) index->add(*entry, place);
  }
  if (register_ != nullptr) index->attach(*register_, *this);
  index_ = std::move(index);
}

void SnapList::push_back(const VectorPtr& vector) {
  list_.reserveBack();
  index_->add(*vector, list_.endPlace());
  list_.pushReserved(vector);
}

void SnapList::undoPush() noexcept {
  const Place place = list_.endPlace() - 1;
  if (index_) index_->remove(*list_.at(place), place);
  list_.eraseReserved(place);
  // The next entry would stand where packing has found a gap.
  if (list_.endPlace() <= packFrom_) isPacking_ = false;
}

void SnapList::pop_back() {
  list_.reserveErase(list_.endPlace() - 1);
  undoPush();
}

void SnapList::undoPop(Place place, VectorPtr vector) noexcept {
  list_.putBack(place, std::move(vector));
  if (!index_) return;
  try {
    index_->add(*list_.at(place), place);
  } catch (const std::bad_alloc&) {
    dropIndex();
  }
}

void SnapList::reserveErase(const std::vector<Place>& places) {
  for (const Place place : places) list_.reserveErase(place);
}

void SnapList::eraseReserved(const std::vector<Place>& places) noexcept {
  for (const Place place : places) {
    if (index_) index_->remove(*list_.at(place), place);
    list_.eraseReserved(place);
  }
  if (index_) packSome();
}

SnapList::Contents SnapList::clear() noexcept {
  if (index_) index_->detach();
  isPacking_ = false;
  return {std::move(list_), std::move(index_)};
}

void SnapList::rollBack(SharedVectorList earlier) noexcept {
  dropIndex();
  isPacking_ = false;
  list_ = std::move(earlier);
}

void SnapList::hasBeenNamed(const VelWbBaseVector& vector) noexcept {
  if (!index_) return;
  if (!vector.ID) return dropIndex();
  try {
    index_->hasBeenNamed(vector);
  } catch (const std::bad_alloc&) {
    dropIndex();
  }
}

bool SnapList::isAt(Place place, std::string_view identifier) const noexcept {
  // The identifier itself is compared: hashes collide, and a client may have changed an entry.
  if (place >= list_.endPlace()) return false;
  const VectorPtr& entry = list_.at(place);
  return entry && entry->ID == identifier;
}

SnapList::Place SnapList::findFirst(std::string_view identifier) const {
  return index_->first(identifier, kNowhere, [&](Place place) { return isAt(place, identifier); });
}

SnapList::Place SnapList::findLast(std::string_view identifier) const {
  return index_->last(identifier, kNowhere, [&](Place place) { return isAt(place, identifier); });
}

SnapList::Place SnapList::firstMagnifier() const noexcept {
  for (const Place place : index_->magnifiers()) {
    if (place >= list_.endPlace()) continue;
    const VectorPtr& entry = list_.at(place);
    if (entry && entry->type == VelWBVectorStrMagnifier) return place;
  }
  return kNowhere;
}

std::vector<SnapList::Place> SnapList::findEqual(const VelWbBaseVector& entry) const {
  std::vector<Place> places;
  const auto addIfEqual = [&](Place place) {
    if (place >= list_.endPlace()) return false;
    const VectorPtr& other = list_.at(place);
    if (other && other->isEqual(entry)) places.push_back(place);
    return false;  // goes on to the next
  };
  if (entry.ID) {
    // Equal vectors have equal identifiers, so the index leads to all of them.
    index_->first(*entry.ID, kNowhere, addIfEqual);
  } else {
    for (Place place = 0; place < list_.endPlace(); ++place) addIfEqual(place);
  }
  return places;
}

void SnapList::dropIndex() noexcept {
  if (index_) index_->detach();
  index_.reset();
}

void SnapList::packSome() noexcept {
  if (!isPacking_) {
    if (!list_.isSparse()) return;
    isPacking_ = true;
    packTo_ = 0;
    packFrom_ = 0;
  }
  constexpr int kPlacesAtATime = 16;
  try {
    for (int i = 0; i < kPlacesAtATime && isPacking_; ++i) isPacking_ = packNext();
  } catch (const std::bad_alloc&) {
    // Packing only saves time and memory. The next removal tries again.
  }
}

bool SnapList::packNext() {
  if (packFrom_ >= list_.endPlace()) {
    list_.dropUnused();
    return false;
  }
  if (list_.at(packFrom_)) {
    if (packTo_ != packFrom_) {
      list_.moveToGap(packFrom_, packTo_);
      index_->move(*list_.at(packTo_), packFrom_, packTo_);
    }
    ++packTo_;
  }
  ++packFrom_;
  return true;
}

}  // namespace VelWhiteBoard
