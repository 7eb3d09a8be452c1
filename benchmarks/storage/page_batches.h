// A batch for each of many pages, none of them current: what arrives when a board is opened that
// others have drawn on.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "benchmarks/storage/held_queue.h"
#include "benchmarks/workload.h"

namespace benchmarks {

/// What the queue does while batches are appended.
enum class Writes {
  kAwaited,  ///< each page is written before the next batch comes
  kRunning,  ///< pages are written meanwhile, and awaited at the end
  kHeldUp,   ///< no page is written before the last batch has come
};

/// A board to which a batch of 20 strokes of 10 pieces is appended for each of its pages. Its files
/// are in memory, because a disk's syncs would hide everything else.
class PageBatches {
 public:
  PageBatches(std::int64_t pages, Writes writes)
      : writes_(writes), storage_(recordingStorage(folder_)) {
    const auto texts = lessonTexts(20, 10, 0, 0, 0);
    for (std::int64_t index = 0; index < pages; ++index) {
      batches_.emplace_back(page(static_cast<std::uint64_t>(index) + 2), decoded(texts));
    }
    if (writes_ == Writes::kHeldUp) held_.emplace(storage_->saveQueue());
  }
  ~PageBatches() {
    held_.reset();
    awaitWrites();
  }
  PageBatches(const PageBatches&) = delete;
  PageBatches& operator=(const PageBatches&) = delete;

  void append() {
    for (auto& [page, vectors] : batches_) {
      storage_->appendVectors(vectors, page);
      if (writes_ == Writes::kAwaited) awaitWrites();
    }
    if (writes_ == Writes::kRunning) awaitWrites();
  }

 private:
  void awaitWrites() { storage_->saveQueue()->waitUntilAllOperationsAreFinished(); }

  Writes writes_;
  Folder folder_{parentInMemory()};
  std::shared_ptr<VWBVectorStorage> storage_;
  std::vector<std::pair<std::shared_ptr<VelWbVecSwitchPage>, VectorList>> batches_;
  std::optional<HeldQueue> held_;
};

}  // namespace benchmarks
