#include "VelWhiteBoard/foundation/path.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <new>
#include <vector>

namespace VelWhiteBoard {

namespace {

/// Numbers of an ordinary position: horizontal, vertical, time.
constexpr std::size_t kTriple = 3;
/// Positions of a full chunk: 24 KB, large enough that the list of chunks is short, small enough
/// that copying one never holds up a pen.
constexpr std::size_t kChunkPositions = 1024;

bool sameNumber(double left, double right) noexcept {
  return left == right || (std::isnan(left) && std::isnan(right));
}

}  // namespace

// Up to kChunkPositions triples, in one allocation with their counters.
//
// Several paths may share a chunk, each seeing the first positions of it. `used_` says how many
// slots have been given away: a path that stands exactly there may claim the next slot, every other
// one has to copy. Slots below a path's own size are never written again, so readers on other
// threads need no lock.
//
// Aligned so that the numbers follow it directly.
class alignas(double) Path::Chunk {
 public:
  static Chunk* make(std::size_t capacity) {
    void* memory = ::operator new(sizeof(Chunk) + capacity * kTriple * sizeof(double));
    return ::new (memory) Chunk(capacity);
  }

  void retain() noexcept { references_.fetch_add(1, std::memory_order_relaxed); }
  void release() noexcept {
    if (references_.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
    this->~Chunk();
    ::operator delete(this);
  }
  bool isUnique() const noexcept { return references_.load(std::memory_order_acquire) == 1; }

  std::size_t capacity() const noexcept { return capacity_; }
  double* slot(std::size_t index) noexcept { return numbers() + index * kTriple; }
  const double* slot(std::size_t index) const noexcept {
    return const_cast<Chunk*>(this)->slot(index);
  }

  /// Whether the path that sees `seen` positions may write the next one. `alone` when no other path
  /// shares the chunk.
  bool claim(std::size_t seen, bool alone) noexcept {
    if (seen >= capacity_) return false;
    auto expected = static_cast<std::uint32_t>(seen);
    if (alone) {
      used_.store(expected + 1, std::memory_order_relaxed);
      return true;
    }
    return used_.compare_exchange_strong(expected, expected + 1, std::memory_order_relaxed);
  }

  /// Copies the first `count` positions of those at `source`; this chunk must be fresh.
  void takeFirst(const double* source, std::size_t count) noexcept {
    std::copy_n(source, count * kTriple, slot(0));
    used_.store(static_cast<std::uint32_t>(count), std::memory_order_relaxed);
  }

 private:
  explicit Chunk(std::size_t capacity) noexcept : capacity_(static_cast<std::uint32_t>(capacity)) {}
  ~Chunk() = default;

  double* numbers() noexcept { return reinterpret_cast<double*>(this + 1); }

  std::atomic<std::uint32_t> references_{1};
  std::atomic<std::uint32_t> used_{0};
  std::uint32_t capacity_;
};

// Copied before it changes whenever more than one path refers to it.
class Path::Rest {
 public:
  Rest() = default;
  Rest(const Rest& other)
      : chunks(other.chunks), numbers(other.numbers), ends(other.ends), uneven(other.uneven) {}
  Rest& operator=(const Rest&) = delete;
  ~Rest() = default;

  void retain() noexcept { references_.fetch_add(1, std::memory_order_relaxed); }
  void release() noexcept {
    if (references_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
  }
  bool isUnique() const noexcept { return references_.load(std::memory_order_acquire) == 1; }

  /// Full chunks, in order, of a path of triples.
  std::vector<Shared<Chunk>> chunks;
  /// All numbers of an uneven path, one position after the other …
  std::vector<double> numbers;
  /// … and where each position ends in them.
  std::vector<std::size_t> ends;
  bool uneven = false;

 private:
  std::atomic<std::uint32_t> references_{1};
};

template <class T>
Path::Shared<T>::Shared(const Shared& other) noexcept : object_(other.object_) {
  if (object_ != nullptr) object_->retain();
}

template <class T>
bool Path::Shared<T>::isUnique() const noexcept {
  return object_->isUnique();
}

Path::Path() noexcept = default;
Path::Path(std::initializer_list<std::initializer_list<double>> positions) {
  reserve(positions.size());
  for (const auto& position : positions) push_back(position);
}

Path::Path(const Path& other) noexcept = default;
Path::Path(Path&& other) noexcept
    : size_(std::exchange(other.size_, 0)),
      only_{other.only_[0], other.only_[1], other.only_[2]},
      tail_(std::move(other.tail_)),
      rest_(std::move(other.rest_)) {}
Path& Path::operator=(const Path& other) noexcept {
  Path(other).swap(*this);
  return *this;
}
Path& Path::operator=(Path&& other) noexcept {
  Path(std::move(other)).swap(*this);
  return *this;
}
Path::~Path() = default;

void Path::swap(Path& other) noexcept {
  std::swap(size_, other.size_);
  std::swap(only_, other.only_);
  std::swap(tail_, other.tail_);
  std::swap(rest_, other.rest_);
}

Path::Position Path::operator[](std::size_t index) const noexcept {
  if (rest_) {
    if (rest_->uneven) {
      const std::size_t start = index == 0 ? 0 : rest_->ends[index - 1];
      return {rest_->numbers.data() + start, rest_->ends[index] - start};
    }
    const std::size_t chunk = index / kChunkPositions;
    if (chunk < rest_->chunks.size()) {
      return {rest_->chunks[chunk]->slot(index % kChunkPositions), kTriple};
    }
  }
  return {tail_ ? tail_->slot(index % kChunkPositions) : only_, kTriple};
}

void Path::push_back(Position position) {
  const bool uneven = rest_ && rest_->uneven;
  if (!uneven && position.size() == kTriple) {
    addTriple(position);
  } else {
    addUneven(position);
  }
}

void Path::reserve(std::size_t positions) {
  if (size_ == 0 && !tail_ && !rest_ && positions > 1) {
    tail_ = Shared<Chunk>(Chunk::make(std::min(positions, kChunkPositions)));
  }
}

void Path::addTriple(Position position) {
  // Read first: the view may point into the chunk that is about to be replaced.
  const double triple[kTriple] = {position[0], position[1], position[2]};
  if (size_ == 0 && !tail_ && !rest_) {
    std::copy_n(triple, kTriple, only_);
    size_ = 1;
    return;
  }
  std::size_t used = size_ == 0 ? 0 : (size_ - 1) % kChunkPositions + 1;
  if (used == kChunkPositions) {
    // A new chunk starts small only for a path's first positions; a stroke this long goes on.
    Shared<Chunk> fresh(Chunk::make(kChunkPositions));
    ownRest().chunks.push_back(tail_);
    tail_ = std::move(fresh);
    used = 0;
  }
  if (!tail_ || !tail_->claim(used, tail_.isUnique())) {
    growTail(used);
    tail_->claim(used, true);
  }
  std::copy_n(triple, kTriple, tail_->slot(used));
  ++size_;
}

void Path::growTail(std::size_t used) {
  constexpr std::size_t kSecondCapacity = 8;
  const std::size_t wanted = std::max(kSecondCapacity, used * 2);
  Shared<Chunk> grown(Chunk::make(std::min(wanted, kChunkPositions)));
  if (used > 0) grown->takeFirst(tail_ ? tail_->slot(0) : only_, used);
  tail_ = std::move(grown);
}

Path::Rest& Path::ownRest() {
  if (!rest_) {
    rest_ = Shared<Rest>(new Rest);
  } else if (!rest_.isUnique()) {
    rest_ = Shared<Rest>(new Rest(*rest_));
  }
  return *rest_;
}

void Path::addUneven(Position position) {
  const std::vector<double> row(position.begin(), position.end());
  if (!rest_ || !rest_->uneven) makeUneven();
  Rest& rest = ownRest();
  rest.numbers.insert(rest.numbers.end(), row.begin(), row.end());
  rest.ends.push_back(rest.numbers.size());
  ++size_;
}

void Path::makeUneven() {
  Shared<Rest> uneven(new Rest);
  uneven->uneven = true;
  uneven->numbers.reserve((size_ + 1) * kTriple);
  uneven->ends.reserve(size_ + 1);
  for (std::size_t index = 0; index < size_; ++index) {
    const Position position = (*this)[index];
    uneven->numbers.insert(uneven->numbers.end(), position.begin(), position.end());
    uneven->ends.push_back(uneven->numbers.size());
  }
  rest_ = std::move(uneven);
  tail_ = {};
}

bool Path::equals(const Path& other) const noexcept {
  if (size_ != other.size_) return false;
  const bool sharesAll = tail_.get() == other.tail_.get() && rest_.get() == other.rest_.get();
  if (sharesAll && !isInline()) return true;
  for (std::size_t index = 0; index < size_; ++index) {
    const Position left = (*this)[index];
    const Position right = other[index];
    if (!std::equal(left.begin(), left.end(), right.begin(), right.end(), sameNumber)) return false;
  }
  return true;
}

}  // namespace VelWhiteBoard
