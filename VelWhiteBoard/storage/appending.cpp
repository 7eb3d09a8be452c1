// Filing vectors under any page.
#include <chrono>
#include <cstddef>
#include <span>
#include <thread>

#include "VelWhiteBoard/storage/batch.h"
#include "VelWhiteBoard/storage/vector_storage.h"

namespace VelWhiteBoard {

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

void VWBVectorStorage::State::file(std::span<const VectorPtr> vectors,
                                   const VelWbVecSwitchPage& page, BatchRule rule) {
  std::span<const VectorPtr> rest = vectors;
  for (;;) {
    // Another thread may switch pages in between; each vector goes to the page that was named.
    bool isCurrent = false;
    {
      const MutexHold hold(guard);
      isCurrent = currentPage && isSamePage(page, *currentPage);
    }
    for (std::size_t count = 1; isCurrent && !rest.empty(); ++count) {
      if (count % kVectorsAtATime == 0) giveWay();
      if (rest.front()) {
        isCurrent = saveOn(&page, rest.front());
        if (!isCurrent) break;
      }
      rest = rest.subspan(1);
    }
    if (isCurrent || Batch(*this, page, rule).append(rest)) return;
  }
}

void VWBVectorStorage::appendVectors(const VectorList& vectors, const SwitchPagePtr& toPage) {
  if (toPage) state_->file(vectors, *toPage, BatchRule::kAppending);
}

void VWBVectorStorage::saveVectors(const VectorList& vectors, const SwitchPagePtr& toPage) {
  if (toPage && !state_->ignoreChanges) state_->file(vectors, *toPage, BatchRule::kSaving);
}

}  // namespace VelWhiteBoard
