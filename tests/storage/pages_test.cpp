// Switching pages and asking for their present state.
#include <filesystem>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/disk_file_system.h"
#include "VelWhiteBoard/storage/vector_storage.h"

#include "tests/support/faulty_calls.h"
#include "tests/support/storage_story.h"

namespace VelWhiteBoard {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// ---- The page that becomes current

TEST(SwitchingPages, MakesACopyOfTheRecordCurrentAndRecordsTheRecordItself) {
  Board board;
  const auto record = page(12, 3, 1.5, 7);
  record->ID = "p";
  record->url = "address";
  record->totalPage = 9;
  record->imageMode = true;
  record->w = 2;
  record->h = 3;
  board.show(record);
  EXPECT_NE(board->currentPage(), record);
  EXPECT_TRUE(board->currentPage()->isEqual(*record));
  EXPECT_THAT(board->pageArray(), ElementsAre(record));
  EXPECT_EQ(board->latestPage(), record);
  record->curPage = 4;
  EXPECT_EQ(board->currentPage()->curPage, 3U);
}

TEST(SwitchingPages, NamesTheFilesOfThePage) {
  Board board;
  board.show(page(12, 3));
  EXPECT_EQ(board->wholeFile(), board->folder() + "/whole_12_3.plist");
  EXPECT_EQ(board->snapFile(), board->folder() + "/snap_12_3.plist");
}

TEST(SwitchingPages, WritesThePageFileOnlyAndNoEmptyPageFiles) {
  Board board;
  board.show(page(1, 1, 1));
  board.show(page(1, 2, 2));
  EXPECT_THAT(board.names(), ElementsAre("page.plist"));
  EXPECT_THAT(board->pageCacheList(), IsEmpty());
}

TEST(SwitchingPages, WritesThePagesOldestFirst) {
  Board board;
  board.show(page(1, 3, 1));
  board.show(page(1, 1, 2));
  board.show(page(-1, 18446744073709551615U, 3));
  board.show(page(1, 3, 4));
  EXPECT_THAT(board.pageFile(), ElementsAre("1_3", "1_1", "-1_18446744073709551615", "1_3"));
  EXPECT_THAT(tell(board->pageArray()),
              ElementsAre("1_3", "1_1", "-1_18446744073709551615", "1_3"));
}

TEST(SwitchingPages, WritesEveryFieldOfTheRecord) {
  Board board;
  const auto record = page(-12, 3, 1.5, -7);
  record->ID = "p";
  record->url = "address";
  record->totalPage = 18446744073709551615U;
  record->imageMode = true;
  record->w = 0.1;
  record->h = -3;
  board.show(record);
  board.settle();
  board.reopen();
  ASSERT_EQ(board->pageArray().size(), 1U);
  EXPECT_TRUE(board->pageArray().front()->isEqual(*record));
}

TEST(SwitchingPages, ReadsWhereThePageFileIsOnlyWhenItIsWritten) {
  Board board;
  {
    const QueueHold hold = board.holdQueue();
    board.show(page(1, 1));
    board->setPageFile(board.at("snap_elsewhere.plist"));
  }
  EXPECT_FALSE(board.has("page.plist"));
  EXPECT_TRUE(board.has("snap_elsewhere.plist"));
}

TEST(SwitchingPages, GoesThroughTheManyOfALesson) {
  Board board;
  Tale visited;
  for (std::uint64_t i = 0; i < 300; ++i) {
    board.show(page(1, i % 7, static_cast<double>(i)));
    visited.push_back("1_" + std::to_string(i % 7));
  }
  EXPECT_EQ(tell(board->pageArray()), visited);
  EXPECT_EQ(board.pageFile(), visited);
}

TEST(SwitchingPages, IgnoresANullPage) {
  Board board;
  board.show(page(1, 1, 1));
  board.save(line("a", 1, 2, 3));
  EXPECT_THAT(board.show(nullptr), IsEmpty());
  EXPECT_EQ(board->currentPage()->pageInfo(), "1_1");
  EXPECT_TRUE(board->hasNewChange());
  EXPECT_EQ(board->pageArray().size(), 1U);
  EXPECT_FALSE(board.has("snap_1_1.plist"));
}

// ---- The lists of the page

TEST(SwitchingPages, SavesThePageThatIsLeft) {
  Board board;
  board.show(page(1, 1, 1));
  board.save(line("a", 1, 2, 3));
  board.clock().advance(std::chrono::seconds(3));
  board.show(page(1, 2, 2));
  EXPECT_THAT(board.wholeFile("1_1"), ElementsAre("line a (1 2 3)"));
  EXPECT_THAT(board.snapFile("1_1"), ElementsAre("line a (1 2 3)"));
  EXPECT_FALSE(board->hasNewChange());
  EXPECT_EQ(board->lastSaveDate(), board.clock().wallTime());
}

TEST(SwitchingPages, DoesNotSaveAPageThatDidNotChange) {
  Board board;
  board.show(page(1, 1, 1));
  board.save(line("a", 1, 2, 3));
  board.show(page(1, 2, 2));
  board.settle();
  std::filesystem::remove(board.at("snap_1_1.plist"));
  board.show(page(1, 1, 3));
  board.show(page(1, 2, 4));
  EXPECT_FALSE(board.has("snap_1_1.plist"));
}

TEST(SwitchingPages, ReturnsTheSnapListFromTheCache) {
  Board board;
  board.show(page(1, 1, 1));
  const auto stroke = line("a", 1, 2, 3);
  board.save(stroke);
  EXPECT_THAT(board.show(page(1, 2, 2)), IsEmpty());
  EXPECT_THAT(board.index(), IsEmpty());
  EXPECT_THAT(board->switchPage(page(1, 1, 3)), ElementsAre(stroke));
  EXPECT_EQ(board->snapQuery().at("a"), stroke);
}

TEST(SwitchingPages, ReturnsTheSnapListFromTheFileAndIndexesIt) {
  Board board;
  board.show(page(1, 1, 1));
  board.save(line("a", 1, 2, 3), text("t", "x"), line("a", 4, 5, 6));
  board.write();
  board.settle();
  board.reopen();
  EXPECT_THAT(board.show(page(1, 1, 2)),
              ElementsAre("line a (1 2 3)(4 5 6)", "text t at 0 0 size 0 0 'x'"));
  EXPECT_THAT(board.index(),
              ElementsAre("a: line a (1 2 3)(4 5 6)", "t: text t at 0 0 size 0 0 'x'"));
  EXPECT_EQ(board->snapQuery().at("a"), board.snapVectors().front()) << "the same object";
  EXPECT_EQ(board.whole().size(), 3U);
}

TEST(SwitchingPages, GoesOnWithAStrokeThatWasReadFromAFile) {
  Board board;
  board.show(page(1, 1, 1));
  board.save(line("a", 1, 2, 3));
  board.write();
  board.settle();
  board.reopen();
  board.show(page(1, 1, 2));
  board.save(line("a", 4, 5, 6));
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 2 3)(4 5 6)"));
  // The log was read apart from the snap list, so its first piece stands for itself.
  EXPECT_THAT(board.whole(), ElementsAre("line a (1 2 3)", "line a"));
}

TEST(SwitchingPages, LoadsOnlyTheListThatIsNotCached) {
  Board board;
  board.show(page(1, 1, 1));
  board.save(line("a", 1, 2, 3));
  board.write();
  board.settle();
  board.reopen();
  board->setSnapVectorss({{"1_1", {text("t", "cached")}}});
  EXPECT_THAT(board.show(page(1, 1, 2)), ElementsAre("text t at 0 0 size 0 0 'cached'"));
  EXPECT_THAT(board.whole(), ElementsAre("line a (1 2 3)"));
}

TEST(SwitchingPages, DoesWithoutACachedListThatGoesWhileTheOtherIsRead) {
  FaultyCalls calls;
  DiskFileSystem disk(calls);
  const ScopedFileSystem scope(disk);
  Board board;
  board->setSnapVectorss({{"1_1", {line("a", 1, 2, 3)}}});
  calls.before(Call::kOpen, 1, [&] { board->setSnapVectorss({}); });
  EXPECT_THAT(board.show(page(1, 1)), IsEmpty());
  board.save(line("b", 1, 2, 3));
  EXPECT_THAT(board.snap(), ElementsAre("line b (1 2 3)"));
  EXPECT_THAT(board.whole(), ElementsAre("line b (1 2 3)"));
}

TEST(SwitchingPages, IndexesTheLaterOfTwoEntriesAndNoneWithoutIdentifier) {
  Board board;
  const auto early = text("t", "early");
  const auto late = text("t", "late");
  board->setSnapVectorss({{"1_1", {early, text(std::nullopt, "n"), late, cursor("c")}}});
  EXPECT_EQ(board.show(page(1, 1)).size(), 4U);
  EXPECT_THAT(board.index(),
              ElementsAre("c: cursor c at 0 0 size 0 0 ''", "t: text t at 0 0 size 0 0 'late'"));
  EXPECT_EQ(board->snapQuery().at("t"), late);
}

TEST(SwitchingPages, ReturnsAListThatLaterVectorsDoNotLengthen) {
  Board board;
  board->setSnapVectorss({{"1_1", {line("a", 1, 2, 3)}}});
  const VectorList drawn = board->switchPage(page(1, 1));
  board.save(line("b", 1, 2, 3), removal("a"));
  EXPECT_EQ(drawn.size(), 1U);
}

// ---- A switch that is none

TEST(SwitchingToTheCurrentPage, ReturnsNothingAndOnlySavesIt) {
  Board board;
  board.show(page(1, 1, 1, 5));
  board.save(line("a", 1, 2, 3));
  EXPECT_THAT(board.show(page(1, 1, 2, 5)), IsEmpty());
  EXPECT_THAT(tell(board->pageArray()), ElementsAre("1_1"));
  EXPECT_EQ(board->latestPage()->ts, 1);
  EXPECT_EQ(board->currentPage()->ts, 1);
  EXPECT_TRUE(board->hasNewChange());
  EXPECT_THAT(board.snapFile("1_1"), ElementsAre("line a (1 2 3)"));
  EXPECT_THAT(board.pageFile(), ElementsAre("1_1"));
  EXPECT_THAT(board.index(), ElementsAre("a: line a (1 2 3)"));
}

TEST(SwitchingToTheCurrentPage, WithoutAChangeWritesNothing) {
  Board board;
  board.show(page(1, 1, 1));
  board.settle();
  std::filesystem::remove(board.at("page.plist"));
  board.show(page(1, 1, 2));
  EXPECT_THAT(board.names(), IsEmpty());
}

TEST(SwitchingToTheCurrentPage, WithAnotherResourceIsASwitch) {
  Board board;
  board.show(page(1, 1, 1, 5));
  board.save(line("a", 1, 2, 3));
  EXPECT_THAT(board.show(page(1, 1, 2, 6)), ElementsAre("line a (1 2 3)"));
  EXPECT_EQ(board->currentPage()->resource, 6);
  EXPECT_THAT(tell(board->pageArray()), ElementsAre("1_1", "1_1"));
  EXPECT_FALSE(board->hasNewChange());
}

TEST(SwitchingToTheCurrentPage, IsTestedOnEachNumberAlone) {
  Board board;
  board.show(page(1, 1, 1));
  board.show(page(2, 1, 2));
  board.show(page(2, 2, 3));
  board.show(page(2, 2, 4));
  EXPECT_THAT(tell(board->pageArray()), ElementsAre("1_1", "2_1", "2_2"));
}

// ---- Recording

TEST(RecordingPages, ReplacesTheLastOneOfTheSameMillisecond) {
  Board board;
  board.show(page(1, 1, 1.0004));
  board.show(page(1, 2, 1.0006));
  EXPECT_THAT(tell(board->pageArray()), ElementsAre("1_2"));
  EXPECT_THAT(board.pageFile(), ElementsAre("1_2"));
}

TEST(RecordingPages, KeepsBothOfNeighbouringMilliseconds) {
  Board board;
  board.show(page(1, 1, 1.0004));
  board.show(page(1, 2, 1.0014));
  EXPECT_THAT(tell(board->pageArray()), ElementsAre("1_1", "1_2"));
}

TEST(RecordingPages, CutsMillisecondsTowardZeroOnBothSidesOfIt) {
  Board board;
  board.show(page(1, 1, -0.0009));
  board.show(page(1, 2, 0.0009));
  EXPECT_THAT(tell(board->pageArray()), ElementsAre("1_2"));
}

TEST(RecordingPages, ComparesWithTheLastRecordOnly) {
  Board board;
  board.show(page(1, 1, 5));
  board.show(page(1, 2, 6));
  board.show(page(1, 3, 5));
  board.show(page(1, 4, 5));
  EXPECT_THAT(tell(board->pageArray()), ElementsAre("1_1", "1_2", "1_4"));
}

TEST(RecordingPages, TakesTimesBeyondEveryIntegerForOneMillisecond) {
  Board board;
  board.savesOddRecords();  // of a time that no file can hold
  board.show(page(1, 1, 1e300));
  board.show(page(1, 2, std::numeric_limits<double>::infinity()));
  EXPECT_THAT(tell(board->pageArray()), ElementsAre("1_2"));
  board.show(page(1, 3, std::numeric_limits<double>::quiet_NaN()));
  board.show(page(1, 4, 0.0));
  EXPECT_THAT(tell(board->pageArray()), ElementsAre("1_2", "1_4"));
}

TEST(RecordingPages, ReplacesTheLastPageThatWasReadFromTheFile) {
  Board board;
  board.show(page(1, 1, 5));
  board.settle();
  board.reopen();
  board.show(page(1, 2, 5));
  EXPECT_THAT(tell(board->pageArray()), ElementsAre("1_2"));
  EXPECT_THAT(board.pageFile(), ElementsAre("1_2"));
}

TEST(RecordingPages, HappensNotWhileChangesAreIgnored) {
  Board board;
  board.show(page(1, 1, 1));
  board->setSnapVectorss({{"1_2", {line("a", 1, 2, 3)}}});
  board->setIgnoreChanges(true);
  EXPECT_THAT(board.show(page(1, 2, 2)), ElementsAre("line a"));
  EXPECT_EQ(board->currentPage()->pageInfo(), "1_2");
  EXPECT_EQ(board->snapFile(), board.at("snap_1_2.plist"));
  EXPECT_THAT(board.index(), ElementsAre("a: line a"));
  EXPECT_THAT(tell(board->pageArray()), ElementsAre("1_1"));
  EXPECT_THAT(board.pageFile(), ElementsAre("1_1"));
}

TEST(RecordingPages, StillSavesThePageThatIsLeftWhileChangesAreIgnored) {
  Board board;
  board.show(page(1, 1, 1));
  board.save(line("a", 1, 2, 3));
  board->setIgnoreChanges(true);
  board.show(page(1, 2, 2));
  EXPECT_THAT(board.snapFile("1_1"), ElementsAre("line a (1 2 3)"));
}

TEST(RecordingPages, GoesOnFromThePagesThatWereSet) {
  Board board;
  board->setPageArray({page(7, 7, 1)});
  board.show(page(1, 1, 2));
  EXPECT_THAT(tell(board->pageArray()), ElementsAre("7_7", "1_1"));
  EXPECT_THAT(board.pageFile(), ElementsAre("7_7", "1_1"));
}

// ---- Snapshots

TEST(AskingForASnapshot, GivesTheCachedListOfAnyPage) {
  Board board;
  board.show(page(1, 1, 1));
  const auto stroke = line("a", 1, 2, 3);
  board.save(stroke);
  board.show(page(1, 2, 2));
  EXPECT_THAT(board->snapWithPage(*page(1, 1, 0, 77)), ElementsAre(stroke));
  board.settle();
  std::filesystem::remove(board.at("snap_1_1.plist"));
  EXPECT_THAT(board->snapWithPage(*page(1, 1)), ElementsAre(stroke));
}

TEST(AskingForASnapshot, ReadsTheFileOfAPageThatIsNotCachedAndDoesNotCacheIt) {
  Board board;
  board.append(page(3, 3), text("t", "x"));
  board.settle();
  board.reopen();
  EXPECT_THAT(tell(board->snapWithPage(*page(3, 3))), ElementsAre("text t at 0 0 size 0 0 'x'"));
  EXPECT_THAT(board->snapVectorss(), IsEmpty());
  EXPECT_NE(board->snapWithPage(*page(3, 3)).front(), board->snapWithPage(*page(3, 3)).front());
}

TEST(AskingForASnapshot, OfAnUnknownPageGivesNothing) {
  const Board board;
  EXPECT_THAT(board->snapWithPage(*page(9, 9)), IsEmpty());
}

TEST(AskingForASnapshot, GivesAListThatLaterVectorsDoNotLengthen) {
  Board board;
  board.show(page(1, 1));
  board.save(line("a", 1, 2, 3));
  const VectorList snapshot = board->snapWithPage(*page(1, 1));
  board.save(line("b", 1, 2, 3), removal("a"));
  EXPECT_EQ(snapshot.size(), 1U);
}

}  // namespace
}  // namespace VelWhiteBoard
