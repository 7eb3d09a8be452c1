/// @file
/// What happens to the files of folders, told by the system.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace VelWhiteBoard {

/// Watches folders from its construction on.
class FolderLog {
 public:
  explicit FolderLog(const std::vector<std::string>& folders);
  ~FolderLog();
  FolderLog(const FolderLog&) = delete;
  FolderLog& operator=(const FolderLog&) = delete;

  /// What has happened to names that end in ".plist" since the last call, in order: "write PATH"
  /// when a file was moved there, "remove PATH" when it was removed.
  std::vector<std::string> take();

 private:
  int handle_;
  std::map<int, std::string> folders_;
};

}  // namespace VelWhiteBoard
