// A write that fails is not repeated by itself; retryFailedSaves() repeats those of every page that
// is still in memory.
#include <cerrno>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/disk_file_system.h"

#include "tests/reliability/board_on_disk.h"
#include "tests/support/faulty_calls.h"
#include "tests/support/storage_story.h"

namespace VelWhiteBoard {
namespace {

class FailedSaves : public ::testing::Test {
 protected:
  FailedSaves() : storage_(board_.open()) {}
  ~FailedSaves() override { settle(*storage_); }

  void show(std::uint64_t number) { storage_->switchPage(page(1, number, ++time_)); }
  void failWrites() { calls_.inject(Fault::failingFrom(Call::kWrite, 1, EIO)); }
  /// Draws on a page and leaves it; its write fails, the next one of the visited pages does not.
  void drawInVain(std::uint64_t number) {
    show(number);
    draw(*storage_, {"on " + std::to_string(number)});
    settle(*storage_);
    failWrites();
    show(100);
    settle(*storage_);
    calls_.heal();
    show(101);
    settle(*storage_);
  }
  void expectOnDisk(std::uint64_t number, const Names& identifiers) {
    const std::string key = "1_" + std::to_string(number);
    EXPECT_EQ(board_.identifiers(wholeName(key)), identifiers) << key;
    EXPECT_EQ(board_.identifiers(snapName(key)), identifiers) << key;
  }

  BoardOnDisk board_;
  FaultyCalls calls_;
  DiskFileSystem disk_{calls_};
  ScopedFileSystem scope_{disk_};
  std::shared_ptr<VWBVectorStorage> storage_;
  double time_ = 0;
};

TEST_F(FailedSaves, AreNoneAtFirstAndAfterSavesThatWorked) {
  EXPECT_FALSE(storage_->retryFailedSaves());
  show(1);
  draw(*storage_, {"on 1"});
  saveNow(*storage_);
  show(2);
  settle(*storage_);
  EXPECT_FALSE(storage_->retryFailedSaves());
}

TEST_F(FailedSaves, AreMadeGoodForEveryPage) {
  for (std::uint64_t number = 1; number <= 50; ++number) drawInVain(number);
  EXPECT_TRUE(storage_->retryFailedSaves());
  settle(*storage_);
  for (std::uint64_t number = 1; number <= 50; ++number) {
    expectOnDisk(number, {"on " + std::to_string(number)});
  }
  EXPECT_FALSE(storage_->retryFailedSaves());
}

TEST_F(FailedSaves, WriteThePagesAsTheyAreNow) {
  drawInVain(1);
  failWrites();
  storage_->appendVectors({text("appended", "words")}, page(1, 1));
  settle(*storage_);
  calls_.heal();
  EXPECT_TRUE(storage_->retryFailedSaves());
  settle(*storage_);
  expectOnDisk(1, {"on 1", "appended"});
}

TEST_F(FailedSaves, ThatFailAgainCanBeTriedAgain) {
  drawInVain(1);
  failWrites();
  EXPECT_TRUE(storage_->retryFailedSaves());
  settle(*storage_);
  calls_.heal();
  expectOnDisk(1, {});
  EXPECT_TRUE(storage_->retryFailedSaves());
  settle(*storage_);
  expectOnDisk(1, {"on 1"});
}

TEST_F(FailedSaves, AreOverOnceALaterWriteOfThePageHasWorked) {
  drawInVain(1);
  storage_->appendVectors({text("appended", "words")}, page(1, 1));
  settle(*storage_);
  expectOnDisk(1, {"on 1", "appended"});
  EXPECT_FALSE(storage_->retryFailedSaves());
}

TEST_F(FailedSaves, OfOnlyOneOfTheTwoFilesAreMadeGoodToo) {
  show(1);
  draw(*storage_, {"on 1"});
  settle(*storage_);
  calls_.inject(Fault::failing(Call::kRename, 2, EIO));  // the snapshot's
  saveNow(*storage_);
  calls_.heal();
  EXPECT_EQ(board_.identifiers(snapName("1_1")), Names());
  EXPECT_TRUE(storage_->retryFailedSaves());
  settle(*storage_);
  expectOnDisk(1, {"on 1"});
}

TEST_F(FailedSaves, OfTheVisitedPagesAreMadeGoodToo) {
  show(1);
  settle(*storage_);
  failWrites();
  show(2);
  settle(*storage_);
  calls_.heal();
  EXPECT_EQ(board_.identifiers(kPagesName), (Names{"1_1"}));
  EXPECT_TRUE(storage_->retryFailedSaves());
  settle(*storage_);
  EXPECT_EQ(board_.identifiers(kPagesName), (Names{"1_1", "1_2"}));
  EXPECT_FALSE(storage_->retryFailedSaves());
}

TEST_F(FailedSaves, OfAPageThatWasClearedAreForgotten) {
  drawInVain(1);
  storage_->clearPage(*page(1, 1));
  EXPECT_FALSE(storage_->retryFailedSaves());
  settle(*storage_);
  EXPECT_FALSE(storage_->hasVectorsWithPage(*page(1, 1)));
}

TEST_F(FailedSaves, AreForgottenByReloadAndClear) {
  drawInVain(1);
  storage_->reload();
  EXPECT_FALSE(storage_->retryFailedSaves());
  drawInVain(2);
  storage_->clear();
  EXPECT_FALSE(storage_->retryFailedSaves());
}

}  // namespace
}  // namespace VelWhiteBoard
