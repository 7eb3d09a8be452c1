// Saving a vector on the current page, and writing that page.
#include <new>
#include <optional>
#include <string>
#include <utility>

#include "VelWhiteBoard/foundation/values/clock.h"
#include "VelWhiteBoard/services/vector_manager.h"
#include "VelWhiteBoard/storage/lists/saving_rule.h"
#include "VelWhiteBoard/storage/naming.h"
#include "VelWhiteBoard/storage/reporting.h"
#include "VelWhiteBoard/storage/vector_storage.h"

namespace VelWhiteBoard {

void VWBVectorStorage::State::saveFile(bool force) {
  WriteBacklog::Prepared write;
  const ShortOperation operation(*this);
  if (!hasNewChange) return;
  const auto now = currentDate();
  if (!force && !timedSaves.isDue(now)) return;
  if (!currentPage) return;
  write = preparePageWrite(currentKey(), wholeFile, snapFile, SaveOrder::kWholeFirst);
  timedSaves.setLastSaveDate(now);
  hasUnqueuedChange = false;
  backlog.queue(write);
}

void VWBVectorStorage::saveFile(bool force) { state_->saveFile(force); }

bool VWBVectorStorage::retryFailedSaves() {
  State& state = *state_;
  std::vector<WriteBacklog::Prepared> writes;
  bool isAnyBusy = false;
  const State::ShortOperation operation(state);
  const auto hasFailed = [](const std::shared_ptr<const FileSlot>& file) {
    return file && file->get()->hasFailed();
  };
  for (const auto& [key, page] : state.cache.pages()) {
    if (!hasFailed(page.wholeFile) && !hasFailed(page.snapFile)) continue;
    if (state.busyPages.contains(key)) {
      isAnyBusy = true;  // the batch that is being appended to it ends with a write
      continue;
    }
    writes.push_back(
        state.preparePageWrite(key, page.wholeFile, page.snapFile, SaveOrder::kWholeFirst));
  }
  if (hasFailed(state.pageFile)) {
    writes.push_back(state.prepareVisitedPagesWrite(state.visited.forFile()));
  }
  for (WriteBacklog::Prepared& write : writes) state.backlog.queue(write);
  return isAnyBusy || !writes.empty();
}

bool VWBVectorStorage::State::saveOn(const VelWbVecSwitchPage* page, const VectorPtr& vector) {
  bool isDue = false;
  ClearedLists cleared;  // dropped without the guard
  Reporting reporting;
  {
    const ShortOperation operation(*this);
    if (page != nullptr && (!currentPage || !isSamePage(*page, *currentPage))) return false;
    if (ignoreChanges) return true;
    CachedPage& cached = cache.at(currentKey());
    std::unique_ptr<SnapList> newSnap = cached.snap ? nullptr : cache.newSnap();
    std::optional<WholeList> newWhole;
    if (!cached.whole) newWhole.emplace();
    SnapList& snap = newSnap ? *newSnap : *cached.snap;
    WholeList& whole = newWhole ? *newWhole : *cached.whole;

    whole.reserveBack();
    reporting.begin(*this, ChangeReport::Kind::kEntries, currentKey(), true);
    EntryChanges changes(*history, nullptr, reporting.changes());
    Naming naming(vector, cache, changes);
    applySaved(vector, snap, snapQuery, changes, cleared);
    naming.keep();
    whole.pushReserved(vector);
    if (newSnap) cached.snap = std::move(newSnap);
    if (newWhole) cached.whole.emplace(std::move(*newWhole));
    hasNewChange = true;
    hasUnqueuedChange = true;
    reporting.complete(*this);
    // Looked at here already, so that a piece need not wait on the semaphore a second time.
    isDue = timedSaves.isDue(currentDate());
  }
  if (!isDue) return true;
  try {
    saveFile(false);
  } catch (const std::bad_alloc&) {
    // The vector has been saved all the same. Its page is written after the next one.
  }
  return true;
}

void VWBVectorStorage::saveVector(const VectorPtr& vector) {
  if (vector && !state_->ignoreChanges) state_->saveOn(nullptr, vector);
}

bool VWBVectorStorage::ignoreVector(const VelWbBaseVector& vector) const {
  return isTransient(vector);
}

}  // namespace VelWhiteBoard
