#include "VelWhiteBoard/storage/page_list.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace VelWhiteBoard {

PageList::PageList(const VectorList& vectors) {
  for (const VectorPtr& vector : vectors) {
    if (vector) push_back(vector);
  }
}

PageList::PageList(const PageList& other)
    : blocks_(other.blocks_), end_(other.end_), size_(other.size_) {
  // From now on neither list may change a block that both have.
  for (Part<Block>& part : blocks_) part.own = false;
  for (Part<Block>& part : other.blocks_) part.own = false;
}

PageList::PageList(PageList&& other) noexcept
    : blocks_(std::exchange(other.blocks_, {})),
      end_(std::exchange(other.end_, 0)),
      size_(std::exchange(other.size_, 0)) {}

PageList& PageList::operator=(PageList other) noexcept {
  std::swap(blocks_, other.blocks_);
  std::swap(end_, other.end_);
  std::swap(size_, other.size_);
  return *this;
}

const VectorPtr& PageList::at(Place place) const noexcept {
  const Block& block = *blocks_[place / kBlockEntries].shared;
  return (*block[place / kChunkEntries % kBlockChunks].shared)[place % kChunkEntries];
}

PageList::Block& PageList::ownBlock(std::size_t index) {
  Part<Block>& part = blocks_[index];
  if (!part.own) {
    auto copy = std::make_shared<Block>();
    copy->reserve(kBlockChunks);
    *copy = *part.shared;
    for (Part<Chunk>& chunk : *copy) chunk.own = false;
    part = {std::move(copy), true};
  }
  return *part.shared;
}

PageList::Chunk& PageList::ownChunk(Place place) {
  Part<Chunk>& part = ownBlock(place / kBlockEntries)[place / kChunkEntries % kBlockChunks];
  if (!part.own) {
    auto copy = std::make_shared<Chunk>();
    copy->reserve(kChunkEntries);
    *copy = *part.shared;
    part = {std::move(copy), true};
  }
  return *part.shared;
}

PageList::Place PageList::push_back(VectorPtr vector) {
  if (end_ % kBlockEntries == 0) blocks_.push_back({std::make_shared<Block>(), true});
  if (end_ % kChunkEntries == 0) {
    auto chunk = std::make_shared<Chunk>();
    if (end_ > 0) chunk->reserve(kChunkEntries);  // the first one grows: most lists are short
    ownBlock(end_ / kBlockEntries).push_back({std::move(chunk), true});
  }
  ownChunk(end_).push_back(std::move(vector));
  ++size_;
  return end_++;
}

void PageList::replace(Place place, VectorPtr vector) {
  ownChunk(place)[place % kChunkEntries] = std::move(vector);
}

void PageList::erase(Place place) {
  VectorPtr& entry = ownChunk(place)[place % kChunkEntries];
  if (!entry) return;
  entry.reset();
  --size_;
  // The last place always holds an entry.
  while (end_ > 0 && !at(end_ - 1)) dropLastEntry();
}

void PageList::dropLastEntry() {
  --end_;
  ownChunk(end_).pop_back();
  if (end_ % kChunkEntries == 0) ownBlock(end_ / kBlockEntries).pop_back();
  if (end_ % kBlockEntries == 0) blocks_.pop_back();
}

bool PageList::isSparse() const noexcept {
  constexpr std::size_t kGapsWorthPacking = 256;
  const std::size_t gaps = end_ - size_;
  return gaps > kGapsWorthPacking && gaps > size_;
}

void PageList::pack() {
  PageList packed;
  forEach([&packed](const VectorPtr& vector) { packed.push_back(vector); });
  *this = std::move(packed);
}

VectorList PageList::vectors() const {
  VectorList vectors;
  vectors.reserve(size_);
  forEach([&vectors](const VectorPtr& vector) { vectors.push_back(vector); });
  return vectors;
}

SnapList::SnapList(PageList list) : list_(std::move(list)) { buildIndex(); }

void SnapList::push_back(const VectorPtr& vector) {
  const Place place = list_.push_back(vector);
  addToIndex(*vector, place);
}

void SnapList::erase(Place place) {
  removeFromIndex(*list_.at(place), place);
  list_.erase(place);
  if (!list_.isSparse()) return;
  list_.pack();
  buildIndex();
}

SnapList::Place SnapList::findFirst(std::string_view identifier) const {
  const std::vector<Place> found = places(identifier);
  return found.empty() ? kNowhere : *std::min_element(found.begin(), found.end());
}

SnapList::Place SnapList::findLast(std::string_view identifier) const {
  const std::vector<Place> found = places(identifier);
  return found.empty() ? kNowhere : *std::max_element(found.begin(), found.end());
}

void SnapList::eraseEqual(const VelWbBaseVector& vector) {
  // Equal vectors have equal identifiers, so the index leads to all of them.
  std::vector<Place> candidates;
  if (vector.ID) {
    candidates = places(*vector.ID);
  } else {
    for (Place place = 0; place < list_.endPlace(); ++place) candidates.push_back(place);
  }
  std::erase_if(candidates, [&](Place place) {
    const VectorPtr& entry = list_.at(place);
    return !entry || !entry->isEqual(vector);
  });
  // Gaps are closed only when all are out: closing them moves the others.
  for (const Place place : candidates) {
    if (place >= list_.endPlace() || !list_.at(place)) continue;
    removeFromIndex(*list_.at(place), place);
    list_.erase(place);
  }
  if (!list_.isSparse()) return;
  list_.pack();
  buildIndex();
}

void SnapList::hasBeenNamed(const VelWbBaseVector& vector) {
  const auto [first, last] = unnamed_.equal_range(&vector);
  std::for_each(first, last, [&](const auto& entry) { addToIndex(vector, entry.second); });
  unnamed_.erase(first, last);
}

std::vector<SnapList::Place> SnapList::places(std::string_view identifier) const {
  std::vector<Place> found;
  const auto [first, last] = index_.equal_range(std::hash<std::string_view>()(identifier));
  for (auto each = first; each != last; ++each) {
    // The identifier is compared, too: hashes collide, and a client may have changed an entry.
    const Place place = each->second;
    if (place >= list_.endPlace()) continue;
    const VectorPtr& entry = list_.at(place);
    if (entry && entry->ID == identifier) found.push_back(place);
  }
  return found;
}

void SnapList::buildIndex() {
  index_.clear();
  unnamed_.clear();
  for (Place place = 0; place < list_.endPlace(); ++place) {
    if (const VectorPtr& entry = list_.at(place)) addToIndex(*entry, place);
  }
}

void SnapList::addToIndex(const VelWbBaseVector& vector, Place place) {
  if (vector.ID) {
    index_.emplace(std::hash<std::string_view>()(*vector.ID), place);
  } else {
    unnamed_.emplace(&vector, place);
  }
}

void SnapList::removeFromIndex(const VelWbBaseVector& vector, Place place) {
  const auto remove = [place](auto& places, const auto& key) {
    const auto [first, last] = places.equal_range(key);
    const auto found =
        std::find_if(first, last, [place](const auto& entry) { return entry.second == place; });
    if (found != last) places.erase(found);
  };
  if (vector.ID) {
    remove(index_, std::hash<std::string_view>()(*vector.ID));
  } else {
    remove(unnamed_, &vector);
  }
}

}  // namespace VelWhiteBoard
