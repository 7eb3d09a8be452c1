/// @file
/// The temporary files of atomic writes: opening, locking and cleaning up.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "VelWhiteBoard/foundation/files/file_system.h"
#include "VelWhiteBoard/foundation/files/open_handle.h"
#include "VelWhiteBoard/foundation/files/system_calls.h"

namespace VelWhiteBoard {

/// The temporary of one atomic write: an empty file beside its target that no other writer uses.
///
/// The writers of one target, in all processes, share one name and take turns by a lock on the file
/// under it. The lock belongs to the file and not to its name: while a writer waits, the file that
/// it opened may be renamed over the target by the writer before it, or removed as a leftover. So a
/// writer that gets the lock checks that the name still leads to the locked file, and starts again
/// if not; only then is the file emptied and filled.
///
/// A writer waits for one second at most. If the lock is still held then (by a stopped process, or
/// on a very slow disk), or if the name is taken by something that cannot be removed, the writer
/// makes a file under a name of its own: the shared one with "-1" or a higher number. Two writers
/// are then at work at once, and the contents that are renamed last stay.
class TemporaryFile {
 public:
  TemporaryFile(SystemCalls& calls, const std::string& target);
  /// Removes the file, unless it has been renamed. A failure leaves it for the next write.
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  /// Opens the file. To be called once; the others only after it has succeeded.
  FileResult open();
  int handle() const { return file_.get(); }
  const std::string& path() const { return path_; }
  /// Renames the file over the target.
  FileResult renameOverTarget();

 private:
  using Deadline = std::chrono::steady_clock::time_point;
  /// The outcome of a try to take a name.
  enum class Try {
    kTaken,         ///< the file under the name is ours
    kTakenByOther,  ///< the name leads to something that this writer must not use
    kHeld,          ///< another writer held the lock until the deadline
    kLost,          ///< another writer or a cleaner was faster; try again
    kFailed,        ///< the reason is in `failure_`
  };

  Try takeSharedName();
  Try takeOwnName();
  Try tryName(OpenMode mode, Deadline deadline);
  Try afterBlindLook(int negatedError);
  bool isHeldUntil(Deadline deadline);
  void release();
  Try fail(FileStep step, int negatedError);

  SystemCalls& calls_;
  const std::string target_;
  std::string path_;
  OpenHandle file_;
  FileInfo identity_;  // of the open file
  FileResult failure_;
  bool locked_ = false;
  bool ownsName_ = false;  // the name leads to our file, which is ours to remove
};

/// Whether `name` is the name of a temporary of a target whose name ends in `targetSuffix`.
bool isTemporaryName(std::string_view name, std::string_view targetSuffix);

/// Removes a temporary that no writer uses: a regular file whose lock is free. Anything else at
/// `path`, or nothing, is left as it is and is no failure.
FileResult removeUnusedTemporary(SystemCalls& calls, const std::string& path);

}  // namespace VelWhiteBoard
