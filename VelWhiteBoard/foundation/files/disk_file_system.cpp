#include "VelWhiteBoard/foundation/files/disk_file_system.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <string_view>

#include "VelWhiteBoard/foundation/files/atomic_write.h"
#include "VelWhiteBoard/foundation/files/open_handle.h"
#include "VelWhiteBoard/foundation/files/temporary_file.h"

namespace VelWhiteBoard {
namespace {

// Permissions of new folders: for all users, less what the umask takes away, or for the user only.
constexpr std::uint32_t kUsualPermissions = 0777;
constexpr std::uint32_t kPrivatePermissions = 0700;

// The system would end the path at a NUL byte and use another file than the one asked for.
bool namesSomething(const std::string& path) {
  return !path.empty() && path.find('\0') == std::string::npos;
}

// The root, "." and ".." cannot be removed, and must not be emptied.
bool isRemovable(std::string_view path) {
  const std::string_view last = path.substr(path.find_last_of('/') + 1);
  return !last.empty() && last != "." && last != "..";
}

FileResult namesNothing(FileStep step, const std::string& path) {
  return FileResult::failure(step, ENOENT, path);
}

// Opening succeeds for other kinds of files too, but only a regular file can be read and written.
int requireRegularFile(SystemCalls& calls, int handle, FileInfo& info) {
  const int result = uninterrupted([&] { return calls.statusOfHandle(handle, info); });
  if (result < 0) return result;
  if (info.kind == FileKind::kFolder) return -EISDIR;
  return info.kind == FileKind::kFile ? 0 : -EINVAL;
}

// Opens a regular file for reading. `info` is its status.
FileResult openRegularFile(SystemCalls& calls, const std::string& path, OpenHandle& file,
                           FileInfo& info) {
  if (!namesSomething(path)) return namesNothing(FileStep::kOpen, path);
  file = OpenHandle(calls, uninterrupted([&] { return calls.open(path, OpenMode::kRead); }));
  if (!file.isOpen()) return FileResult::failure(FileStep::kOpen, file.error(), path);
  const int result = requireRegularFile(calls, file.get(), info);
  if (result >= 0) return FileResult::success();
  file.close();
  return FileResult::failure(FileStep::kOpen, -result, path);
}

// A buffer for a file whose size is known approximately.
class ReadBuffer {
 public:
  // One byte more than the file, so that the read that finds its end needs no larger buffer.
  ReadBuffer(SystemCalls& calls, std::uint64_t fileSize) : calls_(calls) {
    if (fileSize >= std::numeric_limits<std::size_t>::max()) throw std::bad_alloc();
    enlarge(static_cast<std::size_t>(fileSize) + 1);
  }

  char* rest() { return bytes_.get() + size_; }
  std::size_t restSize() const { return capacity_ - size_; }

  // The next `count` bytes of the rest are filled.
  void advance(std::size_t count) {
    size_ += count;
    if (size_ == capacity_) enlarge(std::max(2 * capacity_, kFileBlockSize));
  }

  FileBytes take() { return {std::move(bytes_), size_}; }

 private:
  void enlarge(std::size_t capacity) {
    // Not make_unique: that would fill it with zeros.
    std::unique_ptr<char[]> bytes(new char[capacity]);
    if (capacity >= kLargeBuffer) calls_.expectFilling(bytes.get(), capacity);
    if (size_ > 0) std::memcpy(bytes.get(), bytes_.get(), size_);
    bytes_ = std::move(bytes);
    capacity_ = capacity;
  }

  // Large pages are 2 MB on most machines; a smaller buffer has hardly a whole one.
  static constexpr std::size_t kLargeBuffer = 4 * 1024 * 1024;

  SystemCalls& calls_;
  std::unique_ptr<char[]> bytes_;
  std::size_t capacity_ = 0;
  std::size_t size_ = 0;
};

// The system or the volume cannot rename without replacing.
bool cannotRenameToNew(int negatedError) {
  return negatedError == -EINVAL || negatedError == -ENOSYS || negatedError == -EOPNOTSUPP;
}

// The end of `path` without its last component: 0 when there is nothing above it.
std::size_t endOfParent(std::string_view path) {
  const std::size_t separator = path.find_last_of('/');
  if (separator == std::string_view::npos) return 0;
  return withoutTrailingSeparators(path.substr(0, separator)).size();
}

class OpenedDiskFile final : public OpenedFile {
 public:
  OpenedDiskFile(SystemCalls& calls, OpenHandle handle, std::string path)
      : calls_(calls), handle_(std::move(handle)), path_(std::move(path)) {}

  FileResult read(const BlockConsumer& consume) override {
    const auto block = std::make_unique<char[]>(kFileBlockSize);
    for (;;) {
      const std::int64_t size =
          uninterrupted([&] { return calls_.read(handle_.get(), block.get(), kFileBlockSize); });
      if (size < 0) return FileResult::failure(FileStep::kRead, static_cast<int>(-size), path_);
      if (size == 0) return FileResult::success();
      if (!consume({block.get(), static_cast<std::size_t>(size)})) return FileResult::success();
    }
  }

 private:
  SystemCalls& calls_;
  OpenHandle handle_;
  std::string path_;
};

}  // namespace

FileResult DiskFileSystem::status(const std::string& path, FileStatus& status) {
  status = {};
  if (!namesSomething(path)) return FileResult::success();
  FileInfo info;
  const int result = uninterrupted([&] { return calls_.status(path, true, info); });
  if (result == -ENOENT || result == -ENOTDIR) return FileResult::success();
  if (result < 0) return FileResult::failure(FileStep::kStatus, -result, path);
  status = {info.kind, info.size};
  return FileResult::success();
}

FileResult DiskFileSystem::open(const std::string& path, std::unique_ptr<OpenedFile>& file) {
  file.reset();
  OpenHandle handle(calls_);
  FileInfo info;
  FileResult opened = openRegularFile(calls_, path, handle, info);
  if (opened.ok()) file = std::make_unique<OpenedDiskFile>(calls_, std::move(handle), path);
  return opened;
}

FileResult DiskFileSystem::readBytes(const std::string& path, FileBytes& bytes) {
  bytes = {};
  OpenHandle file(calls_);
  FileInfo info;
  FileResult opened = openRegularFile(calls_, path, file, info);
  if (!opened.ok()) return opened;
  ReadBuffer buffer(calls_, info.size);
  for (;;) {
    const std::int64_t count =
        uninterrupted([&] { return calls_.read(file.get(), buffer.rest(), buffer.restSize()); });
    if (count < 0) return FileResult::failure(FileStep::kRead, static_cast<int>(-count), path);
    if (count == 0) break;
    buffer.advance(static_cast<std::size_t>(count));
  }
  bytes = buffer.take();
  return FileResult::success();
}

FileResult DiskFileSystem::writeAtomically(const std::string& path,
                                           const ContentProducer& produce) {
  if (!namesSomething(path)) return namesNothing(FileStep::kOpen, path);
  AtomicWrite write(calls_, path);
  if (!write.begin()) return write.result();
  const bool produced = produce([&write](std::string_view block) { return write.append(block); });
  // A producer may overlook that a write failed; its result is then ignored.
  if (!write.result().ok()) return write.result();
  if (!produced) return FileResult::failure(FileStep::kProduce, 0, path);
  write.commit();
  return write.result();
}

FileResult DiskFileSystem::removeRecursively(const std::string& path) {
  if (!namesSomething(path)) return FileResult::success();
  const std::string entry(withoutTrailingSeparators(path));  // "link/" would be what it leads to
  if (!isRemovable(entry)) return FileResult::failure(FileStep::kRemove, EINVAL, path);
  const int result = uninterrupted([&] { return calls_.removeAll(entry); });
  // A path that leads through a file has nothing at its end.
  if (result >= 0 || result == -ENOTDIR) return FileResult::success();
  return FileResult::failure(FileStep::kRemove, -result, path);
}

FileResult DiskFileSystem::list(const std::string& path, std::vector<std::string>& names) {
  if (!namesSomething(path)) return namesNothing(FileStep::kList, path);
  const OpenHandle folder(calls_,
                          uninterrupted([&] { return calls_.open(path, OpenMode::kFolder); }));
  if (!folder.isOpen()) return FileResult::failure(FileStep::kList, folder.error(), path);
  const std::size_t before = names.size();
  const int result = uninterrupted([&] {
    names.resize(before);  // an interrupted call may have listed a part already
    return calls_.list(folder.get(), names);
  });
  if (result >= 0) return FileResult::success();
  names.resize(before);
  return FileResult::failure(FileStep::kList, -result, path);
}

FileResult DiskFileSystem::makeFolder(const std::string& path) {
  return makeFolderWith(path, kUsualPermissions);
}

FileResult DiskFileSystem::makePrivateFolder(const std::string& path) {
  return makeFolderWith(path, kPrivatePermissions);
}

FileResult DiskFileSystem::makeFolderWith(const std::string& path, std::uint32_t permissions) {
  if (!namesSomething(path)) return namesNothing(FileStep::kMakeFolder, path);
  const int result = uninterrupted([&] { return calls_.makeFolder(path, permissions); });
  if (result < 0) return FileResult::failure(FileStep::kMakeFolder, -result, path);
  return FileResult::success();
}

// The error for an existing folder varies (a read-only volume reports that first), so every error
// is ignored if a folder exists.
int DiskFileSystem::makeUnlessFolder(const std::string& path) {
  const int result = uninterrupted([&] { return calls_.makeFolder(path, kUsualPermissions); });
  if (result >= 0 || result == -ENOENT) return result;
  FileInfo info;
  const int found = uninterrupted([&] { return calls_.status(path, true, info); });
  return found >= 0 && info.kind == FileKind::kFolder ? 0 : result;
}

FileResult DiskFileSystem::makeFolders(const std::string& path) {
  if (!namesSomething(path)) return namesNothing(FileStep::kMakeFolder, path);
  // Goes up until a folder exists or can be made, then down again. Usually one call suffices.
  std::vector<std::size_t> missing;
  std::size_t end = withoutTrailingSeparators(path).size();
  int result = 0;
  while ((result = makeUnlessFolder(path.substr(0, end))) == -ENOENT) {
    missing.push_back(end);
    end = endOfParent(std::string_view(path).substr(0, end));
    if (end == 0) return FileResult::failure(FileStep::kMakeFolder, ENOENT, path);
  }
  while (result >= 0 && !missing.empty()) {
    end = missing.back();
    missing.pop_back();
    result = makeUnlessFolder(path.substr(0, end));
  }
  if (result >= 0) return FileResult::success();
  return FileResult::failure(FileStep::kMakeFolder, -result, path.substr(0, end));
}

FileResult DiskFileSystem::removeUnusedTemporaries(const std::string& folder,
                                                   std::string_view targetSuffix) {
  std::vector<std::string> names;
  FileResult first = list(folder, names);
  for (const std::string& name : names) {
    if (!isTemporaryName(name, targetSuffix)) continue;
    FileResult result = removeUnusedTemporary(calls_, appendPathComponent(folder, name));
    if (first.ok()) first = std::move(result);
  }
  return first;
}

FileResult DiskFileSystem::rename(const std::string& from, const std::string& to) {
  if (!namesSomething(from)) return namesNothing(FileStep::kRename, from);
  if (!namesSomething(to)) return namesNothing(FileStep::kRename, to);
  const int result = uninterrupted([&] { return calls_.rename(from, to); });
  if (result < 0) return FileResult::failure(FileStep::kRename, -result, from);
  return FileResult::success();
}

int DiskFileSystem::lookThenRename(const std::string& from, const std::string& to) {
  FileInfo info;
  const int found = uninterrupted([&] { return calls_.status(to, false, info); });
  if (found >= 0) return -EEXIST;
  if (found != -ENOENT) return found;
  return uninterrupted([&] { return calls_.rename(from, to); });
}

FileResult DiskFileSystem::renameToNew(const std::string& from, const std::string& to) {
  if (!namesSomething(from)) return namesNothing(FileStep::kRename, from);
  if (!namesSomething(to)) return namesNothing(FileStep::kRename, to);
  // Not a second name and the removal of the first: what another process puts at `from` between
  // the two would be removed.
  int result = uninterrupted([&] { return calls_.renameToNew(from, to); });
  if (cannotRenameToNew(result)) result = lookThenRename(from, to);
  if (result < 0) return FileResult::failure(FileStep::kRename, -result, from);
  return FileResult::success();
}

}  // namespace VelWhiteBoard
