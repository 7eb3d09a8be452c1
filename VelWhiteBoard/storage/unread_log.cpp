#include "VelWhiteBoard/storage/unread_log.h"

#include <utility>

#include "VelWhiteBoard/foundation/operation_queue.h"
#include "VelWhiteBoard/storage/board_files.h"

namespace VelWhiteBoard {

namespace {

/// Logs become records in a queue of their own, because a save queue may be held up by a disk.
OperationQueue& readingQueue() {
  // Never destroyed: it may be used until the end of the process.
  static OperationQueue& queue = *new OperationQueue;
  return queue;
}

}  // namespace

UnreadLog::UnreadLog(FileBytes bytes, std::shared_ptr<KnownFile> file, KnownFile::Version begun)
    : file_(std::move(file)), begun_(begun), bytes_(std::move(bytes)) {}

SharedVectorList UnreadLog::list() {
  const MutexHold hold(mutex_);
  if (!isRead_) {
    const ReadList<VelWbBaseVector> read = vectorsInBytes(bytes_.view());
    list_ = SharedVectorList(read.list);
    file_->endReading(begun_, read.found);
    bytes_ = {};
    isRead_ = true;
  }
  return list_;
}

void UnreadLog::readInBackground(const std::shared_ptr<UnreadLog>& log) {
  readingQueue().addOperationWithBlock([weak = std::weak_ptr(log)] {
    // A storage that has gone needs no records. Without memory the bytes stay.
    if (const auto unread = weak.lock()) static_cast<void>(unread->list());
  });
}

}  // namespace VelWhiteBoard
