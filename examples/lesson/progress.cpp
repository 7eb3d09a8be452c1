#include "progress.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <unistd.h>

namespace lesson {
namespace {

constexpr std::uint64_t kBarWidth = 40;
// Without a known size a new line appears for every 64 KiB.
constexpr std::uint64_t kBlock = 64 * 1024;

}  // namespace

Progress::Progress(std::optional<std::uint64_t> size)
    : isWatched_(isatty(STDERR_FILENO) == 1), size_(size) {}

void Progress::show(std::uint64_t bytesRead, std::size_t lines) {
  if (!isWatched_ || bytesRead < nextShow_) return;
  isShown_ = true;
  if (size_ && *size_ > 0) {
    nextShow_ = bytesRead + *size_ / 100;
    const std::uint64_t filled = std::min(kBarWidth, bytesRead * kBarWidth / *size_);
    const std::string bar = std::string(filled, '#') + std::string(kBarWidth - filled, '.');
    std::fprintf(stderr, "\r[%s] %zu lines ", bar.c_str(), lines);
  } else {
    nextShow_ = bytesRead + kBlock;
    std::fprintf(stderr, "\r%zu lines ", lines);
  }
}

void Progress::erase() {
  if (!isShown_) return;
  isShown_ = false;
  nextShow_ = 0;
  std::fputs("\r\033[K", stderr);
}

}  // namespace lesson
