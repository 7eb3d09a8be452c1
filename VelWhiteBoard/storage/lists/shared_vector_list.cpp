#include "VelWhiteBoard/storage/lists/shared_vector_list.h"

#include <algorithm>
#include <utility>

namespace VelWhiteBoard {

SharedVectorList::SharedVectorList(const VectorList& vectors) {
  for (const VectorPtr& vector : vectors) {
    if (vector) push_back(vector);
  }
}

SharedVectorList::SharedVectorList(const SharedVectorList& other)
    : blocks_(other.blocks_), end_(other.end_), size_(other.size_) {
  // From now on neither list may change a block that both refer to.
  for (Part<Block>& part : blocks_) part.own = false;
  for (Part<Block>& part : other.blocks_) part.own = false;
  other.tail_ = nullptr;
}

SharedVectorList::SharedVectorList(SharedVectorList&& other) noexcept
    : blocks_(std::exchange(other.blocks_, {})),
      tail_(std::exchange(other.tail_, nullptr)),
      end_(std::exchange(other.end_, 0)),
      size_(std::exchange(other.size_, 0)) {}

SharedVectorList& SharedVectorList::operator=(SharedVectorList other) noexcept {
  std::swap(blocks_, other.blocks_);
  std::swap(tail_, other.tail_);
  std::swap(end_, other.end_);
  std::swap(size_, other.size_);
  return *this;
}

const VectorPtr& SharedVectorList::at(Place place) const noexcept {
  const Block& block = *blocks_[place / kBlockEntries].shared;
  return (*block[place / kChunkEntries % kBlockChunks].shared)[place % kChunkEntries];
}

VectorPtr& SharedVectorList::entry(Place place) noexcept {
  Block& block = *blocks_[place / kBlockEntries].shared;
  return (*block[place / kChunkEntries % kBlockChunks].shared)[place % kChunkEntries];
}

SharedVectorList::Block& SharedVectorList::ownBlock(std::size_t index) {
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

SharedVectorList::Chunk& SharedVectorList::ownChunk(Place place) {
  Part<Chunk>& part = ownBlock(place / kBlockEntries)[place / kChunkEntries % kBlockChunks];
  if (!part.own) {
    auto copy = std::make_shared<Chunk>();
    copy->reserve(kChunkEntries);
    *copy = *part.shared;
    part = {std::move(copy), true};
  }
  return *part.shared;
}

void SharedVectorList::reserveBack() {
  const std::size_t index = end_ % kChunkEntries;
  if (tail_ != nullptr && index != 0 && index < tail_->capacity()) return;
  // A block or chunk that is added here and then not used is beyond the end: no part of the list.
  const std::size_t blockIndex = end_ / kBlockEntries;
  if (blockIndex == blocks_.size()) blocks_.push_back({std::make_shared<Block>(), true});
  const std::size_t chunkIndex = end_ / kChunkEntries % kBlockChunks;
  if (Block& block = ownBlock(blockIndex); chunkIndex == block.size()) {
    block.push_back({std::make_shared<Chunk>(), true});
  }
  Chunk& chunk = ownChunk(end_);
  tail_ = &chunk;
  if (index < chunk.size() || chunk.size() < chunk.capacity()) return;
  // The first chunk grows step by step, because most lists are short.
  const std::size_t capacity = std::min(kChunkEntries, std::max<std::size_t>(1, chunk.size() * 2));
  chunk.reserve(end_ < kChunkEntries ? capacity : kChunkEntries);
}

SharedVectorList::Place SharedVectorList::pushReserved(VectorPtr vector) noexcept {
  if (const std::size_t index = end_ % kChunkEntries; index < tail_->size()) {
    (*tail_)[index] = std::move(vector);
  } else {
    tail_->push_back(std::move(vector));
  }
  ++size_;
  return end_++;
}

SharedVectorList::Place SharedVectorList::push_back(VectorPtr vector) {
  reserveBack();
  return pushReserved(std::move(vector));
}

void SharedVectorList::eraseReserved(Place place) noexcept {
  VectorPtr& erased = entry(place);
  if (!erased) return;
  erased.reset();
  --size_;
  // The last place always holds an entry.
  if (place + 1 == end_) tail_ = nullptr;
  while (end_ > 0 && !at(end_ - 1)) --end_;
}

void SharedVectorList::putBack(Place place, VectorPtr vector) noexcept {
  entry(place) = std::move(vector);
  ++size_;
  tail_ = nullptr;
  end_ = place + 1;
}

void SharedVectorList::replace(Place place, VectorPtr vector) {
  ownChunk(place)[place % kChunkEntries] = std::move(vector);
}

bool SharedVectorList::isSparse() const noexcept {
  constexpr std::size_t kGapsWorthPacking = 256;
  const std::size_t gaps = end_ - size_;
  return gaps > kGapsWorthPacking && gaps > size_;
}

void SharedVectorList::moveToGap(Place from, Place to) {
  reserveErase(from);
  reserveErase(to);
  entry(to) = std::move(entry(from));
  if (from + 1 != end_) return;
  end_ = to + 1;
  tail_ = nullptr;
}

void SharedVectorList::dropUnused() noexcept {
  tail_ = nullptr;
  blocks_.resize((end_ + kBlockEntries - 1) / kBlockEntries);
  if (blocks_.empty() || !blocks_.back().own) return;
  const std::size_t left = end_ - (blocks_.size() - 1) * kBlockEntries;
  blocks_.back().shared->resize((left + kChunkEntries - 1) / kChunkEntries);
}

VectorList SharedVectorList::vectors() const {
  VectorList vectors;
  vectors.reserve(size_);
  forEach([&vectors](const VectorPtr& vector) { vectors.push_back(vector); });
  return vectors;
}

}  // namespace VelWhiteBoard
