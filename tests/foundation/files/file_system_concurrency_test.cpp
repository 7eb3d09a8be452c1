// Several threads at one file, at the seam, and at the path manager.
#include <atomic>
#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/disk_file_system.h"
#include "VelWhiteBoard/foundation/files/file_system.h"
#include "VelWhiteBoard/services/path_manager.h"

#include "tests/support/faulty_calls.h"
#include "tests/support/memory_file_system.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/write_all.h"

namespace VelWhiteBoard {
namespace {

void allTogether(const std::vector<std::function<void()>>& works) {
  std::vector<std::thread> threads;
  threads.reserve(works.size());
  for (const auto& work : works) threads.emplace_back(work);
  for (std::thread& thread : threads) thread.join();
}

bool isWhole(std::string_view text) {
  return text.size() == 100'000 && text.find_first_not_of(text[0]) == std::string::npos;
}

// Every writer's generations are of one letter; a reader must never see two of them in one file.
void writeAndRead(FileSystem& files, const std::string& target) {
  constexpr int kWrites = 50;
  ASSERT_TRUE(writeAll(files, target, std::string(100'000, 'a')));
  std::atomic<int> writing{3};
  std::vector<std::function<void()>> works;
  for (const char letter : {'b', 'c', 'd'}) {
    works.emplace_back([&, letter] {
      for (int i = 0; i < kWrites; ++i) {
        const FileResult result = writeAll(files, target, std::string(100'000, letter));
        EXPECT_TRUE(result) << result.describe();
      }
      --writing;
    });
  }
  works.emplace_back([&] {
    do {
      FileBytes read;
      const FileResult result = files.readBytes(target, read);
      EXPECT_TRUE(result) << result.describe();
      EXPECT_TRUE(isWhole(read.view()));
    } while (writing > 0);
  });
  allTogether(works);
  FileBytes last;
  EXPECT_TRUE(files.readBytes(target, last));
  EXPECT_TRUE(isWhole(last.view()));
  EXPECT_FALSE(last.view().starts_with('a'));
  EXPECT_FALSE(files.exists(target + std::string(kTemporarySuffix)));
}

TEST(FileThreads, WritersOfOneFileOnTheDiskLeaveOneWholeGeneration) {
  const TemporaryFolder folder;
  FaultyCalls calls;
  DiskFileSystem files(calls);
  writeAndRead(files, folder.at("page.plist"));
  EXPECT_EQ(calls.openHandles(), 0U);
}

TEST(FileThreads, WritersOfOneFileInMemoryLeaveOneWholeGeneration) {
  MemoryFileSystem files;
  writeAndRead(files, "/page.plist");
}

TEST(FileThreads, CleaningUpWhileFilesAreWrittenCostsNoWriterItsContents) {
  const TemporaryFolder folder;
  DiskFileSystem files(SystemCalls::posix());
  constexpr int kWrites = 200;
  std::atomic<int> writing{3};
  std::vector<std::function<void()>> works;
  for (const char letter : {'b', 'c', 'd'}) {
    works.emplace_back([&, letter] {
      const std::string name = letter == 'b' ? "alone.plist" : "together.plist";
      for (int i = 0; i < kWrites; ++i) {
        const FileResult result = writeAll(files, folder.at(name), std::string(1000, letter));
        EXPECT_TRUE(result) << result.describe();
      }
      --writing;
    });
  }
  works.emplace_back([&] {
    while (writing > 0) {
      const FileResult result = files.removeUnusedTemporaries(folder.path(), ".plist");
      EXPECT_TRUE(result) << result.describe();
    }
  });
  allTogether(works);
  std::vector<std::string> names;
  EXPECT_TRUE(files.list(folder.path(), names));
  EXPECT_EQ(names.size(), 2U);
}

TEST(FileThreads, TheSeamCanBeReplacedWhileOthersUseIt) {
  MemoryFileSystem memory;
  std::atomic<bool> done{false};
  std::vector<std::function<void()>> works(2, [&] {
    while (!done) EXPECT_TRUE(FileSystem::current().exists("/"));
  });
  works.emplace_back([&] {
    for (int i = 0; i < 1000; ++i) const ScopedFileSystem scope(memory);
    done = true;
  });
  allTogether(works);
}

TEST(PathManagerThreads, EveryOperationMayBeCalledFromEveryThread) {
  MemoryFileSystem memory;
  const ScopedFileSystem scope(memory);
  VWBPathManager& manager = VWBPathManager::sharedManager().init();
  const std::string temporary = manager.tempDirectory();
  constexpr int kRounds = 200;
  const auto work = [&](const std::string& name) {
    for (int i = 0; i < kRounds; ++i) {
      manager.setRootFolder(name);
      const std::string root = manager.rootFolder();
      EXPECT_TRUE(root.empty() || root == "first" || root == "second") << root;
      manager.initConfigure();
      EXPECT_EQ(manager.directoryPath(3), temporary);
      const auto folder = manager.createFolderWithSuffix(name, 13);
      ASSERT_TRUE(folder.has_value());
      EXPECT_TRUE(manager.createFile(*folder + "/page.plist"));
      EXPECT_TRUE(manager.isFolderExist(*folder));
      EXPECT_TRUE(manager.filesAtPath(*folder).has_value());
      EXPECT_TRUE(manager.removeFolderOrFile("/" + name));
    }
  };
  allTogether({[&] { work("first"); }, [&] { work("second"); }, [&] { work("first"); }});
}

}  // namespace
}  // namespace VelWhiteBoard
