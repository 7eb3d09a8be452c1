/// @file
/// The interface to files.
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
#include "VelWhiteBoard/foundation/files/file_result.h"
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

/// Makes the contents of a file by calling its argument piece by piece. Pieces may have any size,
/// but each is written by itself: small ones should be gathered into blocks of `kFileBlockSize`.
/// Returning false means that the contents could not be made; nothing is replaced then.
using ContentProducer = std::function<bool(const BlockConsumer& write)>;

/// What `FileSystem::writeAtomically` appends to the target's name for its temporary. All writers
/// of a target use this name, so the next write reuses what a crash left behind. Only when the name
/// is not available, "-1" or a higher number is added. None of these names ends in ".plist", so a
/// leftover is never taken for a page.
inline constexpr std::string_view kTemporarySuffix = ".tmp";

/// A regular file that has been opened for reading. It stays the same file even if the path is
/// replaced or removed meanwhile.
class OpenedFile {
 public:
  virtual ~OpenedFile() = default;
  OpenedFile(const OpenedFile&) = delete;
  OpenedFile& operator=(const OpenedFile&) = delete;

  /// Passes the contents to `consume`, in order, in blocks of at most `kFileBlockSize` bytes; an
  /// empty file gives no block. A consumer that stops early does not make this a failure. To be
  /// called once.
  virtual FileResult read(const BlockConsumer& consume) = 0;

 protected:
  OpenedFile() = default;
};

/// The library's only access to files.
///
/// Kept small so that tests can substitute files in memory or a failing disk. Paths are UTF-8 and
/// used as they are, byte for byte; a path that is empty or contains a NUL byte names nothing and
/// fails like a missing file. Every operation may be called from any thread, and throws only
/// std::bad_alloc and what a given callback throws.
class FileSystem {
 public:
  virtual ~FileSystem() = default;
  FileSystem(const FileSystem&) = delete;
  FileSystem& operator=(const FileSystem&) = delete;

  /// The file system that the library uses now: the disk, unless a ScopedFileSystem is in force.
  static FileSystem& current();

  /// Reports what lies at `path`. If nothing is there, it succeeds with `kAbsent`; a failure (no
  /// permission, a name too long) leaves `status` at `kAbsent`.
  virtual FileResult status(const std::string& path, FileStatus& status) = 0;

  /// Opens a regular file for reading, now or later; `file` is null after a failure. Anything but a
  /// regular file fails at `kOpen`, without ever waiting for it. The file system must outlive
  /// `file`.
  virtual FileResult open(const std::string& path, std::unique_ptr<OpenedFile>& file) = 0;

  /// Reads the whole of a regular file into one buffer; the file is closed again before this
  /// returns. `bytes` is empty after a failure, and after std::bad_alloc, which is thrown when the
  /// memory does not suffice. Anything but a regular file fails at `kOpen`.
  virtual FileResult readBytes(const std::string& path, FileBytes& bytes) = 0;

  /// Replaces the file at `path`, or creates it. At every instant, even if the process crashes, the
  /// path holds either the whole old contents or the whole new ones.
  ///
  /// The new contents go into `path` + `kTemporarySuffix` in the same folder, are synced, renamed
  /// over the target, and the folder is synced. On any failure before the rename the temporary is
  /// removed and the old file is untouched. The permissions of a replaced file are kept; a symbolic
  /// link at `path` is replaced, not followed. The folder must exist. `produce` must not write the
  /// same target itself.
  ///
  /// Writers of the same target, in this process or another, take turns. One that has waited for a
  /// second goes on with a temporary of its own; then the contents that are renamed last stay, even
  /// if they are the older ones.
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
  /// this process or another, stays, and so does everything that is not a file. Takes one listing
  /// of the folder when there are none. Reports the first failure.
  virtual FileResult removeUnusedTemporaries(const std::string& folder,
                                             std::string_view targetSuffix) = 0;

  /// Moves a file or folder within one volume. A file at `to` is replaced.
  virtual FileResult rename(const std::string& from, const std::string& to) = 0;

  /// Moves whatever lies at `from` within one volume, a symbolic link as itself, and replaces
  /// nothing: anything that exists at `to`, a dangling link included, is a failure with EEXIST.
  ///
  /// Of several callers with the same `to`, in any process, one succeeds. On a volume without such
  /// a call (some network and user-space file systems) this takes two steps, a check and a plain
  /// rename; what is put at `to` between the two is replaced.
  virtual FileResult renameToNew(const std::string& from, const std::string& to) = 0;

  /// The kind of what lies at `path`; `kAbsent` when it cannot be determined.
  FileKind kind(const std::string& path);
  /// True when anything exists at `path`.
  bool exists(const std::string& path) { return kind(path) != FileKind::kAbsent; }
  /// Opens a regular file and passes its contents to `consume`, see OpenedFile.
  FileResult read(const std::string& path, const BlockConsumer& consume);
  /// Leaves an empty regular file at `path`: a new one, or one that replaces the file there, see
  /// `writeAtomically`. A folder or a special file at `path` is a failure.
  FileResult createEmptyFile(const std::string& path);

 protected:
  FileSystem() = default;
};

/// Replaces FileSystem::current() as long as it lives.
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

/// `base` with `component` appended as a path component: exactly one separator between the two and
/// no separator at the end, whatever separators the two have there. Doubled separators within
/// `component` become one; those within `base` are kept. An empty side adds nothing.
std::string appendPathComponent(std::string_view base, std::string_view component);

/// `path` without the separators at its end; a path of separators only is "/".
std::string_view withoutTrailingSeparators(std::string_view path);

}  // namespace VelWhiteBoard
