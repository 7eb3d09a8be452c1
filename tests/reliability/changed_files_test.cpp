// What a page's lists hold is settled when switchPage returns, whatever becomes of the files.
#include <filesystem>
#include <iterator>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "VelWhiteBoard/services/path_manager.h"

#include "tests/reliability/board_on_disk.h"
#include "tests/support/storage_story.h"

namespace VelWhiteBoard {
namespace {

std::ptrdiff_t openHandles() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                       std::filesystem::directory_iterator());
}

class APageThatIsShown : public ::testing::Test {
 protected:
  APageThatIsShown() {
    const auto storage = board_.open();
    for (std::uint64_t number = 1; number <= 2; ++number) {
      storage->switchPage(page(1, number, ++time_));
      draw(*storage, old_);
    }
    saveNow(*storage);
    storage_ = board_.open();
  }

  void expectTheWholeLesson() {
    EXPECT_EQ(identifiersOf(storage_->snapVectorss()["1_1"]), old_);
    EXPECT_EQ(identifiersOf(storage_->wholeVectorss()["1_1"]), old_);
    draw(*storage_, {"new"});
    saveNow(*storage_);
    Names all = old_;
    all.emplace_back("new");
    EXPECT_EQ(board_.identifiers(wholeName("1_1")), all);
    EXPECT_EQ(board_.identifiers(snapName("1_1")), all);
  }

  BoardOnDisk board_;
  const Names old_ = numbered("old", 1, 500);
  std::shared_ptr<VWBVectorStorage> storage_;
  double time_ = 0;
};

TEST_F(APageThatIsShown, IsNotChangedByFilesThatAreRewrittenInPlace) {
  storage_->switchPage(page(1, 1, ++time_));
  board_.put(wholeName("1_1"), "garbage");
  board_.put(snapName("1_1"), "garbage");
  expectTheWholeLesson();
}

TEST_F(APageThatIsShown, IsNotChangedByAnotherBoardsFilesThatAreCopiedOverItsOwn) {
  storage_->switchPage(page(1, 1, ++time_));
  storage_->saveQueue()->waitUntilAllOperationsAreFinished();
  BoardOnDisk other;
  {
    const auto another = other.open();
    another->switchPage(page(1, 1, 1));
    draw(*another, {"foreign"});
    saveNow(*another);
  }
  board_.put(wholeName("1_1"), other.contents(wholeName("1_1")));
  board_.put(snapName("1_1"), other.contents(snapName("1_1")));
  expectTheWholeLesson();
}

TEST_F(APageThatIsShown, IsNotChangedByFilesThatAreCreatedInThePlaceOfItsOwn) {
  storage_->switchPage(page(1, 1, ++time_));
  EXPECT_TRUE(VWBPathManager::sharedManager().createFile(board_.at(wholeName("1_1"))));
  EXPECT_TRUE(VWBPathManager::sharedManager().createFile(board_.at(snapName("1_1"))));
  expectTheWholeLesson();
}

TEST_F(APageThatIsShown, IsNotChangedByFilesThatAreRemoved) {
  storage_->switchPage(page(1, 1, ++time_));
  std::filesystem::remove(board_.at(wholeName("1_1")));
  std::filesystem::remove(board_.at(snapName("1_1")));
  expectTheWholeLesson();
}

TEST_F(APageThatIsShown, TakesNoMoreThanItsFilesHeldWhenItWasShown) {
  storage_->switchPage(page(1, 1, ++time_));
  // A second storage writes the same board, which replaces the files.
  const auto second = board_.open();
  second->switchPage(page(1, 1, ++time_));
  draw(*second, {"of the second"});
  saveNow(*second);
  EXPECT_EQ(identifiersOf(storage_->wholeVectorss()["1_1"]), old_);
  EXPECT_EQ(identifiersOf(storage_->snapVectorss()["1_1"]), old_);
}

TEST_F(APageThatIsShown, KeepsNoFileOpen) {
  const std::ptrdiff_t before = openHandles();
  storage_->switchPage(page(1, 1, ++time_));
  EXPECT_EQ(openHandles(), before);
  storage_->switchPage(page(1, 2, ++time_));
  EXPECT_EQ(openHandles(), before);
}

}  // namespace
}  // namespace VelWhiteBoard
