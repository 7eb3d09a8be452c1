#include "VelWhiteBoard/storage/batch.h"

#include <cstdint>
#include <utility>

#include "VelWhiteBoard/storage/files/board_files.h"
#include "VelWhiteBoard/storage/lists/appending_rule.h"
#include "VelWhiteBoard/storage/lists/saving_rule.h"
#include "VelWhiteBoard/storage/naming.h"

namespace VelWhiteBoard {

VWBVectorStorage::State::Batch::~Batch() { end(); }

void VWBVectorStorage::State::Batch::begin() {
  const MutexHold hold(state_.guard);
  while (!state_.busyPages.insert(key_).second) state_.batchEnded.wait(state_.guard);
  hasBegun_ = true;
}

void VWBVectorStorage::State::Batch::end() noexcept {
  if (!std::exchange(hasBegun_, false)) return;
  const MutexHold hold(state_.guard);
  state_.busyPages.erase(key_);
  state_.batchEnded.notifyAll();
}

ReadPage VWBVectorStorage::State::Batch::readAndBegin() {
  for (;;) {
    const std::uint64_t before = state_.clearings;
    const bool isNewest = state_.waitForPageFiles(key_);
    ReadPage read = state_.readLists(key_, isNewest);
    begin();
    if (before == state_.clearings) return read;
    end();
  }
}

void VWBVectorStorage::State::Batch::applySome(std::span<const VectorPtr>& rest, CachedPage& page,
                                               ClearedLists& cleared) {
  for (std::size_t count = 0; !rest.empty() && count < kVectorsAtATime; ++count) {
    if (const VectorPtr& vector = rest.front()) {
      page.snap->ensureIndex();
      page.whole->reserveBack();
      apply(vector, *page.snap, cleared);
      page.whole->pushReserved(vector);
    }
    rest = rest.subspan(1);
  }
}

void VWBVectorStorage::State::Batch::apply(const VectorPtr& vector, SnapList& snap,
                                           ClearedLists& cleared) {
  EntryChanges changes(*state_.history, &undo_, reporting_.changes());
  if (rule_ == BatchRule::kAppending) return applyAppended(vector, snap, changes, cleared.snap);
  Naming naming(vector, state_.cache, changes);
  if (naming.isEntry()) named_ = vector;
  query_.prepare(*vector, snap);
  applySaved(vector, snap, query_.query(), changes, cleared);
  naming.keep();
}

void VWBVectorStorage::State::Batch::undo(CachedPage& page) noexcept {
  // A list that was read for the batch will be read again.
  if (!hadSnap_) {
    state_.cache.setSnap(page, nullptr);
  } else if (snapBefore_) {
    page.snap->rollBack(std::move(*snapBefore_));
  }
  if (!hadWhole_) {
    page.whole.reset();
  } else if (wholeBefore_) {
    page.whole = std::move(wholeBefore_);
  }
  undo_.restore(*state_.history);
  if (named_) state_.cache.hasBeenNamed(*named_);
}

bool VWBVectorStorage::State::Batch::append(std::span<const VectorPtr> vectors) {
  ReadPage read = readAndBegin();
  WriteBacklog::Prepared write;
  for (bool isFirst = true; isFirst || !vectors.empty(); isFirst = false) {
    if (!isFirst) state_.giveWay();
    ClearedLists cleared;  // dropped without the guard
    const ShortOperation operation(state_);
    if (isFirst && state_.currentPage && isSamePage(page_, *state_.currentPage)) return false;
    if (isFirst) {
      const CachedPage* cached = state_.cache.find(key_);
      hadSnap_ = cached != nullptr && cached->snap;
      hadWhole_ = cached != nullptr && cached->whole;
    }
    CachedPage& page = state_.cacheLists(key_, read);
    try {
      if (isFirst) {
        reporting_.begin(state_, ChangeReport::Kind::kEntries, key_, false);
        snapBefore_ = page.snap->list();
        wholeBefore_ = page.whole;
      }
      applySome(vectors, page, cleared);
      if (!vectors.empty()) continue;
      write = state_.preparePageWrite(key_, wholeListFile(state_.folder, key_),
                                      snapListFile(state_.folder, key_), SaveOrder::kSnapFirst);
    } catch (...) {
      undo(page);
      throw;
    }
    reporting_.complete(state_);
    state_.backlog.queue(write);
  }
  return true;
}

}  // namespace VelWhiteBoard
