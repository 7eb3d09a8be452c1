// Moving between pages, and forgetting them.
#include <utility>

#include "VelWhiteBoard/services/path_manager.h"
#include "VelWhiteBoard/storage/board_files.h"
#include "VelWhiteBoard/storage/storage_state.h"
#include "VelWhiteBoard/storage/vector_storage.h"

namespace VelWhiteBoard {

void VWBVectorStorage::State::queueVisitedPagesSave() {
  if (lastVisitedPagesSave) {
    if (lastVisitedPagesSave->replaceBy(visited.forFile())) return;
    lastVisitedPagesSave->supersede();
  }
  lastVisitedPagesSave = std::make_shared<VisitedPagesSave>(visited.forFile(), pageFile, damaged);
  saveQueue->addOperationWithBlock([save = lastVisitedPagesSave] { save->write(); });
}

VWBVectorStorage::SwitchPagePtr VWBVectorStorage::latestPage() const {
  const MutexHold hold(state_->guard);
  const auto& pages = state_->visited.pages();
  return pages.empty() ? nullptr : pages.back();
}

VectorList VWBVectorStorage::switchPage(const SwitchPagePtr& page) {
  if (!page) return {};
  saveFile(true);  // waits on the semaphore itself, so it comes first
  const State::LongOperation operation(*state_);
  const std::string key = page->pageInfo();
  {
    const MutexHold hold(state_->guard);
    const SwitchPagePtr current = state_->currentPage;
    if (current && current->WBID == page->WBID && current->resource == page->resource &&
        current->curPage == page->curPage) {
      return {};
    }
    state_->hasNewChange = false;
    state_->currentPage = page->mutableCopyWithZone();
    state_->currentKey = key;
    state_->wholeFile = wholeListFile(state_->folder, key);
    state_->snapFile = snapListFile(state_->folder, key);
  }
  CachedPage read = state_->readLists(key);

  const MutexHold hold(state_->guard);
  const PageList& snap = state_->cacheLists(key, std::move(read)).snap->list();
  SnapQuery query;
  snap.forEach([&query](const VectorPtr& entry) {
    if (entry->ID) query[*entry->ID] = entry;
  });
  state_->snapQuery = std::move(query);
  if (!state_->ignoreChanges) {
    state_->visited.record(page);
    // The page's own files are not written here, and its key never enters `pageCacheList`: that is
    // for pages without stored vectors, and since its lists are cached by now it always has some.
    state_->queueVisitedPagesSave();
  }
  return snap.vectors();
}

VectorList VWBVectorStorage::snapWithPage(const VelWbVecSwitchPage& page) const {
  const std::string key = page.pageInfo();
  std::string path;
  {
    const MutexHold hold(state_->guard);
    const CachedPage* cached = state_->cache.find(key);
    if (cached != nullptr && cached->snap) return cached->snap->list().vectors();
    path = snapListFile(state_->folder, key);
  }
  return loadVectors(path, state_->damaged.get());
}

void VWBVectorStorage::clear() {
  VWBPathManager::sharedManager().removeFolderOrFile(folder());
  {
    State& state = *state_;
    const State::ShortOperation operation(state);
    state.cache.clear();
    state.snapQuery.clear();
  }
  reload();
}

void VWBVectorStorage::clearPage(const VelWbVecSwitchPage& page) {
  const std::string key = page.pageInfo();
  State& state = *state_;
  const State::ShortOperation operation(state);
  std::erase(state.pageCacheList, key);
  state.cache.erase(key);
  // The resource is not compared: pages that differ only in it share their key, so their lists too.
  if (state.currentPage && page.WBID == state.currentPage->WBID &&
      page.curPage == state.currentPage->curPage) {
    state.snapQuery.clear();
    state.hasNewChange = false;
  }
  std::string whole = wholeListFile(state.folder, key);
  std::string snap = snapListFile(state.folder, key);
  state.pendingSaves.closeThoseOf(whole, snap);
  state.saveQueue->addOperationWithBlock([whole = std::move(whole), snap = std::move(snap)] {
    VWBPathManager::sharedManager().removeFolderOrFile(whole);
    VWBPathManager::sharedManager().removeFolderOrFile(snap);
  });
}

}  // namespace VelWhiteBoard
