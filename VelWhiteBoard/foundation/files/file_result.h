/// @file
/// What came of a file operation.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "VelWhiteBoard/foundation/export.h"

namespace VelWhiteBoard {

/// @addtogroup reports
/// @{

/// The step of a file operation that failed.
enum class FileStep {
  kNone,        ///< Nothing failed.
  kStatus,      ///< Asking what lies at the path.
  kOpen,        ///< Opening or creating the file.
  kLock,        ///< Locking the temporary file, which another program holds.
  kRead,        ///< Reading the contents.
  kProduce,     ///< The producer of the contents gave up; no system call failed.
  kWrite,       ///< Writing the new contents beside the old file.
  kSync,        ///< Bringing the new contents to the disk, before they take the file's place.
  kRename,      ///< Putting the new contents in the file's place, or moving a file aside.
  kSyncFolder,  ///< The new contents are in place, but may not survive a power cut yet.
  kMakeFolder,  ///< Making a folder.
  kRemove,      ///< Removing a file or folder.
  kList,        ///< Listing a folder.
};

/// The outcome of a file operation: success, or the step, the path and the system's error number
/// of the first thing that went wrong.
///
/// The operations of a storage stay silent about failures; its observer of writes gets this value.
/// It must be looked at, or thrown away on purpose.
struct [[nodiscard]] FileResult {
  FileStep step = FileStep::kNone;  ///< What failed.
  /// An `errno` value; 0 on success. For `kProduce` it is `ENOMEM` when memory was short, else 0.
  int error = 0;
  /// Where it failed: the file, its temporary beside it or its folder. May be empty.
  std::string path;

  /// A result without a failure.
  static FileResult success() { return {}; }
  /// A failed step, with the system's error number and the path.
  static FileResult failure(FileStep step, int error, std::string path) {
    return {step, error, std::move(path)};
  }

  /// Whether nothing failed.
  bool ok() const { return step == FileStep::kNone; }
  explicit operator bool() const { return ok(); }  ///< The same as `ok()`.

  /// One line of text for people, for example "write /b/page.plist.tmp: No space left on device".
  VELWHITEBOARD_EXPORT std::string describe() const;
};

/// The name of a step as `FileResult::describe` writes it, such as "sync folder".
VELWHITEBOARD_EXPORT std::string_view fileStepName(FileStep step);

/// @}

}  // namespace VelWhiteBoard
