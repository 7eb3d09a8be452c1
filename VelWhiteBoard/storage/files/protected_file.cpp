#include "VelWhiteBoard/storage/files/protected_file.h"

#include <cerrno>
#include <utility>
#include <vector>

#include "VelWhiteBoard/foundation/queue/operation_queue.h"
#include "VelWhiteBoard/services/path_manager.h"
#include "VelWhiteBoard/storage/files/pending_files.h"

namespace VelWhiteBoard {

ProtectedFile::ProtectedFile(std::string path)
    : path_(std::move(path)), pendingName_(VelWhiteBoard::pendingName(path_)) {}

ProtectedFile::Version ProtectedFile::beginReading() const {
  const MutexHold hold(mutex_);
  return version_;
}

void ProtectedFile::endReading(Version begun, FileState found) noexcept {
  const MutexHold hold(mutex_);
  if (begun == version_) state_ = found;
}

void ProtectedFile::hasBeenRemoved() noexcept {
  hasFailed_ = false;
  note(FileState::kAbsent);
}

bool ProtectedFile::mayReplace() const {
  const MutexHold hold(mutex_);
  return state_ != FileState::kUnknown;
}

void ProtectedFile::note(FileState state) noexcept {
  const MutexHold hold(mutex_);
  state_ = state;
  ++version_;
}

bool ProtectedFile::moveAside() {
  FileSystem& files = FileSystem::current();
  if (!files.exists(path_)) {
    // Also when the system would not tell. Then replacing it might destroy it.
    FileStatus status;
    return files.status(path_, status).ok();
  }
  const std::string aside = path_ + std::string(kDamagedSuffix);
  FileResult moved = files.renameToNew(path_, aside);
  for (int number = 2; moved.error == EEXIST; ++number) {
    moved = files.renameToNew(path_, aside + '-' + std::to_string(number));
  }
  return moved.ok();
}

void ProtectedFile::replace(const AddRecords& addAll) {
  if (!mayReplace()) {
    if (!moveAside()) return noteFailure();
    note(FileState::kAbsent);
  }
  const FileResult written =
      FileSystem::current().writeAtomically(path_, [&addAll](const BlockConsumer& consume) {
        const BlockConsumer consumeAndReport = [&consume](std::string_view block) {
          OperationQueue::reportProgress();
          return consume(block);
        };
        PropertyListWriter writer(consumeAndReport);
        addAll(writer);
        return writer.finish();
      });
  // After a folder that could not be synced the new contents are in place all the same.
  if (!written.ok() && written.step != FileStep::kSyncFolder) return noteFailure();
  note(FileState::kWritten);
  hasFailed_ = !written.ok();
}

void ProtectedFile::remove() {
  FileSystem& files = FileSystem::current();
  // The temporaries go first, so that a crash in between cannot leave them alone.
  // A second one is only made beside the first.
  const std::string temporary = path_ + std::string(kTemporarySuffix);
  if (files.exists(temporary) || files.exists(temporary + "-1")) {
    const std::size_t name = path_.rfind('/') + 1;
    static_cast<void>(files.removeUnusedTemporaries(path_.substr(0, name), path_.substr(name)));
  }
  VWBPathManager::sharedManager().removeFolderOrFile(path_);
  hasBeenRemoved();
}

std::shared_ptr<ProtectedFile> ProtectedFiles::at(const std::string& path) {
  const MutexHold hold(mutex_);
  std::shared_ptr<ProtectedFile>& file = files_[path];
  if (!file) file = std::make_shared<ProtectedFile>(path);
  return file;
}

void ProtectedFiles::lookForRemoved() {
  std::vector<std::shared_ptr<ProtectedFile>> files;
  {
    const MutexHold hold(mutex_);
    for (const auto& [path, file] : files_) {
      if (file) files.push_back(file);
    }
  }
  for (const auto& file : files) {
    if (!FileSystem::current().exists(file->path())) file->hasBeenRemoved();
  }
}

}  // namespace VelWhiteBoard
