/// @file
/// The files of this process that queued operations are still going to write or remove.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "VelWhiteBoard/foundation/queue/operation_queue.h"

namespace VelWhiteBoard {

/// One file that a queued operation is going to write or remove: pending as long as this object
/// lives. The operation owns it, so it ends with the operation, whether that runs, throws or is
/// dropped.
///
/// All storages of the process share one register, so that a board that is closed and opened again
/// is read as it was left.
class PendingFile {
 public:
  /// @param name what `pendingName` answers for the path.
  PendingFile(const std::string& name, std::shared_ptr<OperationQueue> queue);
  PendingFile(PendingFile&& other) noexcept;
  PendingFile& operator=(PendingFile&& other) noexcept;
  ~PendingFile();
  PendingFile(const PendingFile&) = delete;
  PendingFile& operator=(const PendingFile&) = delete;

  /// To be called by the operation when it begins to work on the file.
  void begin() noexcept;

 private:
  struct Entry;
  std::unique_ptr<Entry> entry_;
};

/// One name for every way to write a path, as far as that is possible without asking the disk.
std::string pendingName(const std::string& path);

/// Waits until nothing is pending for any of the files, so that reading them shows what was written
/// last. Answers whether nothing is pending any more.
///
/// Gives up when the queues concerned have finished nothing and written nothing for a quarter of a
/// second: a client's operation may hold up a queue, and may even wait for the calling thread.
/// While one of them is working on a file, or no thread is free for it, the disk is merely slow, so
/// this waits for thirty seconds. Inside an operation of a queue, what that queue is going to do is
/// not waited for.
bool waitForPendingFiles(const std::vector<std::string>& names);

/// Whether `waitForPendingFiles` would have something to wait for.
bool arePending(const std::vector<std::string>& names);

}  // namespace VelWhiteBoard
