/// @file
/// What came of a file operation.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "VelWhiteBoard/foundation/export.h"

namespace VelWhiteBoard {

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
/// The operations of a storage stay silent about failures; its observer of writes gets this value.
/// It must be looked at, or thrown away on purpose.
struct [[nodiscard]] FileResult {
  FileStep step = FileStep::kNone;
  /// An `errno` value; 0 on success. For `kProduce` it is `ENOMEM` when memory was short, else 0.
  int error = 0;
  std::string path;

  static FileResult success() { return {}; }
  static FileResult failure(FileStep step, int error, std::string path) {
    return {step, error, std::move(path)};
  }

  bool ok() const { return step == FileStep::kNone; }
  explicit operator bool() const { return ok(); }

  /// One line for a person, for example "write /b/page.plist.tmp: No space left on device".
  VELWHITEBOARD_EXPORT std::string describe() const;
};

/// The name of a step as it appears in `FileResult::describe`.
VELWHITEBOARD_EXPORT std::string_view fileStepName(FileStep step);

}  // namespace VelWhiteBoard
