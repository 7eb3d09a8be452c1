// Removing folders without following links.
#include <cerrno>
#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/disk_file_system.h"

#include "tests/support/faulty_calls.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/write_all.h"

namespace VelWhiteBoard {
namespace {

namespace fs = std::filesystem;

class RemovingTrees : public ::testing::Test {
 protected:
  // top/ with three files, a folder of two files, an empty folder, and a way three folders deep.
  std::string makeTree() {
    const std::string top = folder_.at("top");
    DiskFileSystem plain(SystemCalls::posix());
    for (const char* name : {"/some", "/empty", "/a/b/c"})
      EXPECT_TRUE(plain.makeFolders(top + name));
    for (const char* name : {"/1", "/2", "/3", "/some/4", "/some/5", "/a/6", "/a/b/c/7"}) {
      EXPECT_TRUE(plain.createEmptyFile(top + name));
    }
    return top;
  }

  TemporaryFolder folder_{TemporaryFolder::Volume::kMemory};
  FaultyCalls calls_;
  DiskFileSystem files_{calls_};
};

TEST_F(RemovingTrees, AFolderGoesWithAllThatItHolds) {
  const std::string top = makeTree();
  EXPECT_TRUE(files_.removeRecursively(top));
  EXPECT_TRUE(fs::is_empty(folder_.path()));
}

TEST_F(RemovingTrees, NothingAtTheEndOfAPathIsASuccess) {
  ASSERT_TRUE(writeAll(files_, folder_.at("file"), "x"));
  for (const char* name : {"missing", "missing/deeper", "file/deeper"}) {
    EXPECT_TRUE(files_.removeRecursively(folder_.at(name))) << name;
  }
  EXPECT_TRUE(fs::exists(folder_.at("file")));
}

TEST_F(RemovingTrees, LinksAreRemovedAndNeverFollowed) {
  ASSERT_TRUE(files_.makeFolder(folder_.at("outside")));
  ASSERT_TRUE(writeAll(files_, folder_.at("outside/kept"), "x"));
  const std::string top = makeTree();
  fs::create_symlink(folder_.at("outside"), top + "/a/link");
  fs::create_symlink("missing", top + "/dangling");
  EXPECT_TRUE(files_.removeRecursively(top));
  for (const char* name : {"link", "link/", "link//"}) {
    SCOPED_TRACE(name);
    fs::create_symlink(folder_.at("outside"), folder_.at("link"));
    EXPECT_TRUE(files_.removeRecursively(folder_.at(name)));
    EXPECT_FALSE(fs::is_symlink(folder_.at("link")));
  }
  EXPECT_FALSE(fs::exists(top));
  EXPECT_TRUE(fs::exists(folder_.at("outside/kept")));
}

TEST_F(RemovingTrees, TheRootIsRefusedBeforeAnythingIsTouched) {
  // Should the refusal ever fail, this call still removes nothing.
  calls_.inject(Fault::failingFrom(Call::kRemoveAll, 1, EIO));
  for (const char* path : {"/", "//", "/.", "/tmp/..", ".", ".."}) {
    SCOPED_TRACE(path);
    EXPECT_EQ(files_.removeRecursively(path).error, EINVAL);
  }
  EXPECT_EQ(calls_.count(Call::kRemoveAll), 0);
}

TEST_F(RemovingTrees, AFailureIsReportedAndTheNextTryTakesWhatIsLeft) {
  const std::string top = makeTree();
  calls_.inject(Fault::failing(Call::kRemoveAll, 1, EBUSY));
  const FileResult result = files_.removeRecursively(top);
  EXPECT_EQ(result.step, FileStep::kRemove);
  EXPECT_EQ(result.error, EBUSY);
  EXPECT_EQ(result.path, top);
  EXPECT_TRUE(files_.removeRecursively(top));
  EXPECT_FALSE(fs::exists(top));
}

TEST_F(RemovingTrees, AnInterruptedRemovalGoesOn) {
  const std::string top = makeTree();
  calls_.inject(Fault::failing(Call::kRemoveAll, 1, EINTR));
  EXPECT_TRUE(files_.removeRecursively(top));
  EXPECT_FALSE(fs::exists(top));
}

}  // namespace
}  // namespace VelWhiteBoard
