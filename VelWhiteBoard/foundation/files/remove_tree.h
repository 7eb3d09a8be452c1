#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "VelWhiteBoard/foundation/files/file_system.h"
#include "VelWhiteBoard/foundation/files/open_handle.h"
#include "VelWhiteBoard/foundation/files/system_calls.h"

namespace VelWhiteBoard {

/// Removes one file or one folder with everything in it; see FileSystem::removeRecursively.
///
/// Depth costs neither stack nor handles nor long paths: the way down is a list on the heap, at
/// most two folders are open, every call names an entry of the open one, and the way back up goes
/// through
/// "..", checked against the folder that the way down came through. So a tree that was made deeper
/// than any path may be long goes too, and a tree that is moved meanwhile leads nowhere else.
class RemoveTree {
 public:
  RemoveTree(SystemCalls& calls, const std::string& path);
  FileResult run();

 private:
  struct Level {
    std::string name;  // in the folder above; the whole path for the first level
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::vector<std::string> remaining;
  };

  int here() const { return levels_.empty() ? SystemCalls::kNoFolder : current_.get(); }
  int remove(const std::string& name, bool isFolder);
  void removeEntry(std::string name);
  void enter(std::string name, int refusal);
  void leave();
  bool returnToParent();
  bool isLastLevel(int handle);
  void note(FileStep step, int negatedError, const std::string& name);

  SystemCalls& calls_;
  const std::string path_;
  std::vector<Level> levels_;
  OpenHandle current_;  // the folder of the last level
  OpenHandle parent_;   // the folder of the level above it, while it is still open
  FileResult first_;
};

}  // namespace VelWhiteBoard
