#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "VelWhiteBoard/foundation/files/file_bytes.h"
#include "VelWhiteBoard/foundation/values/file_block.h"

namespace VelWhiteBoard {

/// What lies at a path. A symbolic link counts as what it points to; a dangling one as absent.
enum class FileKind {
  kAbsent,
  kFile,    ///< a regular file
  kFolder,  ///< a directory
  kOther,   ///< something else that exists: a pipe, a socket, a device
};

/// What a path leads to, at the moment of the question.
struct FileStatus {
  FileKind kind = FileKind::kAbsent;
  std::uint64_t size = 0;  ///< in bytes; 0 for anything but a regular file
};

/// The step of a file operation that failed.
enum class FileStep {
  kNone,  ///< nothing failed
  kStatus,
  kOpen,
  kLock,
  kRead,
  kProduce,  ///< the producer of the contents gave up; no system call failed
  kWrite,
  kSync,
  kRename,
  kSyncFolder,  ///< the new contents are in place, but may not survive a power cut yet
  kMakeFolder,
  kRemove,
  kList,
};

/// The outcome of a file operation: success, or the step, the path and the system's error number
/// of the first thing that went wrong.
///
/// The library's public operations stay silent about failures; this value is what tests and tools
/// see instead. It must be looked at, or thrown away on purpose.
struct [[nodiscard]] FileResult {
  FileStep step = FileStep::kNone;
  int error = 0;  ///< an `errno` value; 0 on success and for `kProduce`
  std::string path;

  static FileResult success() { return {}; }
  static FileResult failure(FileStep step, int error, std::string path) {
    return {step, error, std::move(path)};
  }

  bool ok() const { return step == FileStep::kNone; }
  explicit operator bool() const { return ok(); }

  /// One line for a person, for example "write /b/page.plist.tmp: No space left on device".
  std::string describe() const;
};

/// The name of a step as it appears in `FileResult::describe`.
std::string_view fileStepName(FileStep step);

/// Makes the contents of a file by calling its argument piece by piece. Pieces may have any size,
/// but each is written by itself: small ones should be gathered into blocks of `kFileBlockSize`.
/// False means that the contents could not be made: then nothing is replaced.
using ContentProducer = std::function<bool(const BlockConsumer& write)>;

/// What `FileSystem::writeAtomically` appends to the target's name for its temporary. All writers
/// of a target use this name: what a crash leaves behind is used again by the next write instead of
/// piling up. Only when the name cannot be had, "-1" or a higher number is added. None of these
/// names ends in ".plist", so a leftover is never taken for a page.
inline constexpr std::string_view kTemporarySuffix = ".tmp";

/// A regular file that has been opened for reading. It stays what it was, even when the path gets
/// another file or none meanwhile.
class OpenedFile {
 public:
  virtual ~OpenedFile() = default;
  OpenedFile(const OpenedFile&) = delete;
  OpenedFile& operator=(const OpenedFile&) = delete;

  /// Hands the contents to `consume`, in order, in blocks of at most `kFileBlockSize` bytes; an
  /// empty file gives no block. A consumer that stops early makes this no failure. To be called
  /// once.
  virtual FileResult read(const BlockConsumer& consume) = 0;

 protected:
  OpenedFile() = default;
};

/// The one way in which the library reaches files.
///
/// Narrow on purpose, so that a test can put a memory of its own or a failing disk behind it. Paths
/// are UTF-8 and used as they are, byte for byte; a path that is empty or contains a NUL byte names
/// nothing and fails like a missing file. Every operation may be called from any thread, and none
/// throws anything but std::bad_alloc and what a given callback throws.
class FileSystem {
 public:
  virtual ~FileSystem() = default;
  FileSystem(const FileSystem&) = delete;
  FileSystem& operator=(const FileSystem&) = delete;

  /// The file system that the library uses now: the disk, unless a ScopedFileSystem is in force.
  static FileSystem& current();

  /// Tells what lies at `path`. Nothing there is a success with `kAbsent`; a failure (no permission
  /// to look, a name too long) leaves `status` at `kAbsent`.
  virtual FileResult status(const std::string& path, FileStatus& status) = 0;

  /// Opens a regular file for reading, now or later; `file` is null after a failure. Anything but a
  /// regular file fails at `kOpen`, without ever waiting for it. What stands behind this file
  /// system must outlive `file`.
  virtual FileResult open(const std::string& path, std::unique_ptr<OpenedFile>& file) = 0;

  /// Reads the whole of a regular file into one buffer; the file is closed again before this
  /// returns. `bytes` is empty after a failure, and after std::bad_alloc, which is thrown when the
  /// memory does not suffice. Anything but a regular file fails at `kOpen`.
  virtual FileResult readBytes(const std::string& path, FileBytes& bytes) = 0;

  /// Replaces the file at `path`, or creates it, such that at every instant, a crash included, the
  /// path holds either the whole old contents or the whole new ones.
  ///
  /// The new contents go into `path` + `kTemporarySuffix` in the same folder, are synced, renamed
  /// over the target, and the folder is synced. On any failure before the rename the temporary is
  /// removed and the old file is untouched. The permissions of a replaced file are kept; a symbolic
  /// link at `path` is replaced, not followed. The folder must exist. `produce` must not write the
  /// same target itself.
  ///
  /// Writers of the same target, in this process or another, take turns. One that has waited for a
  /// second goes ahead with a temporary of its own; then the contents that are renamed last stay,
  /// even when they are the older ones.
  virtual FileResult writeAtomically(const std::string& path, const ContentProducer& produce) = 0;

  /// Removes a file, or a folder with all that it contains; symbolic links are removed, never
  /// followed. Nothing at `path` is a success. The first failure ends the removal: what has not
  /// been removed by then stays. A handle is open for each level, so a folder that is nested deeper
  /// than the limit of handles cannot be removed. A path that ends in "." or "..", or is the root,
  /// is refused.
  virtual FileResult removeRecursively(const std::string& path) = 0;

  /// Appends the names of a folder's entries to `names`, one level, without "." and "..", in the
  /// order in which the system lists them.
  virtual FileResult list(const std::string& path, std::vector<std::string>& names) = 0;

  /// Makes one folder. Its parent must exist; anything that exists at `path` is a failure.
  virtual FileResult makeFolder(const std::string& path) = 0;

  /// The same for a folder that only its user may enter.
  virtual FileResult makePrivateFolder(const std::string& path) = 0;

  /// Makes a folder with all missing ones above it. A folder that exists already is a success.
  /// Made folders are not synced: callers of this must not wait for a disk.
  virtual FileResult makeFolders(const std::string& path) = 0;

  /// Removes from a folder the temporaries that writes of `writeAtomically` left when their process
  /// was killed: those of targets whose name ends in `targetSuffix`. One that a writer uses now, in
  /// this process or another, stays, and so does everything that is not a file. Costs one listing
  /// of the folder when there is none. Reports the first failure.
  virtual FileResult removeUnusedTemporaries(const std::string& folder,
                                             std::string_view targetSuffix) = 0;

  /// Moves a file or folder within one volume. A file at `to` is replaced.
  virtual FileResult rename(const std::string& from, const std::string& to) = 0;

  /// Moves whatever lies at `from` within one volume, a symbolic link as itself, and replaces
  /// nothing: anything that exists at `to`, a dangling link included, is a failure with EEXIST.
  ///
  /// Of several callers with the same `to`, in any process, one succeeds. Only on a volume that
  /// cannot rename so (some network and user-space file systems) this is two steps, a look and a
  /// plain rename; what is put at `to` between the two is replaced.
  virtual FileResult renameToNew(const std::string& from, const std::string& to) = 0;

  /// The kind of what lies at `path`; `kAbsent` when it cannot be told.
  FileKind kind(const std::string& path);
  /// True when anything exists at `path`.
  bool exists(const std::string& path) { return kind(path) != FileKind::kAbsent; }
  /// Opens a regular file and hands its contents to `consume`, see OpenedFile.
  FileResult read(const std::string& path, const BlockConsumer& consume);
  /// Leaves an empty regular file at `path`: a new one, or one that replaces the file there, see
  /// `writeAtomically`. A folder or a special file at `path` is a failure.
  FileResult createEmptyFile(const std::string& path);

 protected:
  FileSystem() = default;
};

/// Puts another file system behind FileSystem::current() as long as it lives.
///
/// Meant for tests. The replacement is process-wide; scopes must end in the reverse order of their
/// beginning, and work queued on other threads must be finished before its scope ends.
class ScopedFileSystem {
 public:
  explicit ScopedFileSystem(FileSystem& replacement);
  ~ScopedFileSystem();
  ScopedFileSystem(const ScopedFileSystem&) = delete;
  ScopedFileSystem& operator=(const ScopedFileSystem&) = delete;

 private:
  FileSystem* previous_;
};

/// `base` with `component` appended as a path component: one separator stands between the two and
/// none at the end, whatever separators the two have there, and doubled separators within
/// `component` become one. An empty side adds nothing. What stands within `base` is kept.
std::string appendPathComponent(std::string_view base, std::string_view component);

/// `path` without the separators at its end; a path of separators only is "/".
std::string_view withoutTrailingSeparators(std::string_view path);

}  // namespace VelWhiteBoard
