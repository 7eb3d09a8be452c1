#include "VelWhiteBoard/storage/files/queued_write.h"

#include <cerrno>
#include <cstddef>
#include <utility>

namespace VelWhiteBoard {

namespace {

/// How many vectors are copied at a time while the storage may have to wait: about a microsecond,
/// which is no longer than `Mutex` spins.
constexpr std::size_t kCopiedAtATime = 8;

}  // namespace

QueuedWrite::QueuedWrite(std::vector<FileContents> files, std::vector<PendingFile> pending,
                         std::optional<History::Capture> capture)
    : files_(std::move(files)), pending_(std::move(pending)), capture_(std::move(capture)) {}

void QueuedWrite::run() {
  hasBegun_ = true;
  for (PendingFile& file : pending_) file.begin();
  auto next = files_.begin();
  try {
    for (; next != files_.end(); ++next) write(*next);
  } catch (...) {
    for (; next != files_.end(); ++next) {
      const std::shared_ptr<ProtectedFile> file = next->file->get();
      // Nothing but a lack of memory throws here. A report that finds none either is dropped.
      file->noteFailure({FileStep::kProduce, ENOMEM, {}});
    }
    throw;
  }
}

void QueuedWrite::write(const FileContents& contents) const {
  // The log first of all: whether it could be read decides what becomes of its file.
  const SharedVectorList before = contents.vectors.before();
  contents.file->get()->replace([&](PropertyListWriter& writer) {
    addAll(before, writer);
    addAll(contents.vectors.since(), writer);
  });
}

void QueuedWrite::addAll(const SharedVectorList& list, PropertyListWriter& writer) const {
  std::vector<std::shared_ptr<const Record>> vectors;
  SharedVectorList::Place next = 0;
  while (next < list.endPlace()) {
    vectors.clear();
    for (; next < list.endPlace() && vectors.size() < kCopiedAtATime; ++next) {
      if (const VectorPtr& vector = list.at(next)) vectors.push_back(vector);
    }
    if (capture_) capture_->copyAsCaptured(vectors);
    for (const auto& vector : vectors) {
      if (!writer.add(*vector)) return;
    }
  }
}

}  // namespace VelWhiteBoard
