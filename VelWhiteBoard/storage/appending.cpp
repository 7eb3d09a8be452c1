// Appending vectors to any page.
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <thread>
#include <utility>

#include "VelWhiteBoard/storage/files/board_files.h"
#include "VelWhiteBoard/storage/lists/appending_rule.h"
#include "VelWhiteBoard/storage/storage_state.h"
#include "VelWhiteBoard/storage/vector_storage.h"

namespace VelWhiteBoard {

namespace {

/// How many vectors of a batch are applied before others get their turn: some 0.1 milliseconds.
constexpr std::size_t kVectorsAtATime = 256;

}  // namespace

/// A batch of vectors for one page that is not current.
class VWBVectorStorage::State::Batch {
 public:
  Batch(State& state, const VelWbVecSwitchPage& page)
      : state_(state), page_(page), key_(page.pageInfo()) {}
  ~Batch();
  Batch(const Batch&) = delete;
  Batch& operator=(const Batch&) = delete;

  /// Applies all vectors and queues the page's files. False, and nothing done, when the page is
  /// current. When it throws, nothing has been done either.
  bool append(std::span<const VectorPtr> vectors);

 private:
  /// Waits for the turn of this batch. Until it ends, no other batch is appended to the page, and
  /// the page is neither made current nor cleared.
  void begin() VELWHITEBOARD_EXCLUDES(state_.guard);
  void end() noexcept VELWHITEBOARD_EXCLUDES(state_.guard);
  /// Reads what is not cached, and begins; once more when the page was cleared in between.
  ReadPage readAndBegin() VELWHITEBOARD_EXCLUDES(state_.guard);
  void applySome(std::span<const VectorPtr>& rest, CachedPage& page, SnapList::Contents& cleared)
      VELWHITEBOARD_REQUIRES(state_.guard);
  void undo(CachedPage& page) noexcept VELWHITEBOARD_REQUIRES(state_.guard);

  State& state_;
  const VelWbVecSwitchPage& page_;
  const std::string key_;
  BatchUndo undo_;
  /// The lists as they were before the batch; absent before the batch has begun.
  std::optional<SharedVectorList> snapBefore_;
  std::optional<WholeList> wholeBefore_;
  /// Which of them the page had before it was read for the batch.
  bool hadSnap_ = false;
  bool hadWhole_ = false;
  bool hasBegun_ = false;
};

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
                                               SnapList::Contents& cleared) {
  for (std::size_t count = 0; !rest.empty() && count < kVectorsAtATime; ++count) {
    if (const VectorPtr& vector = rest.front()) {
      page.snap->ensureIndex();
      page.whole->reserveBack();
      applyAppended(vector, *page.snap, *state_.history, undo_, cleared);
      page.whole->pushReserved(vector);
    }
    rest = rest.subspan(1);
  }
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
}

bool VWBVectorStorage::State::Batch::append(std::span<const VectorPtr> vectors) {
  ReadPage read = readAndBegin();
  WriteBacklog::Prepared write;
  for (bool isFirst = true; isFirst || !vectors.empty(); isFirst = false) {
    if (!isFirst) state_.giveWay();
    SnapList::Contents cleared;  // dropped without the guard
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
    state_.backlog.queue(write);
  }
  return true;
}

void VWBVectorStorage::State::giveWay() {
  constexpr int kTries = 20;
  constexpr std::chrono::microseconds kBetweenTries{50};
  guard.giveWay();
  for (int i = 0; i < kTries && waitingForSemphore > 0; ++i) {
    std::this_thread::sleep_for(kBetweenTries);
  }
}

void VWBVectorStorage::State::waitForBatch(const std::string& key) {
  const MutexHold hold(guard);
  while (busyPages.contains(key)) batchEnded.wait(guard);
}

void VWBVectorStorage::appendVectors(const VectorList& vectors, const SwitchPagePtr& toPage) {
  if (!toPage) return;
  std::span<const VectorPtr> rest(vectors);
  for (;;) {
    // Another thread may switch pages in between; each vector goes to the page that was named.
    bool isCurrent = false;
    {
      const MutexHold hold(state_->guard);
      isCurrent = state_->currentPage && isSamePage(*toPage, *state_->currentPage);
    }
    for (std::size_t count = 1; isCurrent && !rest.empty(); ++count) {
      if (count % kVectorsAtATime == 0) state_->giveWay();
      if (rest.front()) {
        isCurrent = state_->saveOn(toPage.get(), rest.front());
        if (!isCurrent) break;
      }
      rest = rest.subspan(1);
    }
    if (isCurrent || State::Batch(*state_, *toPage).append(rest)) return;
  }
}

}  // namespace VelWhiteBoard
