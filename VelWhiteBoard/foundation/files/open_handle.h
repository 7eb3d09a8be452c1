/// @file
/// Handles of open files, closed automatically.
#pragma once

#include <cerrno>
#include <utility>

#include "VelWhiteBoard/foundation/files/system_calls.h"

namespace VelWhiteBoard {

/// Repeats a system call until no signal interrupts it. A client's timers and profilers send
/// signals all the time, and no signal may make a save fail.
template <class Call>
auto uninterrupted(const Call& call) {
  for (;;) {
    const auto result = call();
    if (result != -EINTR) return result;
  }
}

/// Owns an open handle and closes it once. Made from the result of an opening call; a negative
/// result is the error, kept for `error()`.
class OpenHandle {
 public:
  explicit OpenHandle(SystemCalls& calls, int answer = -EBADF) : calls_(&calls), answer_(answer) {}
  ~OpenHandle() { close(); }
  OpenHandle(const OpenHandle&) = delete;
  OpenHandle& operator=(const OpenHandle&) = delete;
  OpenHandle(OpenHandle&& other) noexcept
      : calls_(other.calls_), answer_(std::exchange(other.answer_, -EBADF)) {}
  OpenHandle& operator=(OpenHandle&& other) noexcept {
    if (this != &other) {
      close();
      calls_ = other.calls_;
      answer_ = std::exchange(other.answer_, -EBADF);
    }
    return *this;
  }

  bool isOpen() const { return answer_ >= 0; }
  int get() const { return answer_; }
  int error() const { return answer_ < 0 ? -answer_ : 0; }

  /// Not repeated when interrupted: the handle is closed by then, and another thread may already
  /// have its number. The result is ignored: what had to be safe was synced before.
  void close() {
    if (isOpen()) calls_->close(std::exchange(answer_, -EBADF));
  }

 private:
  SystemCalls* calls_;
  int answer_;
};

}  // namespace VelWhiteBoard
