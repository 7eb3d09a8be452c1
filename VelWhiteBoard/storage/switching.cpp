// Making a page current.
#include <memory>
#include <optional>
#include <utility>

#include "VelWhiteBoard/foundation/values/clock.h"
#include "VelWhiteBoard/storage/files/board_files.h"
#include "VelWhiteBoard/storage/reporting.h"
#include "VelWhiteBoard/storage/vector_storage.h"

namespace VelWhiteBoard {

namespace {

bool isSameSwitch(const VelWbVecSwitchPage& page, const VelWbVecSwitchPage& other) {
  return isSamePage(page, other) && page.resource == other.resource;
}

SnapQuery queryOf(const SharedVectorList& snap) {
  SnapQuery query;
  snap.forEach([&query](const VectorPtr& entry) {
    if (entry->ID) query[*entry->ID] = entry;
  });
  return query;
}

}  // namespace

VectorList VWBVectorStorage::switchPage(const SwitchPagePtr& page) {
  if (!page) return {};
  const std::string key = page->pageInfo();
  saveFile(true);
  for (;;) {
    // Waits before it takes the semaphore, so that other threads do not wait for the disk. Another
    // thread may queue a removal, or append a batch, in between: then it waits again.
    state_->waitForBatch(key);
    const bool isQuiet = state_->waitForPageFiles(key);
    State::Reporting reporting;
    const State::LongOperation operation(*state_);
    {
      const MutexHold hold(state_->guard);
      if (state_->busyPages.contains(key)) continue;
    }
    if (isQuiet && state_->arePageFilesPending(key)) continue;
    return state_->switchTo(page, key, isQuiet, reporting);
  }
}

VectorList VWBVectorStorage::State::switchTo(const SwitchPagePtr& page, const std::string& key,
                                             bool isNewest, Reporting& reporting) {
  ReadPage read;
  bool isCurrent = false;
  {
    const MutexHold hold(guard);
    isCurrent = currentPage && isSameSwitch(*currentPage, *page);
  }
  std::optional<SharedVectorList> cachedSnap;
  if (!isCurrent) {
    read = readLists(key, isNewest);
    const MutexHold hold(guard);
    const CachedPage* cached = cache.find(key);
    if (cached != nullptr && cached->snap) cachedSnap = cached->snap->list();
  }
  // Without the guard: the page may be long. Nothing saves to it meanwhile, because the semaphore
  // is held.
  if (!read.snap) read.snap = std::make_unique<SnapList>();
  const SharedVectorList& snap = cachedSnap ? *cachedSnap : read.snap->list();
  SnapQuery query = queryOf(snap);
  VectorList entries = snap.vectors();

  // All that may throw comes first; what it has replaced is dropped without the guard.
  WriteBacklog::Prepared pageWrite;
  WriteBacklog::Prepared visitedWrite;
  SwitchPagePtr copy = page->mutableCopyWithZone();
  const MutexHold hold(guard);
  // The page that is left has been queued before; what was accepted since must not stay behind.
  const bool isSaved = !isCurrent && hasNewChange && currentPage && hasUnqueuedChange;
  if (isSaved) {
    pageWrite = preparePageWrite(currentKey(), wholeFile, snapFile, SaveOrder::kWholeFirst);
  }
  if (!isCurrent) {
    std::optional<std::string> newWholeFile = wholeListFile(folder, key);
    std::optional<std::string> newSnapFile = snapListFile(folder, key);
    std::string newKey = key;
    std::optional<VisitedPages::Next> next;
    if (!ignoreChanges) {
      next = visited.prepare(page);
      // The page's own files are not written here, and its key never enters `pageCacheList`: that
      // is for pages without stored vectors, and since its lists are cached it always has some.
      visitedWrite = prepareVisitedPagesWrite(next->forFile);
    }
    reporting.begin(*this, ChangeReport::Kind::kSwitched, key, true);
    cacheLists(key, read);
    // From here on nothing can throw.
    hasNewChange = false;
    hasUnqueuedChange = false;
    keyOfCurrent_ = {copy->WBID, copy->curPage, std::move(newKey)};
    std::swap(currentPage, copy);
    std::swap(wholeFile, newWholeFile);
    std::swap(snapFile, newSnapFile);
    std::swap(snapQuery, query);
    if (next) visited.record(std::move(*next));
    reporting.complete(*this);
  }
  if (isSaved) timedSaves.setLastSaveDate(currentDate());
  backlog.queue(pageWrite);
  backlog.queue(visitedWrite);
  return entries;
}

VWBVectorStorage::SwitchPagePtr VWBVectorStorage::latestPage() const {
  const MutexHold hold(state_->guard);
  const auto& pages = state_->visited.pages();
  return pages.empty() ? nullptr : pages.back();
}

bool VWBVectorStorage::hasVectorsWithPage(const VelWbVecSwitchPage& page) const {
  return state_->hasVectors(page.pageInfo());
}

VectorList VWBVectorStorage::snapWithPage(const VelWbVecSwitchPage& page) const {
  const std::string key = page.pageInfo();
  std::string path;
  std::optional<SharedVectorList> snap;
  {
    const MutexHold hold(state_->guard);
    const CachedPage* cached = state_->cache.find(key);
    if (cached != nullptr && cached->snap) snap = cached->snap->list();
    path = snapListFile(state_->folder, key);
  }
  if (snap) return snap->vectors();  // without the guard: the page may be long
  waitForPendingFiles({pendingName(path)});
  // The storage does not keep what it reads here, so the file does not count as read.
  return readVectors(path).list;
}

}  // namespace VelWhiteBoard
