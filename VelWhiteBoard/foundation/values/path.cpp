#include "VelWhiteBoard/foundation/values/path.h"

#include <algorithm>
#include <memory>
#include <new>
#include <vector>

#include "VelWhiteBoard/foundation/values/same_number.h"

namespace VelWhiteBoard {

namespace {

/// Numbers of an ordinary position: horizontal, vertical, time.
constexpr std::size_t kTriple = 3;
/// Positions of a full chunk: 24 KB, large enough that the list of chunks is short, small enough
/// that copying one never holds up a pen.
constexpr std::size_t kChunkPositions = 1024;

/// The capacity, in numbers, for a chunk of rows that holds `taken` numbers and expects `positions`
/// more rows, the next of `next` numbers. Assumes rows as long as the next one, up to a limit. A
/// chunk at least doubles, so that growing takes linear time.
std::size_t numbersFor(std::size_t positions, std::size_t taken, std::size_t next) noexcept {
  constexpr std::size_t kOrdinary = 4;
  return std::max(taken + positions * std::min(next, kOrdinary), 2 * taken + next);
}

}  // namespace

// Up to kChunkPositions positions, in one allocation with their counters.
//
// A chunk of triples holds nothing but their numbers. A chunk of rows, for positions of any length,
// holds a table of where each row ends, and then the numbers of all rows.
//
// Several paths may share a chunk, each seeing the first positions of it. `used_` is the number of
// slots in use: a path that sees exactly that many positions may claim the next slot, every other
// path has to copy. Slots below a path's own size are never written again, so readers on other
// threads need no lock.
//
// Aligned so that the table or the numbers follow it directly.
class alignas(double) Path::Chunk {
 public:
  static Chunk* makeTriples(std::size_t positions) {
    void* memory = ::operator new(sizeof(Chunk) + positions * kTriple * sizeof(double));
    return ::new (memory) Chunk(positions, positions * kTriple, false);
  }
  static Chunk* makeRows(std::size_t positions, std::size_t numbers) {
    static_assert(sizeof(std::size_t) <= sizeof(double));
    void* memory = ::operator new(sizeof(Chunk) + (positions + numbers) * sizeof(double));
    return ::new (memory) Chunk(positions, numbers, true);
  }

  void retain() noexcept { references_.fetch_add(1, std::memory_order_relaxed); }
  void release() noexcept {
    if (references_.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
    this->~Chunk();
    ::operator delete(this);
  }

  bool holdsRows() const noexcept { return holdsRows_; }
  /// Positions for which there is room.
  std::size_t capacity() const noexcept { return capacity_; }
  /// Where the numbers of the position at `index` begin, and those of the one before it end.
  std::size_t startOf(std::size_t index) const noexcept {
    if (!holdsRows_) return index * kTriple;
    return index == 0 ? 0 : ends()[index - 1];
  }
  Position position(std::size_t index) const noexcept {
    if (!holdsRows_) return {numbers() + index * kTriple, kTriple};
    const std::size_t start = startOf(index);
    return {numbers() + start, ends()[index] - start};
  }

  /// Adds a position for the path that sees the first `seen` ones; false when there is no room for
  /// it, or when another path that shares the chunk has added one.
  bool add(std::size_t seen, Position position) noexcept {
    if (seen >= capacity_) return false;
    const bool hasRoom = holdsRows_ ? position.size() <= numberCapacity_ - startOf(seen)
                                    : position.size() == kTriple;
    if (!hasRoom || !claim(seen)) return false;
    write(seen, position);
    return true;
  }

  /// Takes over the first `count` positions of `source`; this chunk must be fresh.
  void takeFirst(const Chunk& source, std::size_t count) noexcept {
    if (!holdsRows_) {
      std::copy_n(source.numbers(), count * kTriple, numbers());
    } else {
      for (std::size_t index = 0; index < count; ++index) write(index, source.position(index));
    }
    used_.store(static_cast<std::uint32_t>(count), std::memory_order_relaxed);
  }

 private:
  /// Whether the path that sees `seen` positions may write the next one.
  bool claim(std::size_t seen) noexcept {
    auto expected = static_cast<std::uint32_t>(seen);
    if (references_.load(std::memory_order_acquire) == 1) {
      used_.store(expected + 1, std::memory_order_relaxed);
      return true;
    }
    return used_.compare_exchange_strong(expected, expected + 1, std::memory_order_relaxed);
  }

  void write(std::size_t index, Position position) noexcept {
    if (!holdsRows_) {
      // One by one: often they have just been written, and a wider load would wait for these
      // stores.
      const double triple[kTriple] = {position[0], position[1], position[2]};
      std::copy_n(triple, kTriple, numbers() + index * kTriple);
      return;
    }
    const std::size_t start = startOf(index);
    std::copy_n(position.data(), position.size(), numbers() + start);
    ends()[index] = start + position.size();
  }

  Chunk(std::size_t positions, std::size_t numbers, bool holdsRows) noexcept
      : capacity_(static_cast<std::uint32_t>(positions)),
        holdsRows_(holdsRows),
        numberCapacity_(numbers) {}
  ~Chunk() = default;

  void* memory() const noexcept { return const_cast<Chunk*>(this + 1); }
  std::size_t* ends() const noexcept { return static_cast<std::size_t*>(memory()); }
  double* numbers() const noexcept {
    return static_cast<double*>(memory()) + (holdsRows_ ? capacity_ : 0);
  }

  std::atomic<std::uint32_t> references_{1};
  std::atomic<std::uint32_t> used_{0};
  std::uint32_t capacity_;
  bool holdsRows_;
  std::size_t numberCapacity_;
};

// Copied before it changes whenever more than one path refers to it.
class Path::FullChunks {
 public:
  FullChunks() = default;
  FullChunks(const FullChunks& other) : chunks(other.chunks) {}
  FullChunks& operator=(const FullChunks&) = delete;
  ~FullChunks() = default;

  void retain() noexcept { references_.fetch_add(1, std::memory_order_relaxed); }
  void release() noexcept {
    if (references_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
  }
  bool isUnique() const noexcept { return references_.load(std::memory_order_acquire) == 1; }

  std::vector<Shared<Chunk>> chunks;

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
      full_(std::move(other.full_)) {}
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
  std::swap(full_, other.full_);
}

Path::Position Path::operator[](std::size_t index) const noexcept {
  if (full_) {
    const std::size_t chunk = index / kChunkPositions;
    if (chunk < full_->chunks.size()) {
      return full_->chunks[chunk]->position(index % kChunkPositions);
    }
  }
  return lastChunkPosition(index % kChunkPositions);
}

/// The position at `index` of the newest chunk, or `only_` when there is no chunk.
Path::Position Path::lastChunkPosition(std::size_t index) const noexcept {
  return tail_ ? tail_->position(index) : Position(only_, kTriple);
}

void Path::reserve(std::size_t positions) {
  if (size_ == 0 && !tail_ && positions > 1) {
    tail_ = Shared<Chunk>(Chunk::makeTriples(std::min(positions, kChunkPositions)));
  }
}

void Path::push_back(Position position) {
  const std::size_t used = size_ == 0 ? 0 : (size_ - 1) % kChunkPositions + 1;
  if (!tail_ || !tail_->add(used, position)) addElsewhere(used, position);
  ++size_;
}

/// Adds a position that the tail cannot take. It may be a view into the tail, which therefore stays
/// until the position has been copied. Everything that can throw comes before the first change.
void Path::addElsewhere(std::size_t used, Position position) {
  if (used == 0 && !tail_ && position.size() == kTriple) {
    std::copy_n(position.data(), kTriple, only_);
    return;
  }
  if (used == kChunkPositions) return startChunk(position);
  Shared<Chunk> larger = largerTail(used, position.size());
  larger->add(used, position);
  tail_ = std::move(larger);
}

/// Makes the tail a full chunk and `first` the first position of a new tail.
void Path::startChunk(Position first) {
  // Full size at once: only a path's first chunk starts small, since a stroke this long will go on.
  Shared<Chunk> fresh(
      first.size() == kTriple
          ? Chunk::makeTriples(kChunkPositions)
          : Chunk::makeRows(kChunkPositions, numbersFor(kChunkPositions, 0, first.size())));
  fresh->add(0, first);
  if (!full_) {
    full_ = Shared<FullChunks>(new FullChunks);
  } else if (!full_.isUnique()) {
    full_ = Shared<FullChunks>(new FullChunks(*full_));
  }
  full_->chunks.push_back(tail_);
  tail_ = std::move(fresh);
}

/// A chunk of this path's own that holds the first `used` positions of the tail and has room for
/// another one of `numbersOfNext` numbers.
Path::Shared<Path::Chunk> Path::largerTail(std::size_t used, std::size_t numbersOfNext) const {
  constexpr std::size_t kSecondCapacity = 8;
  std::size_t positions = std::min(std::max(kSecondCapacity, used * 2), kChunkPositions);
  if (used == 0) positions = tail_ ? tail_->capacity() : 1;
  const bool rows = numbersOfNext != kTriple || (tail_ && tail_->holdsRows());
  const std::size_t numbers = tail_ ? tail_->startOf(used) : used * kTriple;
  Shared<Chunk> larger(
      rows ? Chunk::makeRows(positions, numbersFor(positions - used, numbers, numbersOfNext))
           : Chunk::makeTriples(positions));
  if (tail_) {
    larger->takeFirst(*tail_, used);
  } else if (used > 0) {
    larger->add(0, only_);
  }
  return larger;
}

bool Path::equals(const Path& other) const noexcept {
  if (size_ != other.size_) return false;
  const bool sharesAll = tail_.get() == other.tail_.get() && full_.get() == other.full_.get();
  if (sharesAll && !isInline()) return true;
  for (std::size_t index = 0; index < size_; ++index) {
    const Position left = (*this)[index];
    const Position right = other[index];
    if (!std::equal(left.begin(), left.end(), right.begin(), right.end(), sameNumber)) return false;
  }
  return true;
}

}  // namespace VelWhiteBoard
