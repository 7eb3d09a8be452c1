// The accessors of a storage's properties.
#include <utility>

#include "VelWhiteBoard/storage/storage_state.h"
#include "VelWhiteBoard/storage/vector_storage.h"

namespace VelWhiteBoard {

VWBVectorStorage::SwitchPagePtr VWBVectorStorage::currentPage() const {
  const MutexHold hold(state_->guard);
  return state_->currentPage;
}

bool VWBVectorStorage::ignoreChanges() const { return state_->ignoreChanges; }

void VWBVectorStorage::setIgnoreChanges(bool ignore) { state_->ignoreChanges = ignore; }

bool VWBVectorStorage::hasNewChange() const {
  const MutexHold hold(state_->guard);
  return state_->hasNewChange;
}

void VWBVectorStorage::setHasNewChange(bool changed) {
  const MutexHold hold(state_->guard);
  state_->hasNewChange = changed;
}

std::string VWBVectorStorage::folder() const {
  const MutexHold hold(state_->guard);
  return state_->folder;
}

void VWBVectorStorage::setFolder(const std::string& path) {
  std::string copy = path;
  const MutexHold hold(state_->guard);
  std::swap(state_->folder, copy);
}

std::string VWBVectorStorage::pageFile() const { return state_->pageFile->get()->path(); }

void VWBVectorStorage::setPageFile(const std::string& path) {
  state_->pageFile->set(state_->files.at(path));
}

std::optional<std::string> VWBVectorStorage::wholeFile() const {
  const MutexHold hold(state_->guard);
  return state_->wholeFile;
}

void VWBVectorStorage::setWholeFile(const std::optional<std::string>& path) {
  std::optional<std::string> copy = path;
  const MutexHold hold(state_->guard);
  std::swap(state_->wholeFile, copy);
}

std::optional<std::string> VWBVectorStorage::snapFile() const {
  const MutexHold hold(state_->guard);
  return state_->snapFile;
}

void VWBVectorStorage::setSnapFile(const std::optional<std::string>& path) {
  std::optional<std::string> copy = path;
  const MutexHold hold(state_->guard);
  std::swap(state_->snapFile, copy);
}

std::vector<VWBVectorStorage::SwitchPagePtr> VWBVectorStorage::pageArray() const {
  const MutexHold hold(state_->guard);
  return state_->visited.pages();
}

void VWBVectorStorage::setPageArray(const std::vector<SwitchPagePtr>& pages) {
  VisitedPages visited(pages);
  const MutexHold hold(state_->guard);
  std::swap(state_->visited, visited);
}

VWBVectorStorage::ListsByPage VWBVectorStorage::wholeVectorss() const {
  std::vector<std::pair<std::string, WholeList>> logs;
  {
    const MutexHold hold(state_->guard);
    for (const auto& [key, page] : state_->cache.pages()) {
      if (page.whole) logs.emplace_back(key, *page.whole);
    }
  }
  // Without the guard: logs that have not been decoded yet become records here.
  ListsByPage lists;
  for (const auto& [key, log] : logs) lists.emplace(key, log.vectors());
  return lists;
}

void VWBVectorStorage::setWholeVectorss(const ListsByPage& lists) {
  std::unordered_map<std::string, WholeList> logs;
  for (const auto& [key, vectors] : lists) logs.emplace(key, SharedVectorList(vectors));
  const MutexHold hold(state_->guard);
  state_->cache.swapLogs(logs);
}

VWBVectorStorage::ListsByPage VWBVectorStorage::snapVectorss() const {
  std::vector<std::pair<std::string, SharedVectorList>> snaps;
  {
    const MutexHold hold(state_->guard);
    for (const auto& [key, page] : state_->cache.pages()) {
      if (page.snap) snaps.emplace_back(key, page.snap->list());
    }
  }
  ListsByPage lists;  // without the guard: the pages may be long
  for (const auto& [key, snap] : snaps) lists.emplace(key, snap.vectors());
  return lists;
}

void VWBVectorStorage::setSnapVectorss(const ListsByPage& lists) {
  std::unordered_map<std::string, std::unique_ptr<SnapList>> snaps;
  for (const auto& [key, vectors] : lists) {
    snaps.emplace(key, std::make_unique<SnapList>(SharedVectorList(vectors)));
  }
  const MutexHold hold(state_->guard);
  state_->cache.swapSnaps(snaps);
}

std::unordered_map<std::string, VectorPtr> VWBVectorStorage::snapQuery() const {
  const MutexHold hold(state_->guard);
  return state_->snapQuery;
}

void VWBVectorStorage::setSnapQuery(const std::unordered_map<std::string, VectorPtr>& query) {
  SnapQuery entries = query;
  std::erase_if(entries, [](const auto& entry) { return entry.second == nullptr; });
  const MutexHold hold(state_->guard);
  std::swap(state_->snapQuery, entries);
}

std::vector<std::string> VWBVectorStorage::pageCacheList() const {
  const MutexHold hold(state_->guard);
  return state_->pageCacheList;
}

void VWBVectorStorage::setPageCacheList(const std::vector<std::string>& keys) {
  std::vector<std::string> copy = keys;
  const MutexHold hold(state_->guard);
  std::swap(state_->pageCacheList, copy);
}

std::chrono::system_clock::time_point VWBVectorStorage::lastSaveDate() const {
  const MutexHold hold(state_->guard);
  return state_->timedSaves.lastSaveDate();
}

void VWBVectorStorage::setLastSaveDate(std::chrono::system_clock::time_point date) {
  const MutexHold hold(state_->guard);
  state_->timedSaves.setLastSaveDate(date);
}

std::shared_ptr<OperationQueue> VWBVectorStorage::saveQueue() const {
  const MutexHold hold(state_->guard);
  return state_->saveQueue;
}

void VWBVectorStorage::setSaveQueue(std::shared_ptr<OperationQueue> queue) {
  if (!queue) return;
  const MutexHold hold(state_->guard);
  std::swap(state_->saveQueue, queue);
}

std::shared_ptr<Semaphore> VWBVectorStorage::semphore() const {
  const MutexHold hold(state_->guard);
  state_->isSemphoreShared = true;
  return state_->semphore;
}

void VWBVectorStorage::setSemphore(std::shared_ptr<Semaphore> semaphore) {
  if (!semaphore) return;
  const MutexHold hold(state_->guard);
  state_->isSemphoreShared = true;
  std::swap(state_->semphore, semaphore);
}

}  // namespace VelWhiteBoard
