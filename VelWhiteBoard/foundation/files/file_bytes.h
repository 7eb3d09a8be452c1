/// @file
/// The contents of a file in memory.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

namespace VelWhiteBoard {

/// The contents of a file, in one buffer. Movable, not copyable; a moved-from object is empty.
class FileBytes {
 public:
  FileBytes() = default;
  /// Takes `buffer` over, the first `size` bytes of which are the contents.
  FileBytes(std::unique_ptr<char[]> buffer, std::size_t size) noexcept
      : buffer_(std::move(buffer)), size_(size) {}
  FileBytes(FileBytes&& other) noexcept
      : buffer_(std::move(other.buffer_)), size_(std::exchange(other.size_, 0)) {}
  FileBytes& operator=(FileBytes&& other) noexcept {
    buffer_ = std::move(other.buffer_);
    size_ = std::exchange(other.size_, 0);
    return *this;
  }
  FileBytes(const FileBytes&) = delete;
  FileBytes& operator=(const FileBytes&) = delete;
  ~FileBytes() = default;

  /// The contents. Valid until this object is moved from, assigned to or destroyed.
  std::string_view view() const { return {buffer_.get(), size_}; }
  std::size_t size() const { return size_; }

 private:
  std::unique_ptr<char[]> buffer_;
  std::size_t size_ = 0;
};

}  // namespace VelWhiteBoard
