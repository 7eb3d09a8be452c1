#include "VelWhiteBoard/storage/lists/snap_index.h"

#include <algorithm>

#include "VelWhiteBoard/vectors/vector_defines.h"

namespace VelWhiteBoard {

namespace {

bool isMagnifier(const VelWbBaseVector& vector) noexcept {
  return vector.type == VelWBVectorStrMagnifier;
}

}  // namespace

void SnapIndex::attach(UnnamedEntries& unnamed, SnapList& list) {
  register_ = &unnamed;
  list_ = &list;
  auto next = unnamed_.begin();
  try {
    for (; next != unnamed_.end(); ++next) unnamed.emplace(next->first, list_);
  } catch (...) {
    for (auto each = unnamed_.begin(); each != next; ++each) unregister(each->first);
    register_ = nullptr;
    throw;
  }
}

void SnapIndex::detach() noexcept {
  if (register_ == nullptr) return;
  for (const auto& entry : unnamed_) unregister(entry.first);
  register_ = nullptr;
}

void SnapIndex::unregister(const VelWbBaseVector* vector) noexcept {
  if (register_ == nullptr) return;
  const auto [first, last] = register_->equal_range(vector);
  const auto found = std::find_if(first, last, [this](const auto& e) { return e.second == list_; });
  if (found != last) register_->erase(found);
}

void SnapIndex::add(const VelWbBaseVector& vector, Place place) {
  const bool magnifies = isMagnifier(vector);
  if (magnifies) magnifiers_.insert(place);
  try {
    vector.ID ? addNamed(hashOf(*vector.ID), place) : addUnnamed(vector, place);
  } catch (...) {
    if (magnifies) magnifiers_.erase(place);
    throw;
  }
}

void SnapIndex::addNamed(std::size_t hash, Place place) {
  const auto [first, isNew] = first_.try_emplace(hash, place);
  if (isNew) return;
  others_.insert({hash, std::max(place, first->second)});
  first->second = std::min(place, first->second);
}

void SnapIndex::addUnnamed(const VelWbBaseVector& vector, Place place) {
  const auto added = unnamed_.emplace(&vector, place);
  if (register_ == nullptr) return;
  try {
    register_->emplace(&vector, list_);
  } catch (...) {
    unnamed_.erase(added);
    throw;
  }
}

void SnapIndex::remove(const VelWbBaseVector& vector, Place place) noexcept {
  magnifiers_.erase(place);
  vector.ID ? removeNamed(hashOf(*vector.ID), place) : removeUnnamed(vector, place);
}

void SnapIndex::removeNamed(std::size_t hash, Place place) noexcept {
  const auto first = first_.find(hash);
  if (first == first_.end()) return;
  if (first->second != place) {
    others_.erase({hash, place});
    return;
  }
  const auto next = others_.lower_bound({hash, 0});
  if (next == others_.end() || next->first != hash) {
    first_.erase(first);
    return;
  }
  first->second = next->second;
  others_.erase(next);
}

void SnapIndex::removeUnnamed(const VelWbBaseVector& vector, Place place) noexcept {
  const auto [first, last] = unnamed_.equal_range(&vector);
  for (auto each = first; each != last; ++each) {
    if (each->second != place) continue;
    unnamed_.erase(each);
    unregister(&vector);
    return;
  }
}

void SnapIndex::move(const VelWbBaseVector& vector, Place from, Place to) noexcept {
  // Elements are taken out and put back as they are, which needs no memory.
  if (auto magnifier = magnifiers_.extract(from)) {
    magnifier.value() = to;
    magnifiers_.insert(std::move(magnifier));
  }
  if (!vector.ID) {
    const auto [first, last] = unnamed_.equal_range(&vector);
    const auto found = std::find_if(first, last, [&](const auto& e) { return e.second == from; });
    if (found != last) found->second = to;
    return;
  }
  const std::size_t hash = hashOf(*vector.ID);
  if (const auto first = first_.find(hash); first != first_.end() && first->second == from) {
    first->second = to;
  } else if (auto other = others_.extract({hash, from})) {
    other.value().second = to;
    others_.insert(std::move(other));
  }
}

void SnapIndex::hasBeenNamed(const VelWbBaseVector& vector) {
  const auto [first, last] = unnamed_.equal_range(&vector);
  for (auto each = first; each != last; ++each) addNamed(hashOf(*vector.ID), each->second);
  for (auto each = first; each != last; ++each) unregister(&vector);
  unnamed_.erase(first, last);
}

}  // namespace VelWhiteBoard
