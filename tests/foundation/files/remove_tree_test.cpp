// Removing folders: without following links, without minding depth, whatever call fails.
#include <cerrno>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/disk_file_system.h"

#include "tests/support/faulty_calls.h"
#include "tests/support/temporary_folder.h"

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

  static std::size_t filesIn(const std::string& path) {
    std::size_t files = 0;
    if (!fs::exists(path)) return 0;
    for (const auto& entry : fs::recursive_directory_iterator(path))
      files += entry.is_regular_file();
    return files;
  }

  TemporaryFolder folder_{TemporaryFolder::Volume::kMemory};
  FaultyCalls calls_;
  DiskFileSystem files_{calls_};
};

// Makes `levels` folders inside each other, deeper than a path can say.
void dig(const std::string& top, int levels) {
  SystemCalls& calls = SystemCalls::posix();
  ASSERT_EQ(calls.makeFolder(top, 0777), 0);
  // Each time a short chain, cheap to reach by its path, is made beside the tree made so far, which
  // is then moved to its end.
  const std::string next = top + ".next";
  constexpr int kChain = 100;
  for (int made = 0; made < levels; made += kChain) {
    std::string end = next;
    ASSERT_EQ(calls.makeFolder(end, 0777), 0);
    for (int i = 1; i < kChain; ++i) {
      end += "/d";
      ASSERT_EQ(calls.makeFolder(end, 0777), 0);
    }
    ASSERT_EQ(calls.rename(top, end + "/d"), 0);
    ASSERT_EQ(calls.rename(next, top), 0);
  }
}

TEST_F(RemovingTrees, TenThousandLevelsAreRemovedWithAHandfulOfHandles) {
  dig(folder_.at("deep"), 10'000);
  const FileResult result = files_.removeRecursively(folder_.at("deep"));
  EXPECT_TRUE(result) << result.describe().substr(0, 200);
  EXPECT_TRUE(fs::is_empty(folder_.path()));
  EXPECT_GE(calls_.count(Call::kRemove), 20'000);
  EXPECT_LE(calls_.mostOpenHandles(), 3U);
  EXPECT_EQ(calls_.openHandles(), 0U);
}

TEST_F(RemovingTrees, AFolderOfManyFilesIsListedOnce) {
  fs::create_directory(folder_.at("wide"));
  for (int i = 0; i < 500; ++i) {
    ASSERT_TRUE(files_.createEmptyFile(folder_.at("wide/" + std::to_string(i))));
  }
  EXPECT_TRUE(files_.removeRecursively(folder_.at("wide")));
  EXPECT_TRUE(fs::is_empty(folder_.path()));
  EXPECT_EQ(calls_.count(Call::kList), 1);
}

TEST_F(RemovingTrees, LinksAreRemovedAndNeverFollowed) {
  ASSERT_TRUE(files_.makeFolder(folder_.at("outside")));
  ASSERT_TRUE(files_.writeAll(folder_.at("outside/kept"), "x"));
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
  // Should the refusal ever fail, these calls still remove nothing.
  calls_.inject(Fault::failingFrom(Call::kRemove, 1, EIO));
  calls_.inject(Fault::failingFrom(Call::kOpenFolder, 1, EIO));
  for (const char* path : {"/", "//", "/.", "/tmp/..", ".", ".."}) {
    SCOPED_TRACE(path);
    EXPECT_EQ(files_.removeRecursively(path).error, EINVAL);
  }
  EXPECT_EQ(calls_.count(Call::kRemove), 0);
}

TEST_F(RemovingTrees, WhateverCallFailsTheRestGoesAndTheNextTryTakesAll) {
  ASSERT_TRUE(files_.removeRecursively(makeTree()));
  std::map<Call, int> made;
  for (const Call call : kAllCalls) made[call] = calls_.count(call);
  int tried = 0;
  for (const auto& [call, count] : made) {
    for (int nth = 1; nth <= count; ++nth) {
      SCOPED_TRACE(std::string(callName(call)) + " " + std::to_string(nth));
      const std::string top = makeTree();
      calls_.heal();
      calls_.inject(Fault::failing(call, nth, EIO));
      const FileResult result = files_.removeRecursively(top);
      EXPECT_EQ(result.ok(), !fs::exists(top)) << result.describe();
      EXPECT_EQ(calls_.faultsMet(), tried + 1);
      EXPECT_EQ(calls_.openHandles(), 0U);
      calls_.heal();
      EXPECT_TRUE(files_.removeRecursively(top));
      EXPECT_FALSE(fs::exists(top));
      ++tried;
    }
  }
  EXPECT_GE(tried, 30) << "the loop must have met the calls of a removal";
}

TEST_F(RemovingTrees, OneFileThatCannotBeRemovedDoesNotSaveTheOthers) {
  const std::string top = makeTree();
  // The third attempt is an entry of the top folder: the first was the folder itself.
  calls_.inject(Fault::failing(Call::kRemove, 3, EBUSY));
  const FileResult result = files_.removeRecursively(top);
  EXPECT_EQ(result.step, FileStep::kRemove);
  EXPECT_EQ(result.error, EBUSY) << "the first reason, not that the folder above is not empty";
  EXPECT_TRUE(result.path.starts_with(top + "/")) << result.path;
  EXPECT_TRUE(fs::exists(top));
  EXPECT_LE(filesIn(top), 2U) << "at most what lay in the entry that stayed";
}

TEST_F(RemovingTrees, AnEmptyFolderThatIsClosedToUsIsRemoved) {
  ASSERT_TRUE(files_.makeFolder(folder_.at("closed")));
  calls_.inject(Fault::failing(Call::kOpenFolder, 1, EACCES));
  EXPECT_TRUE(files_.removeRecursively(folder_.at("closed")));
  EXPECT_TRUE(fs::is_empty(folder_.path()));
}

TEST_F(RemovingTrees, WhatSomebodyElseRemovesMeanwhileIsNoFailure) {
  const std::string top = makeTree();
  calls_.before(Call::kRemove, 2, [&] {
    for (const char* name : {"/1", "/2", "/3"}) fs::remove(top + name);
    fs::remove_all(top + "/some");
  });
  const FileResult result = files_.removeRecursively(top);
  EXPECT_TRUE(result) << result.describe();
  EXPECT_FALSE(fs::exists(top));
}

TEST_F(RemovingTrees, AFolderThatIsMovedMeanwhileDoesNotLeadElsewhere) {
  ASSERT_TRUE(files_.makeFolders(folder_.at("outside")));
  ASSERT_TRUE(files_.writeAll(folder_.at("outside/kept"), "x"));
  ASSERT_TRUE(files_.makeFolders(folder_.at("top/a/b/c")));
  // Four folders are opened on the way down; the fifth time is the way back from b to a.
  calls_.before(Call::kOpenFolder, 5,
                [&] { fs::rename(folder_.at("top/a/b"), folder_.at("outside/b")); });
  EXPECT_EQ(files_.removeRecursively(folder_.at("top")).error, ESTALE);
  EXPECT_TRUE(fs::exists(folder_.at("outside/kept")));
  EXPECT_TRUE(fs::exists(folder_.at("outside/b")));
  EXPECT_EQ(calls_.openHandles(), 0U);
}

TEST_F(RemovingTrees, AFolderThatBecomesALinkMeanwhileIsNotFollowed) {
  ASSERT_TRUE(files_.makeFolder(folder_.at("outside")));
  ASSERT_TRUE(files_.writeAll(folder_.at("outside/kept"), "x"));
  ASSERT_TRUE(files_.makeFolders(folder_.at("top/a")));
  calls_.before(Call::kOpenFolder, 2, [&] {
    fs::remove(folder_.at("top/a"));
    fs::create_symlink(folder_.at("outside"), folder_.at("top/a"));
  });
  EXPECT_FALSE(files_.removeRecursively(folder_.at("top")).ok());
  EXPECT_TRUE(fs::exists(folder_.at("outside/kept")));
}

}  // namespace
}  // namespace VelWhiteBoard
