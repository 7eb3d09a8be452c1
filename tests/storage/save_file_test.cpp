// When the files of the current page are saved, and what a reload leaves.
#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/storage/vector_storage.h"

#include "tests/support/storage_story.h"
#include "tests/support/strict_reader.h"

namespace VelWhiteBoard {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// ---- The timed save

class SavingFiles : public ::testing::Test {
 protected:
  SavingFiles() {
    board.show(page(1, 1));
    board.save(line("a", 1, 2, 3));
    board.settle();
  }

  bool wrote() { return board.has("whole_1_1.plist") || board.has("snap_1_1.plist"); }

  Board board;
};

TEST_F(SavingFiles, DoesNothingTwentySecondsAfterTheLastSave) {
  const auto last = board->lastSaveDate();
  board.clock().advance(seconds(20));
  board->saveFile(false);
  EXPECT_FALSE(wrote());
  EXPECT_EQ(board->lastSaveDate(), last);
}

TEST_F(SavingFiles, WritesBothFilesAndMovesTheDateAMillisecondLater) {
  board.clock().advance(milliseconds(20'001));
  board->saveFile(false);
  EXPECT_THAT(board.names(), ElementsAre("page.plist", "snap_1_1.plist", "whole_1_1.plist"));
  EXPECT_EQ(board->lastSaveDate(), board.clock().wallTime());
}

TEST_F(SavingFiles, CountsFromTheDateThatWasSet) {
  board->setLastSaveDate(board.clock().wallTime() - seconds(20));
  board->saveFile(false);
  EXPECT_FALSE(wrote());
  board->setLastSaveDate(board.clock().wallTime() - seconds(20) -
                         std::chrono::system_clock::duration(1));
  board->saveFile(false);
  EXPECT_TRUE(wrote());
}

TEST_F(SavingFiles, TakesADateInTheFutureForRecent) {
  board->setLastSaveDate(board.clock().wallTime() + seconds(3600));
  board->saveFile(false);
  EXPECT_FALSE(wrote());
}

TEST_F(SavingFiles, TakesTheFirstOfAllDatesForLongAgo) {
  board->setLastSaveDate(std::chrono::system_clock::time_point::min());
  board->saveFile(false);
  EXPECT_TRUE(wrote());
}

TEST_F(SavingFiles, TakesTheLastOfAllDatesForRecent) {
  board->setLastSaveDate(std::chrono::system_clock::time_point::max());
  board->saveFile(false);
  EXPECT_FALSE(wrote());
}

TEST_F(SavingFiles, WritesAtOnceWhenForced) {
  board->saveFile(true);
  EXPECT_TRUE(wrote());
  EXPECT_EQ(board->lastSaveDate(), board.clock().wallTime());
}

TEST_F(SavingFiles, MovesTheDateWhenForced) {
  board.clock().advance(seconds(5));
  board->saveFile(true);
  EXPECT_EQ(board->lastSaveDate(), board.clock().wallTime());
}

TEST_F(SavingFiles, WritesNothingWithoutAChangeEvenWhenForced) {
  const auto last = board->lastSaveDate();
  board->setHasNewChange(false);
  board.clock().advance(seconds(100));
  board->saveFile(true);
  EXPECT_FALSE(wrote());
  EXPECT_EQ(board->lastSaveDate(), last);
}

TEST_F(SavingFiles, LeavesTheChangeStandingSoThatThePageIsWrittenAgain) {
  board->saveFile(true);
  EXPECT_TRUE(board->hasNewChange());
  board.settle();
  std::filesystem::remove(board.at("whole_1_1.plist"));
  board.clock().advance(milliseconds(20'001));
  board->saveFile(false);
  EXPECT_TRUE(board.has("whole_1_1.plist"));
}

TEST_F(SavingFiles, WritesEmptyListsForAPageWithoutCachedOnes) {
  board->reload();
  board->setHasNewChange(true);
  board->saveFile(true);
  EXPECT_THAT(board.names(), ElementsAre("page.plist", "snap_1_1.plist", "whole_1_1.plist"));
  EXPECT_THAT(board.wholeFile("1_1"), IsEmpty());
  EXPECT_THAT(board.snapFile("1_1"), IsEmpty());
}

TEST_F(SavingFiles, SkipsTheFileThatHasNoPath) {
  board->setWholeFile(std::nullopt);
  board->saveFile(true);
  EXPECT_THAT(board.names(), ElementsAre("page.plist", "snap_1_1.plist"));
}

TEST_F(SavingFiles, WritesToThePathsThatWereSet) {
  board->setWholeFile(board.at("whole_x.plist"));
  board->setSnapFile(board.at("snap_x.plist"));
  board->saveFile(true);
  EXPECT_THAT(board.names(), ElementsAre("page.plist", "snap_x.plist", "whole_x.plist"));
}

TEST_F(SavingFiles, UsesThePathsOfTheMomentWhenItWasQueued) {
  {
    const QueueHold hold = board.holdQueue();
    board->saveFile(true);
    board->setWholeFile(board.at("whole_x.plist"));
    board->setSnapFile(std::nullopt);
  }
  EXPECT_THAT(board.names(), ElementsAre("page.plist", "snap_1_1.plist", "whole_1_1.plist"));
}

TEST_F(SavingFiles, StillWritesWhatWasQueuedWhenTheStorageIsDropped) {
  const auto queue = board->saveQueue();
  const std::string file = board.at("whole_1_1.plist");
  {
    const QueueHold hold(queue);
    board->saveFile(true);
    board.drop();
  }
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(std::filesystem::exists(file));
  StrictReader::collectFile(file);
}

TEST(SavingFilesBeforeAnyPage, WritesNothingAndLeavesTheDate) {
  Board board;
  const auto last = board->lastSaveDate();
  board.clock().advance(seconds(100));
  board.save(line("a", 1, 2, 3));
  board.write();
  EXPECT_THAT(board.names(), IsEmpty());
  EXPECT_EQ(board->lastSaveDate(), last);
  EXPECT_TRUE(board->hasNewChange());
  EXPECT_THAT(board.snap(""), ElementsAre("line a (1 2 3)"));
}

TEST(SavingFilesBeforeAnyPage, NeverWritesWhatCameBeforeTheFirstPage) {
  Board board;
  board.save(line("a", 1, 2, 3));
  board.show(page(1, 1));
  board.save(line("b", 1, 2, 3));
  board.write();
  EXPECT_THAT(board.names(), ElementsAre("page.plist", "snap_1_1.plist", "whole_1_1.plist"));
  EXPECT_THAT(board.wholeFile("1_1"), ElementsAre("line b (1 2 3)"));
  EXPECT_THAT(board.whole(""), ElementsAre("line a (1 2 3)"));
}

// ---- Reloading

TEST(Reloading, BuildsTheCachesAnewAndKeepsThePage) {
  Board board;
  board.show(page(1, 1));
  board.save(line("a", 1, 2, 3));
  board.settle();
  board->setPageCacheList({"1_1"});
  board.clock().advance(seconds(7));
  board->reload();
  EXPECT_THAT(board->wholeVectorss(), IsEmpty());
  EXPECT_THAT(board->snapVectorss(), IsEmpty());
  EXPECT_THAT(board->pageCacheList(), IsEmpty());
  EXPECT_THAT(tell(board->pageArray()), ElementsAre("1_1"));
  EXPECT_FALSE(board->hasNewChange());
  EXPECT_EQ(board->lastSaveDate(), board.clock().wallTime());
  EXPECT_EQ(board->currentPage()->pageInfo(), "1_1");
  EXPECT_EQ(board->wholeFile(), board.at("whole_1_1.plist"));
  EXPECT_EQ(board->snapFile(), board.at("snap_1_1.plist"));
  EXPECT_THAT(board.index(), ElementsAre("a: line a (1 2 3)"));
  EXPECT_FALSE(board->ignoreChanges());
}

TEST(Reloading, CreatesTheFolderAgain) {
  Board board;
  std::filesystem::remove(board->folder());
  board->reload();
  EXPECT_TRUE(std::filesystem::is_directory(board->folder()));
}

TEST(Reloading, ReadsThePagesOfTheFolderThatWasSet) {
  Board board;
  Board other;
  other.show(page(5, 8));
  other.settle();
  board->setPageFile(board.at("elsewhere.plist"));
  board->setFolder(other->folder());
  board->reload();
  EXPECT_EQ(board->pageFile(), other.at("page.plist"));
  EXPECT_THAT(tell(board->pageArray()), ElementsAre("5_8"));
  board.show(page(1, 1));
  EXPECT_EQ(board->snapFile(), other.at("snap_1_1.plist"));
  board.settle();  // it writes into the other board's folder, which is looked at when that goes
}

}  // namespace
}  // namespace VelWhiteBoard
