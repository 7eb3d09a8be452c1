#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "VelWhiteBoard/foundation/files/file_system.h"

namespace VelWhiteBoard {

/// A file system in memory, empty but for its root "/", which is also what relative paths start
/// from.
///
/// Follows the contract of FileSystem, without symbolic links, permissions and special files. Lists
/// names in falling order, so that whoever needs an order must make one. May be used from any
/// thread.
class MemoryFileSystem final : public FileSystem {
 public:
  FileResult status(const std::string& path, FileStatus& status) override;
  FileResult open(const std::string& path, std::unique_ptr<OpenedFile>& file) override;
  FileResult readBytes(const std::string& path, FileBytes& bytes) override;
  FileResult writeAtomically(const std::string& path, const ContentProducer& produce) override;
  FileResult removeRecursively(const std::string& path) override;
  FileResult list(const std::string& path, std::vector<std::string>& names) override;
  FileResult makeFolder(const std::string& path) override;
  FileResult makePrivateFolder(const std::string& path) override { return makeFolder(path); }
  FileResult makeFolders(const std::string& path) override;
  FileResult removeUnusedTemporaries(const std::string& folder,
                                     std::string_view targetSuffix) override;
  FileResult rename(const std::string& from, const std::string& to) override;
  FileResult renameToNew(const std::string& from, const std::string& to) override;

 private:
  struct Node {
    bool isFolder = false;
    std::string contents;
  };
  // By absolute path without "." and "..", and without a separator at the end; the root, "", is not
  // among them.
  using Nodes = std::map<std::string, Node>;

  const Node* find(const std::string& key) const;
  int findFile(const std::string& path, const Node*& node) const;
  int requireFolderOf(const std::string& key) const;
  bool hasEntries(const std::string& key) const;
  int writable(const std::string& key) const;
  int makeOne(const std::string& key);
  int move(const std::string& from, const std::string& to);

  mutable std::mutex mutex_;
  Nodes nodes_;
};

}  // namespace VelWhiteBoard
