// Vectors into the lists, lists into the queue.
#include <utility>

#include "VelWhiteBoard/foundation/clock.h"
#include "VelWhiteBoard/services/path_manager.h"
#include "VelWhiteBoard/storage/board_files.h"
#include "VelWhiteBoard/storage/storage_state.h"
#include "VelWhiteBoard/storage/vector_storage.h"

namespace VelWhiteBoard {

namespace {

/// A page is written at most this often, unless a save is forced.
constexpr std::chrono::seconds kSaveInterval{20};

bool isSamePage(const VelWbVecSwitchPage& page, const VelWbVecSwitchPage& other) {
  return page.curPage == other.curPage && page.WBID == other.WBID;
}

}  // namespace

bool VWBVectorStorage::State::isSaveDue(std::chrono::system_clock::time_point now) const {
  // Not `now - lastSaveDate`: a client may set any date, and the difference must not overflow.
  return lastSaveDate < now - kSaveInterval;
}

void VWBVectorStorage::State::queuePageSave(const std::string& key,
                                            std::optional<std::string> wholePath,
                                            std::optional<std::string> snapPath, SaveOrder order) {
  const CachedPage* page = cache.find(key);
  auto save = std::make_shared<PageSave>(
      page != nullptr && page->whole ? *page->whole : PageLog(), std::move(wholePath),
      page != nullptr && page->snap ? page->snap->list() : PageList(), std::move(snapPath), order,
      damaged);
  if (!pendingSaves.add(save)) return;
  saveQueue->addOperationWithBlock([save = std::move(save)] { save->write(); });
}

CachedPage VWBVectorStorage::State::readLists(const std::string& key) const {
  std::string wholePath;
  std::string snapPath;
  bool hasWhole = false;
  bool hasSnap = false;
  {
    const MutexHold hold(guard);
    wholePath = wholeListFile(folder, key);
    snapPath = snapListFile(folder, key);
    const CachedPage* page = cache.find(key);
    hasWhole = page != nullptr && page->whole;
    hasSnap = page != nullptr && page->snap;
  }
  CachedPage read;
  if (!hasWhole) read.whole = PageLog::open(wholePath, damaged);
  if (!hasSnap) read.snap.emplace(PageList(loadVectors(snapPath, damaged.get())));
  return read;
}

CachedPage& VWBVectorStorage::State::cacheLists(const std::string& key, CachedPage read) {
  CachedPage& page = cache.at(key);
  if (!page.whole) page.whole = std::move(read.whole);
  if (!page.snap) page.snap = std::move(read.snap);
  // Neither cached nor read: it was cached when the files were read, and has gone since.
  if (!page.whole) page.whole.emplace();
  if (!page.snap) page.snap.emplace();
  return page;
}

void VWBVectorStorage::saveFile(bool force) {
  State& state = *state_;
  const State::ShortOperation operation(state);
  if (!state.hasNewChange) return;
  const auto now = currentDate();
  if (!force && !state.isSaveDue(now)) return;
  if (!state.currentPage) return;
  state.lastSaveDate = now;
  state.queuePageSave(state.currentKey, state.wholeFile, state.snapFile, SaveOrder::wholeFirst);
}

void VWBVectorStorage::saveVector(const VectorPtr& vector) {
  State& state = *state_;
  if (!vector || state.ignoreChanges) return;
  bool saveIsDue = false;
  {
    const State::ShortOperation operation(state);
    CachedPage& page = state.cache.at(state.currentKey);
    if (!page.snap) page.snap.emplace();
    if (!page.whole) page.whole.emplace();
    const bool wasNamed = vector->ID.has_value();
    applySaved(vector, *page.snap, state.snapQuery, state.pendingSaves);
    if (!wasNamed) {
      // The same vector may stand on pages to which it was appended without an identifier.
      state.cache.forEach([&vector](CachedPage& each) {
        if (each.snap) each.snap->hasBeenNamed(*vector);
      });
    }
    page.whole->push_back(vector);
    state.hasNewChange = true;
    // Looked at here already, so that a piece need not wait on the semaphore a second time.
    saveIsDue = state.isSaveDue(currentDate());
  }
  if (saveIsDue) saveFile(false);
}

bool VWBVectorStorage::ignoreVector(const VelWbBaseVector& vector) const {
  return isTransient(vector);
}

void VWBVectorStorage::appendVectors(const VectorList& vectors, const SwitchPagePtr& toPage) {
  if (!toPage) return;
  if (const auto current = currentPage(); current && isSamePage(*toPage, *current)) {
    for (const VectorPtr& vector : vectors) saveVector(vector);
    return;
  }
  const std::string key = toPage->pageInfo();
  State& state = *state_;
  CachedPage read = state.readLists(key);

  const State::ShortOperation operation(state);
  CachedPage& page = state.cacheLists(key, std::move(read));
  for (const VectorPtr& vector : vectors) {
    if (!vector) continue;
    applyAppended(vector, *page.snap, state.pendingSaves);
    page.whole->push_back(vector);
  }
  state.queuePageSave(key, wholeListFile(state.folder, key), snapListFile(state.folder, key),
                      SaveOrder::snapFirst);
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

bool VWBVectorStorage::hasVectorsWithPage(const VelWbVecSwitchPage& page) const {
  return state_->hasVectors(page.pageInfo());
}

}  // namespace VelWhiteBoard
