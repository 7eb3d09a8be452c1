#include "tests/support/folder_log.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <sys/inotify.h>
#include <system_error>
#include <unistd.h>

namespace VelWhiteBoard {

FolderLog::FolderLog(const std::vector<std::string>& folders)
    : handle_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
  // The system tells of equal events in a row only once. A move is told of at both its ends, so
  // that two of them are never alike.
  constexpr std::uint32_t kEvents = IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE;
  for (const std::string& folder : folders) {
    const int watch = ::inotify_add_watch(handle_, folder.c_str(), kEvents);
    if (watch < 0) throw std::system_error(errno, std::generic_category(), "watch " + folder);
    folders_[watch] = folder;
  }
}

FolderLog::~FolderLog() { ::close(handle_); }

std::vector<std::string> FolderLog::take() {
  std::vector<std::string> log;
  alignas(inotify_event) std::array<char, 65536> block{};
  for (;;) {
    const ssize_t size = ::read(handle_, block.data(), block.size());
    if (size <= 0) return log;
    for (std::size_t at = 0; at < static_cast<std::size_t>(size);) {
      inotify_event event{};
      std::memcpy(&event, &block[at], sizeof event);
      const std::string_view name = event.len == 0 ? "" : &block[at + sizeof event];
      at += sizeof event + event.len;
      if (!name.ends_with(".plist") || (event.mask & IN_MOVED_FROM) != 0U) continue;
      log.push_back(((event.mask & IN_MOVED_TO) != 0U ? "write " : "remove ") + folders_[event.wd] +
                    '/' + std::string(name));
    }
  }
}

}  // namespace VelWhiteBoard
