// Forgetting one page, and the whole board.
#include <chrono>
#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/storage/vector_storage.h"

#include "tests/support/storage_story.h"

namespace VelWhiteBoard {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Two pages with a stroke and files each; 1_2 is current and has an unsaved change.
class ForgettingPages : public ::testing::Test {
 protected:
  ForgettingPages() {
    board.show(page(1, 1, 1));
    board.save(line("a", 1, 2, 3));
    board.show(page(1, 2, 2, 5));
    board.save(line("b", 1, 2, 3));
    board.write();
    board.settle();
  }

  Board board;
};

// ---- One page

TEST_F(ForgettingPages, TheCurrentOneEmptiesItsListsTheIndexAndTheChangeFlag) {
  board->clearPage(*page(1, 2, 0, 5));
  EXPECT_EQ(board->wholeVectorss().count("1_2"), 0U);
  EXPECT_EQ(board->snapVectorss().count("1_2"), 0U);
  EXPECT_THAT(board.index(), IsEmpty());
  EXPECT_FALSE(board->hasNewChange());
  EXPECT_THAT(board.names(), ElementsAre("page.plist", "snap_1_1.plist", "whole_1_1.plist"));
}

TEST_F(ForgettingPages, TheCurrentOneDoesNotAskForTheResource) {
  board->clearPage(*page(1, 2, 0, 77));
  EXPECT_THAT(board.index(), IsEmpty());
  EXPECT_FALSE(board->hasNewChange());
}

TEST_F(ForgettingPages, TheCurrentOneKeepsItCurrentWithItsFilesNames) {
  board->clearPage(*page(1, 2));
  EXPECT_EQ(board->currentPage()->pageInfo(), "1_2");
  EXPECT_EQ(board->wholeFile(), board.at("whole_1_2.plist"));
  EXPECT_EQ(board->snapFile(), board.at("snap_1_2.plist"));
  EXPECT_THAT(tell(board->pageArray()), ElementsAre("1_1", "1_2"));
  EXPECT_THAT(board.pageFile(), ElementsAre("1_1", "1_2"));
}

TEST_F(ForgettingPages, TheCurrentOneLetsTheNextVectorStartNewLists) {
  board->clearPage(*page(1, 2));
  board.save(line("b", 4, 5, 6));
  EXPECT_THAT(board.snap(), ElementsAre("line b (4 5 6)"));
  EXPECT_THAT(board.whole(), ElementsAre("line b (4 5 6)"));
  EXPECT_TRUE(board->hasNewChange());
  board.write();
  EXPECT_THAT(board.wholeFile("1_2"), ElementsAre("line b (4 5 6)"));
}

TEST_F(ForgettingPages, TheCurrentOneIsNotSavedOnTheNextSwitch) {
  board->clearPage(*page(1, 2));
  board.show(page(1, 1, 3));
  EXPECT_FALSE(board.has("snap_1_2.plist"));
}

TEST_F(ForgettingPages, AnotherOneLeavesTheIndexAndTheChangeFlag) {
  board->clearPage(*page(1, 1));
  EXPECT_THAT(board.index(), ElementsAre("b: line b (1 2 3)"));
  EXPECT_TRUE(board->hasNewChange());
  EXPECT_FALSE(board->hasVectorsWithPage(*page(2, 1)));
  EXPECT_THAT(board.names(), ElementsAre("page.plist", "snap_1_2.plist", "whole_1_2.plist"));
  EXPECT_FALSE(board->hasVectorsWithPage(*page(1, 1)));
  EXPECT_THAT(board.show(page(1, 1, 3)), IsEmpty());
}

TEST_F(ForgettingPages, ComparesBothNumbersOfTheCurrentPage) {
  board->clearPage(*page(2, 2));
  EXPECT_EQ(board.index().size(), 1U);
  board->clearPage(*page(1, 3));
  EXPECT_EQ(board.index().size(), 1U);
  EXPECT_TRUE(board->hasNewChange());
}

TEST_F(ForgettingPages, TakesEveryEqualKeyOffThePageCacheList) {
  board->setPageCacheList({"1_1", "x", "1_1", "1_11"});
  board->clearPage(*page(1, 1));
  EXPECT_THAT(board->pageCacheList(), ElementsAre("x", "1_11"));
}

TEST_F(ForgettingPages, DeletesTheFilesOnTheQueue) {
  QueueHold hold = board.holdQueue();
  board->clearPage(*page(1, 1));
  EXPECT_TRUE(std::filesystem::exists(board.at("whole_1_1.plist")));
  hold.letGo();
  EXPECT_FALSE(board.has("whole_1_1.plist"));
  EXPECT_FALSE(board.has("snap_1_1.plist"));
}

TEST_F(ForgettingPages, ThatWereNeverSeenDoesNothing) {
  board->clearPage(*page(9, 9));
  EXPECT_EQ(board.names().size(), 5U);
  EXPECT_EQ(board->snapVectorss().size(), 2U);
}

TEST_F(ForgettingPages, WorksWithoutACurrentPage) {
  board.reopen();
  board.save(line("x", 1, 2, 3));
  board->clearPage(*page(0, 0));
  board->clearPage(*page(1, 1));
  EXPECT_THAT(board.index(), ElementsAre("x: line x (1 2 3)"));
  EXPECT_THAT(board.names(), ElementsAre("page.plist", "snap_1_2.plist", "whole_1_2.plist"));
}

TEST_F(ForgettingPages, WorksWhileChangesAreIgnored) {
  board->setIgnoreChanges(true);
  board->clearPage(*page(1, 1));
  EXPECT_FALSE(board.has("snap_1_1.plist"));
}

// ---- The whole board

TEST_F(ForgettingPages, AllDeletesEverythingInTheFolderAndStartsAfresh) {
  board.plant("a stranger", "x");
  std::filesystem::create_directories(board.at("deep/er"));
  board.clock().advance(std::chrono::seconds(30));
  board->clear();
  EXPECT_TRUE(std::filesystem::is_directory(board->folder()));
  EXPECT_THAT(board.names(), IsEmpty());
  EXPECT_THAT(board->pageArray(), IsEmpty());
  EXPECT_EQ(board->latestPage(), nullptr);
  EXPECT_THAT(board->wholeVectorss(), IsEmpty());
  EXPECT_THAT(board->snapVectorss(), IsEmpty());
  EXPECT_THAT(board->pageCacheList(), IsEmpty());
  EXPECT_THAT(board.index(), IsEmpty());
  EXPECT_FALSE(board->hasNewChange());
  EXPECT_EQ(board->lastSaveDate(), board.clock().wallTime());
  EXPECT_FALSE(board->hasVectorsWithPage(*page(1, 1)));
  EXPECT_FALSE(board->hasVectorsWithPage(*page(1, 2)));
}

TEST_F(ForgettingPages, AllDeletesOnTheCallersThread) {
  const QueueHold hold = board.holdQueue();
  board->clear();
  EXPECT_TRUE(std::filesystem::is_empty(board->folder()));
}

TEST_F(ForgettingPages, AllKeepsTheCurrentPageItsFilesNamesAndTheRecording) {
  board->clear();
  EXPECT_EQ(board->currentPage()->pageInfo(), "1_2");
  EXPECT_EQ(board->wholeFile(), board.at("whole_1_2.plist"));
  EXPECT_EQ(board->snapFile(), board.at("snap_1_2.plist"));
  EXPECT_FALSE(board->ignoreChanges());
  board->setIgnoreChanges(true);
  board->clear();
  EXPECT_TRUE(board->ignoreChanges());
}

TEST_F(ForgettingPages, AllLetsTheNextVectorStartTheCurrentPageAnew) {
  board->clear();
  board.save(line("b", 4, 5, 6));
  board.write();
  EXPECT_THAT(board.wholeFile("1_2"), ElementsAre("line b (4 5 6)"));
  EXPECT_THAT(board.names(), ElementsAre("snap_1_2.plist", "whole_1_2.plist"));
}

TEST_F(ForgettingPages, AllStillTakesASwitchToTheCurrentPageForNone) {
  board->clear();
  EXPECT_THAT(board.show(page(1, 2, 9, 5)), IsEmpty());
  EXPECT_THAT(board->pageArray(), IsEmpty());
  board.show(page(1, 1, 10));
  EXPECT_THAT(board.pageFile(), ElementsAre("1_1"));
}

TEST_F(ForgettingPages, AllLetsAWriteThatWasQueuedEarlierBringItsFileBack) {
  board.save(line("b", 4, 5, 6));
  QueueHold hold = board.holdQueue();
  board.write();
  board->clear();
  EXPECT_FALSE(board->hasVectorsWithPage(*page(1, 2)));
  hold.letGo();
  EXPECT_THAT(board.names(), ElementsAre("snap_1_2.plist", "whole_1_2.plist"));
  EXPECT_THAT(board.snapFile("1_2"), ElementsAre("line b (1 2 3)(4 5 6)"));
  EXPECT_TRUE(board->hasVectorsWithPage(*page(1, 2)));
}

TEST_F(ForgettingPages, AllMakesTheFolderAgainWhenItWasGone) {
  std::filesystem::remove_all(board->folder());
  board->clear();
  EXPECT_TRUE(std::filesystem::is_directory(board->folder()));
}

TEST_F(ForgettingPages, AllDeletesTheFolderThatWasSet) {
  Board other;
  other.show(page(8, 8));
  other.settle();
  board->setFolder(other->folder());
  board->clear();
  EXPECT_THAT(other.names(), IsEmpty());
  EXPECT_EQ(board->pageFile(), other.at("page.plist"));
}

}  // namespace
}  // namespace VelWhiteBoard
