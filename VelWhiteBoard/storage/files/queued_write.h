/// @file
/// One write of a board's files, from the moment when it is queued.
#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <vector>

#include "VelWhiteBoard/foundation/plist/property_list_writer.h"
#include "VelWhiteBoard/foundation/queue/mutex.h"
#include "VelWhiteBoard/storage/files/pending_files.h"
#include "VelWhiteBoard/storage/files/protected_file.h"
#include "VelWhiteBoard/storage/files/whole_list.h"
#include "VelWhiteBoard/storage/lists/history.h"

namespace VelWhiteBoard {

/// A file whose path a client may change while a write waits: the write asks for it when it runs.
///
/// Threads: any.
class FileSlot {
 public:
  explicit FileSlot(std::shared_ptr<ProtectedFile> file) : file_(std::move(file)) {}
  std::shared_ptr<ProtectedFile> get() const {
    const MutexHold hold(mutex_);
    return file_;
  }
  void set(std::shared_ptr<ProtectedFile> file) {
    const MutexHold hold(mutex_);
    std::swap(file_, file);
  }

 private:
  mutable Mutex mutex_;
  std::shared_ptr<ProtectedFile> file_ VELWHITEBOARD_GUARDED_BY(mutex_);
};

/// What goes into one file.
struct FileContents {
  std::shared_ptr<const FileSlot> file;
  WholeList vectors;
};

/// One queued write: of the two files of a page, or of the list of visited pages. It owns all that
/// it writes.
///
/// Threads: made by the storage, run once by the queue.
class QueuedWrite {
 public:
  /// @param files what to write, in the order in which it is written.
  /// @param capture how the vectors were; empty when they never change.
  QueuedWrite(std::vector<FileContents> files, std::vector<PendingFile> pending,
              std::optional<History::Capture> capture);

  /// Whether the writing has begun.
  bool hasBegun() const { return hasBegun_; }

  /// Writes the files, each as a whole or not at all.
  void run();

 private:
  void write(const FileContents& contents) const;
  void addAll(const SharedVectorList& list, PropertyListWriter& writer) const;

  std::atomic<bool> hasBegun_ = false;
  std::vector<FileContents> files_;
  std::vector<PendingFile> pending_;
  std::optional<History::Capture> capture_;
};

}  // namespace VelWhiteBoard
