// Opening a board, and reading its state from the folder.
#include "VelWhiteBoard/storage/vector_storage.h"

#include <utility>

#include "VelWhiteBoard/foundation/values/clock.h"
#include "VelWhiteBoard/services/path_manager.h"
#include "VelWhiteBoard/storage/files/board_files.h"
#include "VelWhiteBoard/storage/reporting.h"

namespace VelWhiteBoard {

VWBVectorStorage::VWBVectorStorage() : state_(std::make_unique<State>()) {}

VWBVectorStorage::~VWBVectorStorage() = default;

std::shared_ptr<VWBVectorStorage> VWBVectorStorage::initWithPath(const std::string& path) {
  std::shared_ptr<VWBVectorStorage> storage(new VWBVectorStorage);
  auto queue = std::make_shared<OperationQueue>();
  queue->setMaxConcurrentOperationCount(1);
  storage->setFolder(boardFolder(path));
  storage->setSaveQueue(std::move(queue));
  storage->reload();
  static_cast<void>(FileSystem::current().removeUnusedTemporaries(storage->folder(), ".plist"));
  return storage;
}

void VWBVectorStorage::reload() { state_->reload(false); }

void VWBVectorStorage::State::reload(bool isRemoved) {
  std::string board;
  {
    const MutexHold hold(guard);
    board = folder;
  }
  const std::shared_ptr<ProtectedFile> file = files.at(pageListFile(board));
  VWBPathManager::sharedManager().createFolderWithPath(board);
  // Writes that were queued before `clear` are not waited for: they would bring the pages back.
  const bool isNewest = isRemoved || waitForPendingFiles({file->pendingName()});
  const ProtectedFile::Version begun = file->beginReading();
  const ReadList<VelWbVecSwitchPage> pages = readPages(file->path());
  VisitedPages newVisited(pages.list);

  // The pages are dropped, and the observer is told, without the guard.
  PageCache::Pages dropped;
  Reporting reporting;
  const MutexHold hold(guard);
  reporting.begin(*this, ChangeReport::Kind::kReloaded, currentKey(), true);
  // From here on nothing can throw.
  pageFile->set(file);
  dropped = cache.takeAll();
  file->endReading(begun, isNewest ? pages.found : FileState::kUnknown);
  pageCacheList.clear();
  std::swap(visited, newVisited);
  timedSaves.setLastSaveDate(currentDate());
  hasNewChange = false;
  reporting.complete(*this);
}

bool VWBVectorStorage::State::hasVectors(const std::string& key) const {
  std::string path;
  {
    const MutexHold hold(guard);
    const CachedPage* page = cache.find(key);
    if (page != nullptr && page->snap) return true;
    for (const std::string& cached : pageCacheList) {
      if (cached == key) return true;
    }
    path = wholeListFile(folder, key);
  }
  return VWBPathManager::sharedManager().isFileExist(path);
}

}  // namespace VelWhiteBoard
