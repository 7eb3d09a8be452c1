/// @file
/// The positions of a stroke.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <utility>

#include "VelWhiteBoard/foundation/export.h"

namespace VelWhiteBoard {

/// @addtogroup positions
/// @{

/// The positions of a stroke, oldest first. A value type.
///
/// A position is a short row of numbers: horizontal, vertical and usually the time of the position.
/// Rows of three take 24 bytes each, and a single one needs no allocation. Rows of any other length
/// are kept exactly and take 8 bytes more each. The caller decides on the unit and range of the
/// numbers; NaN and the infinities are kept like any other number.
///
/// Adding a position costs the same however long the path is, and so does copying a path: copies
/// share their common positions, whatever the lengths of their rows. So a save can keep the state
/// of a stroke at one instant while the pen goes on.
///
/// Memory: an operation that runs out of memory throws `std::bad_alloc` and leaves the path as it
/// was. Copying, moving and swapping need no memory and never throw.
///
/// Threads: distinct paths may be used from distinct threads, copies of one path included. One path
/// must not be changed while another thread uses it.
///
/// Not meant as a base class.
class VELWHITEBOARD_EXPORT Path {
 public:
  /// One position: a view of its numbers. Valid until the path it belongs to changes or is
  /// destroyed.
  using Position = std::span<const double>;

  class Iterator;

  Path() noexcept;  ///< No positions.
  /// These positions: `Path{{10, 20, 5}, {11, 21, 6}}`.
  Path(std::initializer_list<std::initializer_list<double>> positions);
  Path(const Path& other) noexcept;             ///< Shares the positions of `other`.
  Path(Path&& other) noexcept;                  ///< Leaves `other` empty.
  Path& operator=(const Path& other) noexcept;  ///< Shares the positions of `other`.
  Path& operator=(Path&& other) noexcept;       ///< Leaves `other` empty.
  ~Path();                                      ///< Copies keep the positions.

  /// Number of positions.
  std::size_t size() const noexcept { return size_; }
  /// Whether there are no positions.
  bool empty() const noexcept { return size_ == 0; }

  /// The position at `index`, which must be below `size()`.
  Position operator[](std::size_t index) const noexcept;
  /// The newest position; the path must not be empty.
  Position back() const noexcept { return (*this)[size_ - 1]; }

  /// Adds a position at the end. `position` may be a view into this path.
  void push_back(Position position);
  /// The same for a list of numbers: `path.push_back({10, 20, 5})`.
  void push_back(std::initializer_list<double> position) {
    push_back(Position(position.begin(), position.size()));
  }
  /// Allocates room for the first `positions` positions of an empty path.
  void reserve(std::size_t positions);

  inline Iterator begin() const noexcept;  ///< At the oldest position.
  inline Iterator end() const noexcept;    ///< Behind the newest position.

  void swap(Path& other) noexcept;  ///< Exchanges the positions of the two paths.

  /// Same positions with the same numbers; 0 equals -0, and a NaN equals a NaN, so that a path
  /// always equals its copy.
  friend bool operator==(const Path& left, const Path& right) noexcept {
    return left.equals(right);
  }

 private:
  class Chunk;
  class FullChunks;

  /// Shared reference to a chunk or to a list of chunks; the count is kept inside the object.
  template <class T>
  class Shared {
   public:
    Shared() noexcept = default;
    explicit Shared(T* object) noexcept : object_(object) {}
    VELWHITEBOARD_NO_EXPORT Shared(const Shared& other) noexcept;
    Shared(Shared&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    Shared& operator=(Shared other) noexcept {
      std::swap(object_, other.object_);
      return *this;
    }
    ~Shared() {
      if (object_ != nullptr) object_->release();
    }
    T* operator->() const noexcept { return object_; }
    T& operator*() const noexcept { return *object_; }
    T* get() const noexcept { return object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }
    VELWHITEBOARD_NO_EXPORT bool isUnique() const noexcept;

   private:
    T* object_ = nullptr;
  };

  bool equals(const Path& other) const noexcept;
  Position lastChunkPosition(std::size_t index) const noexcept;
  void addElsewhere(std::size_t used, Position position);
  void startChunk(Position first);
  Shared<Chunk> largerTail(std::size_t used, std::size_t numbersOfNext) const;

  /// Whether the path is one triple, stored in `only_`. Nearly all pieces of a stroke are.
  bool isInline() const noexcept { return size_ == 1 && !tail_; }

  std::size_t size_ = 0;
  double only_[3] = {};
  /// The newest positions, up to the length of a full chunk.
  Shared<Chunk> tail_;
  /// The full chunks before them; null when there are none.
  Shared<FullChunks> full_;
};

/// Walks the positions of a path, oldest first. Valid until the path changes or is destroyed.
class Path::Iterator {
 public:
  using value_type = Position;             ///< What the iterator gives: a view of one position.
  using difference_type = std::ptrdiff_t;  ///< Demanded of every iterator.

  Iterator() noexcept = default;  ///< Of no path: only to be assigned to.
  /// At the position `index` of `path`, 0 to `path.size()`.
  Iterator(const Path& path, std::size_t index) noexcept : path_(&path), index_(index) {}
  /// The position here; not at the end.
  Position operator*() const noexcept { return (*path_)[index_]; }
  /// Steps to the next newer position.
  Iterator& operator++() noexcept {
    ++index_;
    return *this;
  }
  /// Steps on, and gives the iterator as it was before.
  Iterator operator++(int) noexcept { return {*path_, index_++}; }
  /// Whether both are at the same place of the same path object.
  friend bool operator==(const Iterator&, const Iterator&) = default;

 private:
  const Path* path_ = nullptr;
  std::size_t index_ = 0;
};

inline Path::Iterator Path::begin() const noexcept { return {*this, 0}; }
inline Path::Iterator Path::end() const noexcept { return {*this, size_}; }

/// @}

}  // namespace VelWhiteBoard
