// A page's lists from its files into the cache, and from the cache into the queue.
#include <utility>

#include "VelWhiteBoard/storage/files/board_files.h"
#include "VelWhiteBoard/storage/storage_state.h"

namespace VelWhiteBoard {

const std::string& VWBVectorStorage::State::currentKey() {
  if (!currentPage) {
    keyOfCurrent_ = {};
  } else if (keyOfCurrent_.key.empty() || keyOfCurrent_.WBID != currentPage->WBID ||
             keyOfCurrent_.curPage != currentPage->curPage) {
    // The record is the client's to see; if it edits it, it moves the vectors to another page.
    keyOfCurrent_ = {currentPage->WBID, currentPage->curPage, currentPage->pageInfo()};
  }
  return keyOfCurrent_.key;
}

std::vector<std::string> VWBVectorStorage::State::namesToRead(const std::string& key) {
  const MutexHold hold(guard);
  const CachedPage* page = cache.find(key);
  std::vector<std::string> names;
  if (page == nullptr || !page->whole) {
    names.push_back(files.at(wholeListFile(folder, key))->pendingName());
  }
  if (page == nullptr || !page->snap) {
    names.push_back(files.at(snapListFile(folder, key))->pendingName());
  }
  return names;
}

bool VWBVectorStorage::State::waitForPageFiles(const std::string& key) {
  return waitForPendingFiles(namesToRead(key));
}

bool VWBVectorStorage::State::arePageFilesPending(const std::string& key) {
  return arePending(namesToRead(key));
}

ReadPage VWBVectorStorage::State::readLists(const std::string& key, bool isNewest) {
  std::shared_ptr<ProtectedFile> wholeList;
  std::shared_ptr<ProtectedFile> snapList;
  {
    const MutexHold hold(guard);
    const CachedPage* page = cache.find(key);
    if (page == nullptr || !page->whole) wholeList = files.at(wholeListFile(folder, key));
    if (page == nullptr || !page->snap) snapList = files.at(snapListFile(folder, key));
  }
  ReadPage read;
  std::shared_ptr<UndecodedLog> unread;
  if (wholeList) {
    const ProtectedFile::Version begun = wholeList->beginReading();
    FileBytes bytes;
    const FileResult given = FileSystem::current().readBytes(wholeList->path(), bytes);
    if (given.ok()) {
      unread = std::make_shared<UndecodedLog>(std::move(bytes), wholeList, begun, isNewest);
    } else {
      wholeList->endReading(begun, isNewest ? stateAfterReading(given) : FileState::kUnknown);
    }
    read.whole.emplace(unread);
  }
  if (snapList) {
    const ProtectedFile::Version begun = snapList->beginReading();
    const ReadList<VelWbBaseVector> vectors = readVectors(snapList->path());
    read.snap = std::make_unique<SnapList>(SharedVectorList(vectors.list));
    snapList->endReading(begun, isNewest ? vectors.found : FileState::kUnknown);
  }
  if (unread) UndecodedLog::readInBackground(unread);
  return read;
}

CachedPage& VWBVectorStorage::State::cacheLists(const std::string& key, ReadPage& read) {
  CachedPage& page = cache.at(key);
  if (!page.snap) {
    if (!read.snap) read.snap = std::make_unique<SnapList>();
    cache.setSnap(page, std::move(read.snap));
  }
  if (!page.whole) page.whole.emplace(read.whole ? std::move(*read.whole) : WholeList());
  return page;
}

std::shared_ptr<const FileSlot> VWBVectorStorage::State::slotOf(
    const std::optional<std::string>& path, const std::shared_ptr<const FileSlot>& last) {
  if (!path) return nullptr;
  std::shared_ptr<ProtectedFile> file = files.at(*path);
  return last && last->get() == file ? last : std::make_shared<const FileSlot>(std::move(file));
}

WriteBacklog::Prepared VWBVectorStorage::State::preparePageWrite(
    const std::string& key, const std::optional<std::string>& wholePath,
    const std::optional<std::string>& snapPath, SaveOrder order) {
  const CachedPage& page = cache.at(key);
  return preparePageWrite(key, slotOf(wholePath, page.wholeFile), slotOf(snapPath, page.snapFile),
                          order);
}

WriteBacklog::Prepared VWBVectorStorage::State::preparePageWrite(
    const std::string& key, std::shared_ptr<const FileSlot> whole,
    std::shared_ptr<const FileSlot> snap, SaveOrder order) {
  CachedPage& page = cache.at(key);
  std::vector<FileContents> contents;
  std::vector<PendingFile> pending;
  std::string names;
  const std::shared_ptr<OperationQueue> queue = saveQueue;
  const auto add = [&](const std::shared_ptr<const FileSlot>& slot, WholeList vectors) {
    if (!slot) return;
    const std::shared_ptr<ProtectedFile> file = slot->get();
    contents.push_back({slot, std::move(vectors)});
    pending.emplace_back(file->pendingName(), queue);
    names += file->path() + '\n';
  };
  const auto addWhole = [&] { add(whole, page.whole ? *page.whole : WholeList()); };
  contents.reserve(2);
  pending.reserve(2);
  if (order == SaveOrder::kWholeFirst) addWhole();
  add(snap, WholeList(page.snap ? page.snap->list() : SharedVectorList()));
  if (order == SaveOrder::kSnapFirst) addWhole();
  page.wholeFile = std::move(whole);
  page.snapFile = std::move(snap);
  return backlog.prepare(names,
                         std::make_unique<QueuedWrite>(std::move(contents), std::move(pending),
                                                       History::take(history)),
                         queue);
}

WriteBacklog::Prepared VWBVectorStorage::State::prepareVisitedPagesWrite(SharedVectorList pages) {
  const std::shared_ptr<ProtectedFile> file = pageFile->get();
  std::vector<FileContents> contents;
  contents.push_back({pageFile, WholeList(std::move(pages))});
  std::vector<PendingFile> pending;
  pending.emplace_back(file->pendingName(), saveQueue);
  return backlog.prepare(
      {}, std::make_unique<QueuedWrite>(std::move(contents), std::move(pending), std::nullopt),
      saveQueue);
}

}  // namespace VelWhiteBoard
