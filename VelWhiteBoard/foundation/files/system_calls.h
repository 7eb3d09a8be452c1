/// @file
/// The system calls behind the file system.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "VelWhiteBoard/foundation/files/file_system.h"

namespace VelWhiteBoard {

/// The system's information about one file.
struct FileInfo {
  FileKind kind = FileKind::kAbsent;
  std::uint64_t size = 0;
  std::uint64_t device = 0;
  std::uint64_t inode = 0;        ///< with `device`: the identity of the file behind a name
  std::uint64_t links = 0;        ///< how many names the file has
  std::uint32_t permissions = 0;  ///< the nine read, write and execute bits
};

/// What a file is opened for. None of these modes blocks: a pipe without a writer opens at once.
enum class OpenMode {
  kRead,          ///< for reading
  kTemporary,     ///< for reading and writing, made when missing, never through a symbolic link
  kNewTemporary,  ///< the same, but fails with -EEXIST when anything lies there
  kLeftover,      ///< for reading and writing, never through a symbolic link, never made
  kFolder,        ///< a folder, for listing
};

/// The calls that the disk implementation of FileSystem makes, one function each.
///
/// All access to the platform goes through here, so that a test can make any single call fail. A
/// call returns 0 or a positive result, or the negated `errno` value. It does not retry, so it may
/// return -EINTR. Paths contain no NUL byte. All may be called from any thread.
class SystemCalls {
 public:
  virtual ~SystemCalls() = default;
  SystemCalls(const SystemCalls&) = delete;
  SystemCalls& operator=(const SystemCalls&) = delete;

  /// The real calls.
  static SystemCalls& posix();

  /// Returns a handle.
  virtual int open(const std::string& path, OpenMode mode) = 0;
  virtual int close(int handle) = 0;

  virtual int status(const std::string& path, bool followLinks, FileInfo& info) = 0;
  virtual int statusOfHandle(int handle, FileInfo& info) = 0;

  /// Returns the number of bytes; 0 is the end of the file.
  virtual std::int64_t read(int handle, char* bytes, std::size_t size) = 0;
  /// A hint: all of this memory, still untouched, is about to be filled. The system may then use
  /// large pages, which saves page faults.
  virtual void expectFilling(char* memory, std::size_t size) = 0;
  /// Returns the number of bytes taken, which may be fewer than given.
  virtual std::int64_t write(int handle, const char* bytes, std::size_t size) = 0;
  /// Makes the file empty.
  virtual int truncate(int handle) = 0;
  virtual int setPermissions(int handle, std::uint32_t permissions) = 0;
  /// Waits until the file's contents are on the disk.
  virtual int sync(int handle) = 0;
  /// Waits until the folder's entries are on the disk.
  virtual int syncFolder(const std::string& path) = 0;

  /// Takes the lock of this file; -EWOULDBLOCK while it is held through another handle of the file,
  /// in this process or another. Never waits.
  virtual int tryLock(int handle) = 0;
  virtual int unlock(int handle) = 0;

  virtual int rename(const std::string& from, const std::string& to) = 0;
  /// Renames in one step unless something exists at `to`: that is -EEXIST. -EINVAL or -ENOSYS where
  /// the volume or the system has no such call.
  virtual int renameToNew(const std::string& from, const std::string& to) = 0;
  /// Makes a folder with these permissions, less what the process's umask takes away.
  virtual int makeFolder(const std::string& path, std::uint32_t permissions) = 0;
  /// Removes a file's name.
  virtual int remove(const std::string& path) = 0;
  /// Removes a file, or a folder with all that it contains, until the first failure. Symbolic links
  /// are removed, never followed. 0 when nothing exists there. One handle is open for each level.
  virtual int removeAll(const std::string& path) = 0;
  /// Appends the names in an open folder, without "." and "..".
  virtual int list(int handle, std::vector<std::string>& names) = 0;

 protected:
  SystemCalls() = default;
};

}  // namespace VelWhiteBoard
