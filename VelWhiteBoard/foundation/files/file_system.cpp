#include "VelWhiteBoard/foundation/files/file_system.h"

#include <algorithm>
#include <atomic>
#include <cerrno>

#include "VelWhiteBoard/foundation/files/disk_file_system.h"
#include "VelWhiteBoard/foundation/files/system_calls.h"

namespace VelWhiteBoard {
namespace {

constexpr char kSeparator = '/';

std::atomic<FileSystem*>& currentSlot() {
  // Never destroyed: queued saves may still run while the process ends.
  static FileSystem& disk = *new DiskFileSystem(SystemCalls::posix());
  static std::atomic<FileSystem*> slot{&disk};
  return slot;
}

}  // namespace

FileSystem& FileSystem::current() { return *currentSlot().load(std::memory_order_acquire); }

FileKind FileSystem::kind(const std::string& path) {
  FileStatus found;
  return status(path, found).ok() ? found.kind : FileKind::kAbsent;
}

FileResult FileSystem::read(const std::string& path, const BlockConsumer& consume) {
  std::unique_ptr<OpenedFile> file;
  FileResult opened = open(path, file);
  return opened.ok() ? file->read(consume) : opened;
}

FileResult FileSystem::createEmptyFile(const std::string& path) {
  FileStatus found;
  const bool isKnown = status(path, found).ok();  // if not, the write says why
  if (path.ends_with(kSeparator) || (isKnown && found.kind == FileKind::kFolder)) {
    return FileResult::failure(FileStep::kOpen, EISDIR, path);
  }
  if (isKnown && found.kind == FileKind::kOther) {
    return FileResult::failure(FileStep::kOpen, EINVAL, path);
  }
  return writeAtomically(path, [](const BlockConsumer&) { return true; });
}

ScopedFileSystem::ScopedFileSystem(FileSystem& replacement)
    : previous_(currentSlot().exchange(&replacement, std::memory_order_acq_rel)) {}

ScopedFileSystem::~ScopedFileSystem() { currentSlot().store(previous_, std::memory_order_release); }

std::string_view withoutTrailingSeparators(std::string_view path) {
  while (path.size() > 1 && path.back() == kSeparator) path.remove_suffix(1);
  return path;
}

std::string appendPathComponent(std::string_view base, std::string_view component) {
  std::string path(withoutTrailingSeparators(base));
  // An absolute component stays absolute when `base` is empty.
  if (path.empty() && component.starts_with(kSeparator)) path = kSeparator;
  while (!component.empty()) {
    const std::string_view part = component.substr(0, component.find(kSeparator));
    component.remove_prefix(std::min(component.size(), part.size() + 1));
    if (part.empty()) continue;
    if (!path.empty() && path.back() != kSeparator) path += kSeparator;
    path += part;
  }
  return path;
}

}  // namespace VelWhiteBoard
