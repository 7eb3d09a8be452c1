#include "VelWhiteBoard/storage/snap_list.h"

#include <functional>
#include <iterator>
#include <new>

#include "VelWhiteBoard/vectors/vector_defines.h"

namespace VelWhiteBoard {

namespace {

std::size_t hashOf(std::string_view identifier) noexcept {
  return std::hash<std::string_view>()(identifier);
}

bool isMagnifier(const VelWbBaseVector& vector) noexcept {
  return vector.type == VelWBVectorStrMagnifier;
}

void uncount(UnnamedEntries& entries, const VelWbBaseVector* vector) noexcept {
  const auto found = entries.find(vector);
  if (found != entries.end() && --found->second == 0) entries.erase(found);
}

}  // namespace

SnapList::SnapList(SharedVectorList list) : list_(std::move(list)) { buildIndex(); }

void SnapList::attach(UnnamedEntries& unnamed) {
  auto next = unnamed_.begin();
  try {
    for (; next != unnamed_.end(); ++next) ++unnamed[next->first];
  } catch (...) {
    for (auto each = unnamed_.begin(); each != next; ++each) uncount(unnamed, each->first);
    throw;
  }
  counted_ = &unnamed;
}

void SnapList::detach() noexcept {
  if (counted_ == nullptr) return;
  for (const auto& entry : unnamed_) uncount(*counted_, entry.first);
  counted_ = nullptr;
}

void SnapList::ensureIndex() {
  if (!isIndexed_) buildIndex();
}

void SnapList::push_back(const VectorPtr& vector) {
  list_.reserveBack();
  addToIndex(*vector, list_.endPlace());
  list_.pushReserved(vector);
}

void SnapList::undoPush() noexcept {
  const Place place = list_.endPlace() - 1;
  removeFromIndex(*list_.at(place), place);
  list_.eraseReserved(place);
}

void SnapList::pop_back() {
  list_.reserveErase(list_.endPlace() - 1);
  undoPush();
}

void SnapList::undoPop(Place place, VectorPtr vector) noexcept {
  list_.putBack(place, std::move(vector));
  if (!isIndexed_) return;
  try {
    addToIndex(*list_.at(place), place);
  } catch (const std::bad_alloc&) {
    dropIndex();
  }
}

void SnapList::reserveErase(const std::vector<Place>& places) {
  for (const Place place : places) list_.reserveErase(place);
}

void SnapList::eraseReserved(const std::vector<Place>& places) noexcept {
  for (const Place place : places) {
    removeFromIndex(*list_.at(place), place);
    list_.eraseReserved(place);
  }
  packIfSparse();
}

SharedVectorList SnapList::clear() noexcept {
  SharedVectorList held = std::move(list_);
  dropIndex();
  isIndexed_ = true;
  return held;
}

void SnapList::rollBack(SharedVectorList earlier) noexcept {
  dropIndex();
  list_ = std::move(earlier);
}

void SnapList::hasBeenNamed(const VelWbBaseVector& vector) noexcept {
  if (!vector.ID) return dropIndex();
  if (!isIndexed_) return;
  const auto [first, last] = unnamed_.equal_range(&vector);
  if (first == last) return;
  try {
    for (auto each = first; each != last; ++each) addNamed(hashOf(*vector.ID), each->second);
  } catch (const std::bad_alloc&) {
    return dropIndex();
  }
  if (counted_ != nullptr) {
    for (auto each = first; each != last; ++each) uncount(*counted_, &vector);
  }
  unnamed_.erase(first, last);
}

bool SnapList::isAt(Place place, std::string_view identifier) const noexcept {
  // The identifier itself is compared: hashes collide, and a client may have changed an entry.
  if (place >= list_.endPlace()) return false;
  const VectorPtr& entry = list_.at(place);
  return entry && entry->ID == identifier;
}

SnapList::Place SnapList::findFirst(std::string_view identifier) const noexcept {
  const std::size_t hash = hashOf(identifier);
  const auto first = index_.find(hash);
  if (first == index_.end()) return kNowhere;
  if (isAt(first->second, identifier)) return first->second;
  for (auto each = others_.lower_bound({hash, 0}); each != others_.end() && each->first == hash;
       ++each) {
    if (isAt(each->second, identifier)) return each->second;
  }
  return kNowhere;
}

SnapList::Place SnapList::findLast(std::string_view identifier) const noexcept {
  const std::size_t hash = hashOf(identifier);
  const auto first = index_.find(hash);
  if (first == index_.end()) return kNowhere;
  auto each = others_.upper_bound({hash, kNowhere});
  while (each != others_.begin() && std::prev(each)->first == hash) {
    --each;
    if (isAt(each->second, identifier)) return each->second;
  }
  return isAt(first->second, identifier) ? first->second : kNowhere;
}

SnapList::Place SnapList::firstMagnifier() const noexcept {
  for (const Place place : magnifiers_) {
    if (place < list_.endPlace() && list_.at(place) && isMagnifier(*list_.at(place))) return place;
  }
  return kNowhere;
}

std::vector<SnapList::Place> SnapList::findEqual(const VelWbBaseVector& entry) const {
  std::vector<Place> places;
  const auto addIfEqual = [&](Place place) {
    if (place >= list_.endPlace()) return;
    const VectorPtr& other = list_.at(place);
    if (other && other->isEqual(entry)) places.push_back(place);
  };
  if (!entry.ID) {
    for (Place place = 0; place < list_.endPlace(); ++place) addIfEqual(place);
    return places;
  }
  // Equal vectors have equal identifiers, so the index leads to all of them.
  const std::size_t hash = hashOf(*entry.ID);
  const auto first = index_.find(hash);
  if (first == index_.end()) return places;
  addIfEqual(first->second);
  for (auto each = others_.lower_bound({hash, 0}); each != others_.end() && each->first == hash;
       ++each) {
    addIfEqual(each->second);
  }
  return places;
}

void SnapList::buildIndex() {
  dropIndex();
  isIndexed_ = true;
  try {
    for (Place place = 0; place < list_.endPlace(); ++place) {
      if (const VectorPtr& entry = list_.at(place)) addToIndex(*entry, place);
    }
  } catch (...) {
    dropIndex();
    throw;
  }
}

void SnapList::dropIndex() noexcept {
  if (counted_ != nullptr) {
    for (const auto& entry : unnamed_) uncount(*counted_, entry.first);
  }
  index_.clear();
  others_.clear();
  magnifiers_.clear();
  unnamed_.clear();
  isIndexed_ = false;
}

void SnapList::addToIndex(const VelWbBaseVector& vector, Place place) {
  const bool magnifies = isMagnifier(vector);
  if (magnifies) magnifiers_.insert(place);
  try {
    vector.ID ? addNamed(hashOf(*vector.ID), place) : addUnnamed(vector, place);
  } catch (...) {
    if (magnifies) magnifiers_.erase(place);
    throw;
  }
}

void SnapList::addNamed(std::size_t hash, Place place) {
  const auto [first, isNew] = index_.try_emplace(hash, place);
  if (isNew) return;
  others_.insert({hash, std::max(place, first->second)});
  first->second = std::min(place, first->second);
}

void SnapList::addUnnamed(const VelWbBaseVector& vector, Place place) {
  const auto added = unnamed_.emplace(&vector, place);
  if (counted_ == nullptr) return;
  try {
    ++(*counted_)[&vector];
  } catch (...) {
    unnamed_.erase(added);
    throw;
  }
}

void SnapList::removeFromIndex(const VelWbBaseVector& vector, Place place) noexcept {
  if (!isIndexed_) return;
  magnifiers_.erase(place);
  vector.ID ? removeNamed(hashOf(*vector.ID), place) : removeUnnamed(vector, place);
}

void SnapList::removeNamed(std::size_t hash, Place place) noexcept {
  const auto first = index_.find(hash);
  if (first == index_.end()) return;
  if (first->second != place) {
    others_.erase({hash, place});
    return;
  }
  const auto next = others_.lower_bound({hash, 0});
  if (next == others_.end() || next->first != hash) {
    index_.erase(first);
    return;
  }
  first->second = next->second;
  others_.erase(next);
}

void SnapList::removeUnnamed(const VelWbBaseVector& vector, Place place) noexcept {
  const auto [first, last] = unnamed_.equal_range(&vector);
  for (auto each = first; each != last; ++each) {
    if (each->second != place) continue;
    unnamed_.erase(each);
    if (counted_ != nullptr) uncount(*counted_, &vector);
    return;
  }
}

void SnapList::packIfSparse() noexcept {
  if (!list_.isSparse()) return;
  try {
    list_.pack();
    buildIndex();
  } catch (const std::bad_alloc&) {
    // Packing only saves time and memory: the list is whole as it is, and `ensureIndex` tries
    // again.
  }
}

}  // namespace VelWhiteBoard
