/// @file
/// The implementation of the file system on disk.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "VelWhiteBoard/foundation/files/file_system.h"
#include "VelWhiteBoard/foundation/files/system_calls.h"

namespace VelWhiteBoard {

/// The file system on the disk.
///
/// Its only state is a reference to the system calls, which must outlive it. So any number of
/// threads may use one, and two instances may work in the same folder.
class DiskFileSystem final : public FileSystem {
 public:
  explicit DiskFileSystem(SystemCalls& calls) : calls_(calls) {}

  FileResult status(const std::string& path, FileStatus& status) override;
  FileResult open(const std::string& path, std::unique_ptr<OpenedFile>& file) override;
  FileResult readBytes(const std::string& path, FileBytes& bytes) override;
  FileResult writeAtomically(const std::string& path, const ContentProducer& produce) override;
  FileResult removeRecursively(const std::string& path) override;
  FileResult list(const std::string& path, std::vector<std::string>& names) override;
  FileResult makeFolder(const std::string& path) override;
  FileResult makePrivateFolder(const std::string& path) override;
  FileResult makeFolders(const std::string& path) override;
  FileResult removeUnusedTemporaries(const std::string& folder,
                                     std::string_view targetSuffix) override;
  FileResult rename(const std::string& from, const std::string& to) override;
  FileResult renameToNew(const std::string& from, const std::string& to) override;

 private:
  FileResult makeFolderWith(const std::string& path, std::uint32_t permissions);
  int makeUnlessFolder(const std::string& path);
  int lookThenRename(const std::string& from, const std::string& to);

  SystemCalls& calls_;
};

}  // namespace VelWhiteBoard
