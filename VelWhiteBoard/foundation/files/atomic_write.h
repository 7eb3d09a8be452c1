/// @file
/// The atomic replacement of a file on disk.
#pragma once

#include <string>
#include <string_view>

#include "VelWhiteBoard/foundation/files/file_system.h"
#include "VelWhiteBoard/foundation/files/system_calls.h"
#include "VelWhiteBoard/foundation/files/temporary_file.h"

namespace VelWhiteBoard {

/// One atomic replacement of one file: `begin`, `append` as often as needed, `commit`.
///
/// The first failure stays in `result()`, and every later call then does nothing. Destroying the
/// object before a successful commit removes the temporary and leaves the target as it was.
class AtomicWrite {
 public:
  AtomicWrite(SystemCalls& calls, const std::string& path);
  AtomicWrite(const AtomicWrite&) = delete;
  AtomicWrite& operator=(const AtomicWrite&) = delete;

  bool begin();
  /// Writes the bytes without buffering: the caller collects small pieces.
  bool append(std::string_view bytes);
  bool commit();
  const FileResult& result() const { return result_; }

 private:
  bool note(FileResult result);
  bool fail(FileStep step, int negatedError);
  void keepPermissions();
  bool syncFolder();

  SystemCalls& calls_;
  const std::string path_;
  TemporaryFile temporary_;
  FileResult result_;
};

}  // namespace VelWhiteBoard
