// Opening a board, and the properties of its storage.
#include "VelWhiteBoard/storage/vector_storage.h"

#include <utility>

#include "VelWhiteBoard/foundation/clock.h"
#include "VelWhiteBoard/services/path_manager.h"
#include "VelWhiteBoard/storage/board_files.h"
#include "VelWhiteBoard/storage/storage_state.h"

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
  return storage;
}

void VWBVectorStorage::reload() {
  const std::string board = folder();
  VWBPathManager::sharedManager().createFolderWithPath(board);
  setPageFile(pageListFile(board));
  VisitedPages visited(loadPages(pageFile(), state_->damaged.get()));

  const MutexHold hold(state_->guard);
  state_->cache.clear();
  state_->pageCacheList.clear();
  state_->visited = std::move(visited);
  state_->lastSaveDate = currentDate();
  state_->hasNewChange = false;
}

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
  const MutexHold hold(state_->guard);
  state_->folder = path;
}

std::string VWBVectorStorage::pageFile() const { return state_->pageFile->get(); }

void VWBVectorStorage::setPageFile(const std::string& path) { state_->pageFile->set(path); }

std::optional<std::string> VWBVectorStorage::wholeFile() const {
  const MutexHold hold(state_->guard);
  return state_->wholeFile;
}

void VWBVectorStorage::setWholeFile(const std::optional<std::string>& path) {
  const MutexHold hold(state_->guard);
  state_->wholeFile = path;
}

std::optional<std::string> VWBVectorStorage::snapFile() const {
  const MutexHold hold(state_->guard);
  return state_->snapFile;
}

void VWBVectorStorage::setSnapFile(const std::optional<std::string>& path) {
  const MutexHold hold(state_->guard);
  state_->snapFile = path;
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
  std::vector<std::pair<std::string, PageLog>> logs;
  {
    const MutexHold hold(state_->guard);
    for (const auto& [key, page] : state_->cache.pages()) {
      if (page.whole) logs.emplace_back(key, *page.whole);
    }
  }
  // Without the guard: logs that nobody has looked at yet are read here.
  ListsByPage lists;
  for (const auto& [key, log] : logs) lists.emplace(key, log.vectors());
  return lists;
}

void VWBVectorStorage::setWholeVectorss(const ListsByPage& lists) {
  const MutexHold hold(state_->guard);
  state_->cache.forEach([](CachedPage& page) { page.whole.reset(); });
  for (const auto& [key, vectors] : lists) state_->cache.at(key).whole.emplace(vectors);
}

VWBVectorStorage::ListsByPage VWBVectorStorage::snapVectorss() const {
  const MutexHold hold(state_->guard);
  ListsByPage lists;
  for (const auto& [key, page] : state_->cache.pages()) {
    if (page.snap) lists.emplace(key, page.snap->list().vectors());
  }
  return lists;
}

void VWBVectorStorage::setSnapVectorss(const ListsByPage& lists) {
  const MutexHold hold(state_->guard);
  state_->cache.forEach([](CachedPage& page) { page.snap.reset(); });
  for (const auto& [key, vectors] : lists) state_->cache.at(key).snap.emplace(PageList(vectors));
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
  const MutexHold hold(state_->guard);
  state_->pageCacheList = keys;
}

std::chrono::system_clock::time_point VWBVectorStorage::lastSaveDate() const {
  const MutexHold hold(state_->guard);
  return state_->lastSaveDate;
}

void VWBVectorStorage::setLastSaveDate(std::chrono::system_clock::time_point date) {
  const MutexHold hold(state_->guard);
  state_->lastSaveDate = date;
}

std::shared_ptr<OperationQueue> VWBVectorStorage::saveQueue() const {
  const MutexHold hold(state_->guard);
  return state_->saveQueue;
}

void VWBVectorStorage::setSaveQueue(std::shared_ptr<OperationQueue> queue) {
  if (!queue) return;
  const MutexHold hold(state_->guard);
  state_->pendingSaves.close();
  if (state_->lastVisitedPagesSave) state_->lastVisitedPagesSave->close();
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
