// How far the playing is, for somebody who watches.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace lesson {

/// One line on stderr that is written over and over, and gone at the end. Silent when stderr is no
/// terminal, so that logs and pipes get nothing of it.
class Progress {
 public:
  /// @param size how many bytes there are; none: only the lines are counted.
  explicit Progress(std::optional<std::uint64_t> size);
  ~Progress() { erase(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void show(std::uint64_t bytesRead, std::size_t lines);
  /// Takes the line away, so that something else can be written.
  void erase();

 private:
  bool isWatched_;
  bool isShown_ = false;
  std::optional<std::uint64_t> size_;
  std::uint64_t nextShow_ = 0;
};

}  // namespace lesson
