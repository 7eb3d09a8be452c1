#include "VelWhiteBoard/storage/files/protected_file.h"

#include <cerrno>
#include <utility>
#include <vector>

#include "VelWhiteBoard/foundation/queue/operation_queue.h"
#include "VelWhiteBoard/storage/files/pending_files.h"

namespace VelWhiteBoard {

void WriteObserverSlot::set(WriteObserver observer) {
  auto shared = observer ? std::make_shared<const WriteObserver>(std::move(observer)) : nullptr;
  const MutexHold hold(mutex_);
  std::swap(observer_, shared);
}

void WriteObserverSlot::tell(WriteReport::Kind kind, const std::string& path,
                             const FileResult& result) noexcept {
  std::shared_ptr<const WriteObserver> observer;
  {
    const MutexHold hold(mutex_);
    observer = observer_;
  }
  if (!observer) return;
  try {
    (*observer)(WriteReport{kind, path, result});
  } catch (...) {
    // The file is what it is; the observer alone has failed.
  }
}

ProtectedFile::ProtectedFile(std::string path, std::shared_ptr<WriteObserverSlot> observer)
    : path_(std::move(path)),
      pendingName_(VelWhiteBoard::pendingName(path_)),
      observer_(std::move(observer)) {}

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

FileResult ProtectedFile::moveAside() {
  FileSystem& files = FileSystem::current();
  if (!files.exists(path_)) {
    // Also when the system would not tell. Then replacing it might destroy it.
    FileStatus status;
    return files.status(path_, status);
  }
  const std::string aside = path_ + std::string(kDamagedSuffix);
  FileResult moved = files.renameToNew(path_, aside);
  for (int number = 2; moved.error == EEXIST; ++number) {
    moved = files.renameToNew(path_, aside + '-' + std::to_string(number));
  }
  return moved;
}

FileResult ProtectedFile::write(const AddRecords& addAll) {
  if (!mayReplace()) {
    FileResult moved = moveAside();
    if (!moved.ok()) return moved;
    note(FileState::kAbsent);
  }
  return FileSystem::current().writeAtomically(path_, [&addAll](const BlockConsumer& consume) {
    const BlockConsumer consumeAndReport = [&consume](std::string_view block) {
      OperationQueue::reportProgress();
      return consume(block);
    };
    PropertyListWriter writer(consumeAndReport);
    addAll(writer);
    return writer.finish();
  });
}

void ProtectedFile::replace(const AddRecords& addAll) {
  const FileResult written = write(addAll);
  // After a folder that could not be synced the new contents are in place all the same.
  if (written.ok() || written.step == FileStep::kSyncFolder) note(FileState::kWritten);
  if (!written.ok()) return noteFailure(written);
  hasFailed_ = false;
  observer_->tell(WriteReport::Kind::kWritten, path_, written);
}

void ProtectedFile::noteFailure(const FileResult& result) noexcept {
  hasFailed_ = true;
  observer_->tell(WriteReport::Kind::kWritten, path_, result);
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
  const FileResult removed =
      files.exists(path_) ? files.removeRecursively(path_) : FileResult::success();
  hasBeenRemoved();
  observer_->tell(WriteReport::Kind::kRemoved, path_, removed);
}

std::shared_ptr<ProtectedFile> ProtectedFiles::at(const std::string& path) {
  const MutexHold hold(mutex_);
  std::shared_ptr<ProtectedFile>& file = files_[path];
  if (!file) file = std::make_shared<ProtectedFile>(path, observer_);
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
