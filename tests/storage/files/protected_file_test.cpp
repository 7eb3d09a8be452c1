// What a storage may do with a file depends on what it knows of it.
#include "VelWhiteBoard/storage/files/protected_file.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/queue/operation_queue.h"

#include "tests/support/temporary_folder.h"

namespace VelWhiteBoard {
namespace {

constexpr std::string_view kOld = "what somebody else wrote";

class AProtectedFile : public ::testing::Test {
 protected:
  void plant(std::string_view text = kOld) { std::ofstream(path_) << text; }
  void write() {
    file_.replace([](PropertyListWriter&) {});
  }
  static std::string contents(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  bool isAside(const std::string& suffix = "") const {
    return contents(path_ + ".damaged" + suffix) == kOld;
  }
  bool isNothingAside() const { return !std::filesystem::exists(path_ + ".damaged"); }
  bool isWritten() const { return contents(path_).find("<plist") != std::string::npos; }
  void found(FileState state) { file_.endReading(file_.beginReading(), state); }

  TemporaryFolder folder_;
  const std::string path_ = folder_.at("page.plist");
  ProtectedFile file_{path_};
};

TEST_F(AProtectedFile, IsReplacedWhenItWasReadWhole) {
  plant();
  found(FileState::kReadWhole);
  write();
  EXPECT_TRUE(isWritten());
  EXPECT_TRUE(isNothingAside());
}

TEST_F(AProtectedFile, IsReplacedWhenThisStorageWroteIt) {
  found(FileState::kAbsent);
  write();
  write();
  EXPECT_TRUE(isWritten());
  EXPECT_TRUE(isNothingAside());
}

TEST_F(AProtectedFile, LetsItsQueueGetOnWhileItIsWritten) {
  OperationQueue queue;
  std::uint64_t within = 0;
  queue.addOperationWithBlock([&] {
    const std::uint64_t before = queue.progress();
    write();
    within = queue.progress() - before;
  });
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_GT(within, 0U);
}

TEST_F(AProtectedFile, IsMovedAsideWhenNobodyHasLookedAtIt) {
  plant();
  write();
  EXPECT_TRUE(isWritten());
  EXPECT_TRUE(isAside());
}

TEST_F(AProtectedFile, IsMovedAsideWhenItWasNotRead) {
  plant();
  found(FileState::kUnknown);
  write();
  write();
  EXPECT_TRUE(isWritten());
  EXPECT_TRUE(isAside());
  EXPECT_FALSE(std::filesystem::exists(path_ + ".damaged-2")) << "once";
}

TEST_F(AProtectedFile, IsMovedToANameThatNothingHasYet) {
  for (const std::string suffix : {"", "-2", "-3"}) {
    plant();
    found(FileState::kUnknown);
    write();
    EXPECT_TRUE(isAside(suffix)) << suffix;
  }
  EXPECT_TRUE(isAside()) << "and nothing has replaced the first";
}

TEST_F(AProtectedFile, MayBeAFolderThatIsInTheWay) {
  std::filesystem::create_directories(path_ + "/inside");
  write();
  EXPECT_TRUE(isWritten());
  EXPECT_TRUE(std::filesystem::exists(path_ + ".damaged/inside"));
}

TEST_F(AProtectedFile, IsNotJudgedByAReadingThatBeganBeforeItWasWritten) {
  plant();
  const auto begun = file_.beginReading();
  write();
  file_.endReading(begun, FileState::kUnknown);
  write();
  EXPECT_TRUE(isAside());
  EXPECT_FALSE(std::filesystem::exists(path_ + ".damaged-2")) << "the new file was healthy";
}

TEST_F(AProtectedFile, IsReplacedAfterItHasBeenRemoved) {
  plant();
  found(FileState::kUnknown);
  file_.remove();
  EXPECT_FALSE(std::filesystem::exists(path_));
  write();
  EXPECT_TRUE(isWritten());
  EXPECT_TRUE(isNothingAside());
}

TEST_F(AProtectedFile, IsRemovedWithTheTemporaryThatACrashHasLeft) {
  plant();
  std::ofstream(path_ + ".tmp") << "half a page";
  file_.remove();
  EXPECT_FALSE(std::filesystem::exists(path_ + ".tmp"));
}

TEST_F(AProtectedFile, TellsWhetherItsLastWriteHasFailed) {
  ProtectedFile lost(folder_.at("no_such_folder/page.plist"));
  EXPECT_FALSE(lost.hasFailed());
  lost.replace([](PropertyListWriter&) {});
  EXPECT_TRUE(lost.hasFailed());
  std::filesystem::create_directories(folder_.at("no_such_folder"));
  lost.replace([](PropertyListWriter&) {});
  EXPECT_FALSE(lost.hasFailed());
}

}  // namespace
}  // namespace VelWhiteBoard
