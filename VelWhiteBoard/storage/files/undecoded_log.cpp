#include "VelWhiteBoard/storage/files/undecoded_log.h"

#include <chrono>
#include <exception>
#include <utility>

#include "VelWhiteBoard/foundation/queue/operation_queue.h"
#include "VelWhiteBoard/storage/files/board_files.h"

namespace VelWhiteBoard {

namespace {

/// Logs become records in a queue of their own, because a save queue may be held up by a disk.
OperationQueue& readingQueue() {
  // Never destroyed: it may be used until the end of the process.
  static OperationQueue& queue = *new OperationQueue;
  return queue;
}

}  // namespace

UndecodedLog::UndecodedLog(FileBytes bytes, std::shared_ptr<ProtectedFile> file,
                           ProtectedFile::Version begun, bool isNewest)
    : file_(std::move(file)), begun_(begun), isNewest_(isNewest), bytes_(std::move(bytes)) {}

SharedVectorList UndecodedLog::list() {
  constexpr std::chrono::milliseconds kBetweenReports{10};
  const MutexHold hold(mutex_);
  while (isBeingRead_) {
    // Another thread gets on with it, so a save that waits here does, too.
    OperationQueue::reportProgress();
    ended_.waitFor(mutex_, kBetweenReports);
  }
  if (isRead_) return list_;
  isBeingRead_ = true;
  FileBytes bytes = std::move(bytes_);
  mutex_.unlock();
  SharedVectorList list;
  FileState found = FileState::kUnknown;
  std::exception_ptr failure;
  try {
    const ReadList<VelWbBaseVector> read = vectorsInBytes(bytes.view());
    list = SharedVectorList(read.list);
    found = read.found;
  } catch (...) {
    failure = std::current_exception();
  }
  mutex_.lock();
  isBeingRead_ = false;
  ended_.notifyAll();
  if (failure) {
    bytes_ = std::move(bytes);
    std::rethrow_exception(failure);
  }
  file_->endReading(begun_, isNewest_ ? found : FileState::kUnknown);
  list_ = std::move(list);
  isRead_ = true;
  return list_;
}

void UndecodedLog::readInBackground(const std::shared_ptr<UndecodedLog>& log) {
  readingQueue().addOperationWithBlock([weak = std::weak_ptr(log)] {
    // A storage that has gone needs no records. Without memory the bytes stay.
    if (const auto unread = weak.lock()) static_cast<void>(unread->list());
  });
}

}  // namespace VelWhiteBoard
