#pragma once

#include <string>
#include <string_view>

#include "VelWhiteBoard/foundation/file_system.h"
#include "VelWhiteBoard/foundation/open_handle.h"
#include "VelWhiteBoard/foundation/system_calls.h"

namespace VelWhiteBoard {

/// One atomic replacement of one file: `begin`, `append` as often as needed, `commit`.
///
/// The first failure stays in `result()` and makes every later call do nothing. Dropping the object
/// before a successful commit removes the temporary and leaves the target as it was.
///
/// Writers of one target share the temporary's name and take turns by a lock on that file. The lock
/// belongs to the file and not to its name: while a writer waits, the file it opened may be renamed
/// over the target by the writer before it. So whoever gets the lock looks whether the name still
/// leads to the locked file, and starts again if not; only then is the file emptied and filled.
class AtomicWrite {
 public:
  AtomicWrite(SystemCalls& calls, const std::string& path);
  ~AtomicWrite();
  AtomicWrite(const AtomicWrite&) = delete;
  AtomicWrite& operator=(const AtomicWrite&) = delete;

  bool begin();
  bool append(std::string_view bytes);
  bool commit();
  const FileResult& result() const { return result_; }

 private:
  enum class Turn { kOurs, kLost, kFailed };

  bool fail(FileStep step, int negatedError, const std::string& path);
  Turn takeTurn();
  Turn openTemporary();
  Turn afterObstacle(int negatedError);
  Turn afterBlindLook(int negatedError);
  int nameLeadsElsewhere();
  bool writeOut(std::string_view bytes);
  bool flush();
  void keepPermissions();
  bool syncFolder();

  SystemCalls& calls_;
  const std::string path_;
  const std::string temporary_;
  OpenHandle file_;
  std::string pending_;  // produced but not written yet, less than a block
  FileInfo identity_;    // of the open temporary
  FileResult result_;
  bool obstacleRemoved_ = false;
  bool locked_ = false;
  bool ownsTemporary_ = false;  // the name leads to our file, which is ours to remove
};

}  // namespace VelWhiteBoard
