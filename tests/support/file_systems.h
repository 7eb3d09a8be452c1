#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/disk_file_system.h"
#include "VelWhiteBoard/foundation/files/system_calls.h"

#include "tests/support/memory_file_system.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/write_all.h"

namespace VelWhiteBoard {

using Names = std::vector<std::string>;

/// The implementations of FileSystem.
enum class Implementation { kDisk, kMemory };

/// A test of the contract of FileSystem, which runs over every implementation in an empty folder of
/// its own.
class FileSystems : public ::testing::TestWithParam<Implementation> {
 protected:
  FileSystems() {
    if (GetParam() == Implementation::kDisk) {
      folder_ = std::make_unique<TemporaryFolder>();
      files_ = std::make_unique<DiskFileSystem>(SystemCalls::posix());
      root_ = folder_->path();
    } else {
      files_ = std::make_unique<MemoryFileSystem>();
      root_ = "/root";
      EXPECT_TRUE(files_->makeFolder(root_));
    }
  }

  FileSystem& files() { return *files_; }
  std::string at(const std::string& name) const { return root_ + "/" + name; }
  void put(const std::string& name, std::string_view contents) {
    const FileResult result = writeAll(files(), at(name), contents);
    ASSERT_TRUE(result) << result.describe();
  }
  std::string contents(const std::string& name) {
    FileBytes found;
    const FileResult result = files().readBytes(at(name), found);
    return result ? std::string(found.view()) : "(" + result.describe() + ")";
  }
  Names entries(const std::string& path) {
    Names names;
    const FileResult result = files().list(path, names);
    EXPECT_TRUE(result) << result.describe();
    return names;
  }
  Names entries() { return entries(root_); }

 private:
  std::unique_ptr<TemporaryFolder> folder_;
  std::unique_ptr<FileSystem> files_;
  std::string root_;
};

inline void expectFailure(const FileResult& result, FileStep step, int error) {
  EXPECT_FALSE(result.ok());
  EXPECT_EQ(fileStepName(result.step), fileStepName(step)) << result.describe();
  EXPECT_EQ(result.error, error) << result.describe();
}

inline std::string nameOfImplementation(const ::testing::TestParamInfo<Implementation>& info) {
  return info.param == Implementation::kDisk ? "OnDisk" : "InMemory";
}

inline auto allImplementations() {
  return ::testing::Values(Implementation::kDisk, Implementation::kMemory);
}

}  // namespace VelWhiteBoard
