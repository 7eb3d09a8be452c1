#include "VelWhiteBoard/foundation/files/atomic_write.h"

#include <cerrno>
#include <utility>

#include "VelWhiteBoard/foundation/files/open_handle.h"

namespace VelWhiteBoard {
namespace {

// Some file systems cannot sync a folder, and some folders may not be read.
bool cannotSyncFolder(int negatedError) {
  return negatedError == -EINVAL || negatedError == -EOPNOTSUPP || negatedError == -EACCES;
}

std::string folderOf(const std::string& path) {
  const std::size_t separator = path.find_last_of('/');
  if (separator == std::string::npos) return ".";
  return separator == 0 ? "/" : path.substr(0, separator);
}

}  // namespace

AtomicWrite::AtomicWrite(SystemCalls& calls, const std::string& path)
    : calls_(calls), path_(path), temporary_(calls, path) {}

bool AtomicWrite::note(FileResult result) {
  if (result_.ok()) result_ = std::move(result);
  return result_.ok();
}

bool AtomicWrite::fail(FileStep step, int negatedError) {
  return note(FileResult::failure(step, -negatedError, temporary_.path()));
}

bool AtomicWrite::begin() { return note(temporary_.open()); }

bool AtomicWrite::append(std::string_view bytes) {
  if (!result_.ok()) return false;
  while (!bytes.empty()) {
    const std::int64_t taken = uninterrupted(
        [&] { return calls_.write(temporary_.handle(), bytes.data(), bytes.size()); });
    // No bytes taken and no error: retrying without end would hang the save queue.
    if (taken == 0) return fail(FileStep::kWrite, -EIO);
    if (taken < 0) return fail(FileStep::kWrite, static_cast<int>(taken));
    bytes.remove_prefix(static_cast<std::size_t>(taken));
  }
  return true;
}

// A failure here does not fail the write: the contents matter more, and some volumes have no
// permissions.
void AtomicWrite::keepPermissions() {
  FileInfo old;
  const int result = uninterrupted([&] { return calls_.status(path_, false, old); });
  if (result < 0 || old.kind != FileKind::kFile) return;
  uninterrupted([&] { return calls_.setPermissions(temporary_.handle(), old.permissions); });
}

bool AtomicWrite::commit() {
  if (!result_.ok()) return false;
  keepPermissions();
  const int result = uninterrupted([&] { return calls_.sync(temporary_.handle()); });
  if (result < 0) return fail(FileStep::kSync, result);
  return note(temporary_.renameOverTarget()) && syncFolder();
}

bool AtomicWrite::syncFolder() {
  const std::string folder = folderOf(path_);
  const int result = uninterrupted([&] { return calls_.syncFolder(folder); });
  if (result >= 0 || cannotSyncFolder(result)) return true;
  return note(FileResult::failure(FileStep::kSyncFolder, -result, folder));
}

}  // namespace VelWhiteBoard
