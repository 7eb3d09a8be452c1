// Forgetting pages, and whole boards.
#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "VelWhiteBoard/services/path_manager.h"
#include "VelWhiteBoard/storage/files/board_files.h"
#include "VelWhiteBoard/storage/reporting.h"
#include "VelWhiteBoard/storage/vector_storage.h"

namespace VelWhiteBoard {

namespace {

/// One queued removal of a page's two files.
struct QueuedRemoval {
  std::vector<std::shared_ptr<ProtectedFile>> files;
  std::vector<PendingFile> pending;

  void run() {
    for (PendingFile& file : pending) file.begin();
    for (const auto& file : files) file->remove();
  }
};

}  // namespace

void VWBVectorStorage::clear() {
  VWBPathManager::sharedManager().removeFolderOrFile(folder());
  // Once the files are gone nothing must bring them back, so the state goes before anything throws.
  PageCache::Pages pages;
  SnapQuery query;
  VisitedPages visited;
  {
    const State::ShortOperation operation(*state_);
    pages = state_->cache.takeAll();
    std::swap(state_->snapQuery, query);
    std::swap(state_->visited, visited);
    state_->hasNewChange = false;
  }
  state_->files.lookForRemoved();
  state_->reload(true);
}

void VWBVectorStorage::clearPage(const VelWbVecSwitchPage& page) {
  const std::string key = page.pageInfo();
  // Dropped without the guard: the page may be long.
  PageCache::Pages::node_type cleared;
  SnapQuery query;
  State::Reporting reporting;
  for (;;) {
    state_->waitForBatch(key);
    const State::ShortOperation operation(*state_);
    if (state_->busyPages.contains(key)) continue;
    return state_->clearPage(page, key, cleared, query, reporting);
  }
}

void VWBVectorStorage::State::clearPage(const VelWbVecSwitchPage& page, const std::string& key,
                                        PageCache::Pages::node_type& cleared, SnapQuery& query,
                                        Reporting& reporting) {
  auto removal = std::make_shared<QueuedRemoval>();
  for (const std::string& path : {wholeListFile(folder, key), snapListFile(folder, key)}) {
    removal->files.push_back(files.at(path));
    removal->pending.emplace_back(removal->files.back()->pendingName(), saveQueue);
  }
  const auto operation = OperationQueue::makeOperation([removal] { removal->run(); });
  const bool isCurrent = currentPage && isSamePage(page, *currentPage);
  reporting.begin(*this, ChangeReport::Kind::kEntries, key, isCurrent);
  EntryChanges changes(*history, nullptr, reporting.changes());
  changes.reserve(1);
  // From here on nothing can throw.
  changes.note({EntryChange::Kind::kCleared, nullptr});
  ++clearings;
  std::erase(pageCacheList, key);
  cleared = cache.take(key);
  if (isCurrent) {
    std::swap(snapQuery, query);
    hasNewChange = false;
  }
  reporting.complete(*this);
  saveQueue->addOperation(operation);
}

}  // namespace VelWhiteBoard
