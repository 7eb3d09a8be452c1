// 64-bit offsets on every platform: page files are small, but a board folder may hold any file.
#define _FILE_OFFSET_BITS 64

#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <string_view>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "VelWhiteBoard/foundation/files/system_calls.h"

namespace VelWhiteBoard {
namespace {

static_assert(sizeof(off_t) == 8, "files beyond 2 GB must open");

// Permissions for all users; the process's umask takes away what the user does not grant.
constexpr mode_t kNewFileMode = 0666;
constexpr mode_t kPermissionBits = 0777;

int negatedError(int result) { return result < 0 ? -errno : result; }

int openFlags(OpenMode mode) {
  // O_NONBLOCK and O_NOCTTY: a pipe or a terminal under a page's name must neither block the
  // process nor become its controlling terminal before the caller has checked what it opened.
  constexpr int kAlways = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  switch (mode) {
    case OpenMode::kRead:
      return O_RDONLY | kAlways;
    case OpenMode::kTemporary:
      return O_RDWR | O_CREAT | O_NOFOLLOW | kAlways;
    case OpenMode::kNewTemporary:
      return O_RDWR | O_CREAT | O_EXCL | kAlways;
    case OpenMode::kLeftover:
      return O_RDWR | O_NOFOLLOW | kAlways;
    case OpenMode::kFolder:
      return O_RDONLY | O_DIRECTORY | kAlways;
  }
  return O_RDONLY | kAlways;
}

FileInfo fromStat(const struct stat& from) {
  FileInfo info;
  info.kind = S_ISREG(from.st_mode)   ? FileKind::kFile
              : S_ISDIR(from.st_mode) ? FileKind::kFolder
                                      : FileKind::kOther;
  if (info.kind == FileKind::kFile) info.size = static_cast<std::uint64_t>(from.st_size);
  info.device = static_cast<std::uint64_t>(from.st_dev);
  info.inode = static_cast<std::uint64_t>(from.st_ino);
  info.links = static_cast<std::uint64_t>(from.st_nlink);
  info.permissions = static_cast<std::uint32_t>(from.st_mode & kPermissionBits);
  return info;
}

class PosixCalls final : public SystemCalls {
 public:
  int open(const std::string& path, OpenMode mode) override {
    return negatedError(::open(path.c_str(), openFlags(mode), kNewFileMode));
  }

  int close(int handle) override { return negatedError(::close(handle)); }

  int status(const std::string& path, bool followLinks, FileInfo& info) override {
    struct stat found = {};
    const int result = followLinks ? ::stat(path.c_str(), &found) : ::lstat(path.c_str(), &found);
    if (result < 0) return -errno;
    info = fromStat(found);
    return 0;
  }

  int statusOfHandle(int handle, FileInfo& info) override {
    struct stat found = {};
    if (::fstat(handle, &found) < 0) return -errno;
    info = fromStat(found);
    return 0;
  }

  std::int64_t read(int handle, char* bytes, std::size_t size) override {
    const ssize_t result = ::read(handle, bytes, size);
    return result < 0 ? -errno : result;
  }

  void expectFilling(char* memory, std::size_t size) override {
#ifdef MADV_HUGEPAGE
    // From the first whole page on. The result is ignored, since this is a hint.
    const auto pageSize = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    void* start = memory;
    if (std::align(pageSize, pageSize, start, size)) ::madvise(start, size, MADV_HUGEPAGE);
#else
    static_cast<void>(memory);
    static_cast<void>(size);
#endif
  }

  std::int64_t write(int handle, const char* bytes, std::size_t size) override {
    const ssize_t result = ::write(handle, bytes, size);
    return result < 0 ? -errno : result;
  }

  int truncate(int handle) override { return negatedError(::ftruncate(handle, 0)); }

  int setPermissions(int handle, std::uint32_t permissions) override {
    return negatedError(::fchmod(handle, static_cast<mode_t>(permissions)));
  }

  int sync(int handle) override { return negatedError(::fsync(handle)); }

  int syncFolder(const std::string& path) override {
    const int handle = open(path, OpenMode::kFolder);
    if (handle < 0) return handle;
    const int result = sync(handle);
    close(handle);
    return result;
  }

  int tryLock(int handle) override { return negatedError(::flock(handle, LOCK_EX | LOCK_NB)); }

  int unlock(int handle) override { return negatedError(::flock(handle, LOCK_UN)); }

  int rename(const std::string& from, const std::string& to) override {
    return negatedError(::rename(from.c_str(), to.c_str()));
  }

  int renameToNew(const std::string& from, const std::string& to) override {
#ifdef RENAME_NOREPLACE
    return negatedError(
        ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE));
#else
    static_cast<void>(from);
    static_cast<void>(to);
    return -ENOSYS;
#endif
  }

  int makeFolder(const std::string& path, std::uint32_t permissions) override {
    return negatedError(::mkdir(path.c_str(), static_cast<mode_t>(permissions)));
  }

  int remove(const std::string& path) override { return negatedError(::unlink(path.c_str())); }

  int removeAll(const std::string& path) override {
    std::error_code error;
    std::filesystem::remove_all(path, error);
    return -error.value();
  }

  int list(int handle, std::vector<std::string>& names) override {
    // The stream gets its own handle, so that closing it leaves the caller's open.
    const int own = ::fcntl(handle, F_DUPFD_CLOEXEC, 0);
    if (own < 0) return -errno;
    std::unique_ptr<DIR, int (*)(DIR*)> stream(::fdopendir(own), ::closedir);
    if (!stream) {
      const int error = errno;
      close(own);
      return -error;
    }
    ::rewinddir(stream.get());
    for (;;) {
      errno = 0;  // the only way to tell the end from a failure
      const dirent* entry = ::readdir(stream.get());
      if (entry == nullptr) return -errno;
      const std::string_view name = entry->d_name;
      if (name != "." && name != "..") names.emplace_back(name);
    }
  }
};

}  // namespace

SystemCalls& SystemCalls::posix() {
  // Never destroyed: queued saves may still run while the process ends.
  static PosixCalls& calls = *new PosixCalls;
  return calls;
}

}  // namespace VelWhiteBoard
