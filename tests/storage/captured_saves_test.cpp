// What is queued is the state of that instant, however late it is written.
#include <chrono>
#include <filesystem>
#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/storage/vector_storage.h"

#include "tests/support/storage_story.h"

namespace VelWhiteBoard {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// A board on page 1_1 whose queue stands still: what a test does after `write` comes too late for
// the file.
class CapturedSaves : public ::testing::Test {
 protected:
  CapturedSaves() {
    board.show(page(1, 1, 1));
    board.settle();
    hold_ = std::make_unique<QueueHold>(board->saveQueue());
  }

  void letGo() { hold_->letGo(); }

  Board board;

 private:
  std::unique_ptr<QueueHold> hold_;
};

TEST_F(CapturedSaves, HoldAStrokeAsItWasBeforeItGrew) {
  board.save(line("a", 1, 2, 3));
  board.write();
  board.save(line("a", 4, 5, 6), line("a", 7, 8, 9));
  letGo();
  EXPECT_THAT(board.snapFile("1_1"), ElementsAre("line a (1 2 3)"));
  EXPECT_THAT(board.wholeFile("1_1"), ElementsAre("line a (1 2 3)"));
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 2 3)(4 5 6)(7 8 9)"));
}

TEST_F(CapturedSaves, HoldEveryFieldOfAStrokeThatGrew) {
  auto first = line("a", 1, 2, 3);
  first->offset = Array{1, 2};
  first->pixel = 5;
  board.save(first);
  const auto before = first->copyWithZone();
  board.write();
  auto update = line("a", 4, 5, 6);
  update->pixel = 50;
  update->ps = 7;
  update->widthIndex = 3;
  update->end = true;
  board.save(update);
  letGo();
  board.settle();
  const auto records = recordsOfFile(VelWbBaseVector::ownClass(), board.at("snap_1_1.plist"));
  ASSERT_EQ(records.size(), 1U);
  EXPECT_TRUE(records.front()->isEqual(*before)) << records.front()->description();
}

TEST_F(CapturedSaves, HoldABoxAsItWasBeforeItWasMergedAndMoved) {
  board.save(text("t", "one"), line("a", 1, 2, 3));
  board.write();
  board.save(text("t", "two"));
  letGo();
  EXPECT_THAT(board.snapFile("1_1"), ElementsAre("text t at 0 0 size 0 0 'one'", "line a (1 2 3)"));
  EXPECT_THAT(board.wholeFile("1_1"),
              ElementsAre("text t at 0 0 size 0 0 'one'", "line a (1 2 3)"));
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 2 3)", "text t at 0 0 size 0 0 'two'"));
}

TEST_F(CapturedSaves, HoldTheLastBoxAsItWasBeforeItWasMerged) {
  board.save(text("t", "one"));
  board.write();
  board.save(text("t", "two"));
  letGo();
  EXPECT_THAT(board.snapFile("1_1"), ElementsAre("text t at 0 0 size 0 0 'one'"));
}

TEST_F(CapturedSaves, HoldWhatWasRemovedLater) {
  board.save(line("a", 1, 2, 3), line("b", 1, 2, 3));
  board.write();
  board.save(removal("a"));
  letGo();
  EXPECT_THAT(board.snapFile("1_1"), ElementsAre("line a (1 2 3)", "line b (1 2 3)"));
  EXPECT_EQ(board.wholeFile("1_1").size(), 2U);
}

TEST_F(CapturedSaves, HoldThePageAsItWasBeforeAClear) {
  board.save(line("a", 1, 2, 3), cursor("c"));
  board.write();
  board.save(clearing(), line("a", 4, 5, 6));
  letGo();
  EXPECT_THAT(board.snapFile("1_1"), ElementsAre("line a (1 2 3)", "cursor c at 0 0 size 0 0 ''"));
  EXPECT_THAT(board.wholeFile("1_1"), ElementsAre("line a (1 2 3)", "cursor c at 0 0 size 0 0 ''"));
}

TEST_F(CapturedSaves, HoldThePageThatWasLeftWhileTheNextOneIsDrawnOn) {
  board.save(line("a", 1, 2, 3));
  board.show(page(1, 2, 2));
  board.save(line("a", 7, 8, 9));
  board.show(page(1, 1, 3));
  board.save(line("a", 4, 5, 6));
  letGo();
  EXPECT_THAT(board.snapFile("1_1"), ElementsAre("line a (1 2 3)"));
  EXPECT_THAT(board.snapFile("1_2"), ElementsAre("line a (7 8 9)"));
}

TEST_F(CapturedSaves, OfAnotherPageHoldItAsItWasBeforeMoreWasAppended) {
  // Without a disk that fails, only the newest of several saves can be told apart on the disk; so
  // the page is changed through a switch, which saves nothing of the page that becomes current.
  board.append(page(1, 2), box("b", 1, 2, 3, 4));
  board.show(page(1, 2, 2));
  board.save(box("b", 5, 6, 7, 8), line("a", 1, 2, 3));
  letGo();
  EXPECT_THAT(board.snapFile("1_2"), ElementsAre("box b at 1 2 size 3 4"));
  EXPECT_THAT(board.wholeFile("1_2"), ElementsAre("box b at 1 2 size 3 4"));
}

TEST_F(CapturedSaves, HoldAnEntryThatGrowsThroughAnAppendToAnotherPage) {
  // One object on two pages: what changes it on the one must not leak into a save of the other.
  const auto stroke = line("a", 1, 2, 3);
  board.save(stroke);
  board.write();
  board.append(page(1, 2), stroke, line("a", 4, 5, 6));
  letGo();
  EXPECT_THAT(board.snapFile("1_1"), ElementsAre("line a (1 2 3)"));
  EXPECT_THAT(board.snapFile("1_2"), ElementsAre("line a (1 2 3)(4 5 6)"));
}

TEST_F(CapturedSaves, HoldALineWithoutPathThatGetsOneOnThePageWhereItIsSavedNext) {
  const auto stroke = line("a", 1, 2, 3);
  board.append(page(1, 2), stroke);
  board.save(stroke);
  letGo();
  EXPECT_THAT(board.snapFile("1_2"), ElementsAre("line a"));
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 2 3)"));
}

TEST_F(CapturedSaves, HoldAVectorWithoutIdentifierThatGetsOneLater) {
  const auto stroke = line(std::nullopt, 1, 2, 3);
  board.append(page(1, 2), stroke);
  board.save(stroke);
  letGo();
  EXPECT_THAT(board.snapFile("1_2"), ElementsAre("line nameless"));
  EXPECT_TRUE(stroke->ID.has_value());
}

TEST_F(CapturedSaves, HoldTheListsThatWereReplacedThroughThePropertiesLater) {
  board.save(line("a", 1, 2, 3));
  board.write();
  board->setSnapVectorss({{"1_1", {line("b", 1, 2, 3)}}});
  board->setWholeVectorss({});
  letGo();
  EXPECT_THAT(board.snapFile("1_1"), ElementsAre("line a (1 2 3)"));
  EXPECT_THAT(board.wholeFile("1_1"), ElementsAre("line a (1 2 3)"));
}

TEST_F(CapturedSaves, ThatFollowEachOtherLeaveTheNewestOnDisk) {
  board.save(line("a", 1, 2, 3));
  board.write();
  board.save(line("a", 4, 5, 6));
  board.write();
  board.save(line("a", 7, 8, 9));
  board.write();
  board.save(line("a", 10, 11, 12));
  letGo();
  EXPECT_THAT(board.snapFile("1_1"), ElementsAre("line a (1 2 3)(4 5 6)(7 8 9)"));
  EXPECT_THAT(board.wholeFile("1_1"),
              ElementsAre("line a (1 2 3)(4 5 6)(7 8 9)", "line a", "line a"));
}

TEST_F(CapturedSaves, OfTwoPagesDoNotTakeEachOthersPlace) {
  board.append(page(1, 2), line("a", 1, 2, 3));
  board.append(page(1, 3), line("b", 1, 2, 3));
  board.append(page(1, 2), line("a", 4, 5, 6));
  letGo();
  EXPECT_THAT(board.snapFile("1_2"), ElementsAre("line a (1 2 3)(4 5 6)"));
  EXPECT_THAT(board.snapFile("1_3"), ElementsAre("line b"));
}

TEST_F(CapturedSaves, OfDifferentFilesOfOnePageAreAllWritten) {
  board.save(line("a", 1, 2, 3));
  board.write();
  board->setSnapFile(board.at("snap_x.plist"));
  board.save(line("a", 4, 5, 6));
  board.write();
  letGo();
  EXPECT_THAT(board.snapFile("1_1"), ElementsAre("line a (1 2 3)"));
  EXPECT_THAT(board.snapFile("x"), ElementsAre("line a (1 2 3)(4 5 6)"));
  EXPECT_EQ(board.wholeFile("1_1").size(), 2U);
}

TEST_F(CapturedSaves, OfThePageListHoldTheRecordsOfTheSwitches) {
  const auto record = page(1, 2, 2);
  board.show(record);
  record->curPage = 99;
  board->setPageArray({});
  letGo();
  EXPECT_THAT(board.pageFile(), ElementsAre("1_1", "1_2"));
}

TEST_F(CapturedSaves, OfThePageListHoldEveryRecordAsItIsAtTheNewestSwitch) {
  const auto first = page(1, 2, 2);
  board.show(first);
  first->totalPage = 77;
  board.show(page(1, 3, 3));
  letGo();
  board.settle();
  const auto records = recordsOfFile(VelWbVecSwitchPage::ownClass(), board.at("page.plist"));
  ASSERT_EQ(records.size(), 3U);
  EXPECT_EQ(static_cast<const VelWbVecSwitchPage&>(*records[1]).totalPage, 77U);
}

TEST_F(CapturedSaves, KeepTheirOrderWhenTheyShareOneOfTheirFiles) {
  const std::optional<std::string> own = board->wholeFile();
  for (const char* identifier : {"a", "b", "c"}) {
    board.save(line(identifier, 1, 2, 3));
    board.write();
  }
  board->setWholeFile(board.at("whole_other.plist"));
  board.save(line("d", 1, 2, 3));
  board.write();
  board->setWholeFile(own);
  board.save(line("e", 1, 2, 3));
  board.write();
  letGo();
  EXPECT_EQ(board.snapFile("1_1"), board.snap());
  EXPECT_EQ(board.wholeFile("1_1"), board.whole());
  EXPECT_EQ(board.wholeFile("other").size(), 4U);
}

TEST(CapturedSavesOfAnUnreadLog, NeverTakeItsVectorsForOnesThatHaveGone) {
  constexpr int kVectors = 20;
  Board board;
  board.show(page(1, 1));
  for (int i = 0; i < kVectors; ++i) board.save(line("old" + std::to_string(i), 1, 2, 3));
  board.write();
  board.settle();
  board.reopen();
  board.show(page(1, 1, 1));
  {
    const QueueHold hold = board.holdQueue();
    board.save(line("a", 1, 2, 3));
    board.show(page(1, 2, 2));
    // These change while the save of the first page waits, go, and leave their memory to the log.
    for (int i = 0; i < kVectors; ++i) board.save(line("new" + std::to_string(i), 1, 2, 3));
    board->clearPage(*page(1, 2));
    EXPECT_EQ(board.whole("1_1").size(), kVectors + 1U);
  }
  EXPECT_EQ(board.wholeFile("1_1"), board.whole("1_1"));
  EXPECT_EQ(board.wholeFile("1_1").front(), "line old0 (1 2 3)");
}

TEST_F(CapturedSaves, RunInTheOrderInWhichTheyWereQueued) {
  // save, forget, save: the last one wins, and so does a forgetting that comes last.
  board.save(line("a", 1, 2, 3));
  board.write();
  board->clearPage(*page(1, 1));
  board.save(line("b", 1, 2, 3));
  board.write();
  board.append(page(1, 2), line("c", 1, 2, 3));
  board->clearPage(*page(1, 2));
  letGo();
  EXPECT_THAT(board.snapFile("1_1"), ElementsAre("line b (1 2 3)"));
  EXPECT_THAT(board.wholeFile("1_1"), ElementsAre("line b (1 2 3)"));
  EXPECT_FALSE(board.has("whole_1_2.plist"));
  EXPECT_FALSE(board.has("snap_1_2.plist"));
}

TEST_F(CapturedSaves, AllReachTheDiskWhenTheStorageIsDropped) {
  const auto queue = board->saveQueue();
  const std::string folder = board->folder();
  for (std::uint64_t i = 2; i < 40; ++i) {
    board.save(line("a", static_cast<double>(i), 0, 1));
    board.show(page(1, i, static_cast<double>(i)));
  }
  board.append(page(7, 7), line("z", 1, 2, 3));
  board.drop();
  letGo();
  queue->waitUntilAllOperationsAreFinished();
  board.reopen();
  EXPECT_EQ(board->pageArray().size(), 39U);
  for (std::uint64_t i = 2; i < 40; ++i) {
    const std::string key = "1_" + std::to_string(i - 1);
    EXPECT_THAT(board.snapFile(key), ElementsAre("line a (" + std::to_string(i) + " 0 1)"));
  }
  EXPECT_THAT(board.snapFile("7_7"), ElementsAre("line z"));
}

}  // namespace
}  // namespace VelWhiteBoard
