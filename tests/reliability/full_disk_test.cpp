// A disk that is really full: what a save cannot write leaves what was there, and is written as
// soon as there is room.
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "VelWhiteBoard/storage/files/board_files.h"
#include "VelWhiteBoard/storage/vector_storage.h"

#include "tests/reliability/generations.h"
#include "tests/support/storage_story.h"
#include "tests/support/temporary_folder.h"

namespace VelWhiteBoard {
namespace {

/// A page that grows with every save, and what each save meant its files to hold.
class GrowingPage {
 public:
  explicit GrowingPage(const std::string& parent)
      : folder_(boardFolder(parent)), storage_(VWBVectorStorage::initWithPath(parent)) {
    storage_->setIgnoreChanges(false);
    storage_->switchPage(page(1, 1, 1));
  }

  void grow() {
    for (int i = 0; i < 20; ++i) {
      storage_->saveVector(text("t" + std::to_string(count_++), std::string(100, 'x')));
    }
    storage_->saveFile(true);
    lastWhole_ = digestOf(storage_->wholeVectorss()["1_1"]);
    storage_->saveQueue()->waitUntilAllOperationsAreFinished();
  }

  std::string wholeFile() const { return digestOfFile(folder_ + "/" + wholeName("1_1")); }
  std::string snapFile() const { return digestOfFile(folder_ + "/" + snapName("1_1")); }
  const std::string& lastWhole() const { return lastWhole_; }
  std::vector<std::string> temporaries() const { return namesIn(folder_, ".tmp"); }

 private:
  std::string folder_;
  std::shared_ptr<VWBVectorStorage> storage_;
  std::string lastWhole_;
  int count_ = 0;
};

/// Grows a page until a save does not come through any more, makes room, and saves again.
void expectThatAFullDiskCostsNothing(GrowingPage& growing, const std::function<void()>& makeRoom) {
  std::string previous = kAbsentFile;
  int saves = 0;
  for (growing.grow(); growing.wholeFile() == growing.lastWhole(); growing.grow()) {
    previous = growing.wholeFile();
    ASSERT_LT(++saves, 1000) << "the disk never gets full";
  }
  EXPECT_GT(saves, 2);
  for (int again = 0; again < 3; ++again) {
    EXPECT_EQ(growing.wholeFile(), previous);
    EXPECT_NE(growing.snapFile(), kUnreadableFile);
    EXPECT_NE(growing.snapFile(), kAbsentFile);
    EXPECT_EQ(growing.temporaries(), std::vector<std::string>());
    growing.grow();
  }
  makeRoom();
  growing.grow();
  EXPECT_EQ(growing.wholeFile(), growing.lastWhole());
  EXPECT_EQ(growing.snapFile(), growing.lastWhole());  // texts only: the same vectors
  EXPECT_EQ(growing.temporaries(), std::vector<std::string>());
}

TEST(AFullDisk, OfOneMegabyteCostsNothing) {
  const TemporaryFolder parent;
  if (::mount("tmpfs", parent.path().c_str(), "tmpfs", 0, "size=1m") != 0) {
    GTEST_SKIP() << "may not mount: " << std::generic_category().message(errno);
  }
  {
    GrowingPage growing(parent.path());
    expectThatAFullDiskCostsNothing(growing, [&] {
      ASSERT_EQ(::mount("tmpfs", parent.path().c_str(), "tmpfs", MS_REMOUNT, "size=8m"), 0);
    });
  }
  EXPECT_EQ(::umount(parent.path().c_str()), 0);
}

TEST(AFullDisk, OrALimitOfTheSizeOfFilesCostsNothing) {
  const TemporaryFolder parent;
  std::signal(SIGXFSZ, SIG_IGN);  // the client's part: by default this ends the process
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  rlimit tight = before;
  tight.rlim_cur = 150'000;
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &tight), 0);
  GrowingPage growing(parent.path());
  expectThatAFullDiskCostsNothing(growing,
                                  [&] { ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0); });
  ::setrlimit(RLIMIT_FSIZE, &before);
}

}  // namespace
}  // namespace VelWhiteBoard
