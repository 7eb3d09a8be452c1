/// @file
/// What a storage tells a client about its files.
#pragma once

#include <functional>
#include <string>

#include "VelWhiteBoard/foundation/files/file_result.h"

namespace VelWhiteBoard {

/// @addtogroup reports
/// @{

/// What became of one file.
struct WriteReport {
  /// What was to be done with the file.
  enum class Kind {
    kWritten,  ///< The file was to be replaced by a list of records.
    kRemoved,  ///< The file was to go, with the page that was cleared.
  };

  Kind kind = Kind::kWritten;  ///< What was to be done.
  std::string path;            ///< The file; `result` may name its temporary or its folder.
  /// Whether the file holds what was to be written and, if not, the step that failed and the
  /// system's error number. After `FileStep::kSyncFolder` the file is written, but a power cut may
  /// still undo that.
  FileResult result;
};

/// Told of every file that the save queue has written or removed, on the thread that runs the queue
/// and while no lock of the storage is held. What it throws is dropped.
///
/// Writes that are still queued when the storage goes are reported as well. So an observer must own
/// what it uses, or hold it by a weak pointer.
using WriteObserver = std::function<void(const WriteReport& report)>;

/// @}

}  // namespace VelWhiteBoard
