/// @file
/// A log that has been read as bytes and not yet as records.
#pragma once

#include <memory>

#include "VelWhiteBoard/foundation/files/file_system.h"
#include "VelWhiteBoard/foundation/queue/mutex.h"
#include "VelWhiteBoard/storage/files/protected_file.h"
#include "VelWhiteBoard/storage/lists/shared_vector_list.h"

namespace VelWhiteBoard {

/// The bytes of a page's log, until they have become records.
///
/// A log is long, and a page is drawn without it. So a page switch reads the bytes, and the records
/// are made in the background or when they are asked for, whichever comes first. Nothing that
/// happens to the file after that, and no lack of memory, can change what the list holds: when the
/// memory for the records cannot be had, the bytes stay, and the next call tries again.
///
/// Threads: any.
class UndecodedLog {
 public:
  /// Takes bytes of `file`, read since `begun`; notes there whether they turn out to be a log.
  /// `isNewest` says whether nothing was queued that would change the file: otherwise it does not
  /// count as read.
  UndecodedLog(FileBytes bytes, std::shared_ptr<ProtectedFile> file, ProtectedFile::Version begun,
               bool isNewest);

  /// The records; none when the bytes are not a log.
  SharedVectorList list();

  /// Has the records of a log made in the background.
  static void readInBackground(const std::shared_ptr<UndecodedLog>& log);

 private:
  const std::shared_ptr<ProtectedFile> file_;
  const ProtectedFile::Version begun_;
  const bool isNewest_;
  Mutex mutex_;
  Condition ended_;
  bool isBeingRead_ VELWHITEBOARD_GUARDED_BY(mutex_) = false;
  bool isRead_ VELWHITEBOARD_GUARDED_BY(mutex_) = false;
  FileBytes bytes_ VELWHITEBOARD_GUARDED_BY(mutex_);
  SharedVectorList list_ VELWHITEBOARD_GUARDED_BY(mutex_);
};

}  // namespace VelWhiteBoard
