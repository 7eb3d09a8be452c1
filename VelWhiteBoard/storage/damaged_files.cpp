#include "VelWhiteBoard/storage/damaged_files.h"

#include "VelWhiteBoard/foundation/file_system.h"

namespace VelWhiteBoard {

void DamagedFiles::add(const std::string& file) {
  const MutexHold hold(mutex_);
  files_.insert(file);
}

void DamagedFiles::remove(const std::string& file) {
  const MutexHold hold(mutex_);
  files_.erase(file);
}

bool DamagedFiles::setAside(const std::string& file) {
  {
    const MutexHold hold(mutex_);
    if (!files_.contains(file)) return true;
  }
  FileSystem& files = FileSystem::current();
  FileStatus status;
  const FileResult looked = files.status(file, status);
  if (!looked.ok()) return false;
  if (status.kind == FileKind::kFile) {
    const FileResult moved = files.rename(file, file + std::string(kDamagedSuffix));
    if (!moved.ok()) return false;
  }
  remove(file);
  return true;
}

}  // namespace VelWhiteBoard
