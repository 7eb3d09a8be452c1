// Batches of vectors for any page.
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/disk_file_system.h"
#include "VelWhiteBoard/storage/vector_storage.h"

#include "tests/support/faulty_calls.h"
#include "tests/support/gate.h"
#include "tests/support/storage_story.h"

namespace VelWhiteBoard {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class AppendingVectors : public ::testing::Test {
 protected:
  AppendingVectors() { board.show(page(1, 1)); }

  const std::shared_ptr<VelWbVecSwitchPage> other = page(1, 2);
  Board board;
};

// ---- The current page

TEST_F(AppendingVectors, ToTheCurrentPageSavesEachWhateverTheResource) {
  board.append(page(1, 1, 0, 99), line("a", 1, 2, 3), text("t", "one"), line("b", 0, 0, 0),
               text("t", "two"), cursor(), line("a", 4, 5, 6), removal("b"));
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 2 3)(4 5 6)", "text t at 0 0 size 0 0 'two'"));
  EXPECT_EQ(board.index().size(), 2U);
  EXPECT_TRUE(board->hasNewChange());
  EXPECT_FALSE(board.has("snap_1_1.plist")) << "there is no extra write";
}

TEST_F(AppendingVectors, ToTheCurrentPageDropsThemWhileChangesAreIgnored) {
  board->setIgnoreChanges(true);
  board.append(page(1, 1), line("a", 1, 2, 3));
  EXPECT_THAT(board.snap(), IsEmpty());
}

TEST_F(AppendingVectors, ToAPageOfAnotherBoardWithTheSameNumberIsToAnotherPage) {
  board.append(page(2, 1), line("a", 1, 2, 3));
  EXPECT_THAT(board.snap(), IsEmpty());
  EXPECT_THAT(board.snap("2_1"), ElementsAre("line a"));
}

// ---- Another page

TEST_F(AppendingVectors, ToNoPageDoesNothing) {
  board.append(nullptr, line("a", 1, 2, 3));
  EXPECT_THAT(board.snap(), IsEmpty());
  EXPECT_EQ(board->snapVectorss().size(), 1U);
}

TEST_F(AppendingVectors, LeavesOutNulls) {
  board->appendVectors({nullptr, line("a", 1, 2, 3), nullptr}, other);
  board->appendVectors({nullptr, line("a", 1, 2, 3), nullptr}, page(1, 1));
  EXPECT_THAT(board.whole("1_2"), ElementsAre("line a"));
  EXPECT_THAT(board.whole("1_1"), ElementsAre("line a (1 2 3)"));
}

TEST_F(AppendingVectors, WritesThePageAtOnceAndLeavesTheChangeFlagTheDateAndTheIndex) {
  const auto date = board->lastSaveDate();
  board.clock().advance(std::chrono::seconds(5));
  board.append(other, line("a", 1, 2, 3), text("t", "x"));
  EXPECT_THAT(board.snapFile("1_2"), ElementsAre("line a", "text t at 0 0 size 0 0 'x'"));
  EXPECT_THAT(board.wholeFile("1_2"), ElementsAre("line a", "text t at 0 0 size 0 0 'x'"));
  EXPECT_FALSE(board->hasNewChange());
  EXPECT_EQ(board->lastSaveDate(), date);
  EXPECT_THAT(board.index(), IsEmpty());
  EXPECT_FALSE(board.has("snap_1_1.plist"));
}

TEST_F(AppendingVectors, LeavesASetChangeFlagSet) {
  board.save(line("x", 1, 2, 3));
  board.append(other, line("a", 1, 2, 3));
  EXPECT_TRUE(board->hasNewChange());
  EXPECT_THAT(board.index(), ElementsAre("x: line x (1 2 3)"));
}

TEST_F(AppendingVectors, WritesTheSnapFileFirst) {
  FaultyCalls calls;
  DiskFileSystem disk(calls);
  board.settle();
  const ScopedFileSystem scope(disk);
  bool hadWhole = true;
  bool hadSnap = false;
  calls.before(Call::kRename, 2, [&] {
    hadWhole = std::filesystem::exists(board.at("whole_1_2.plist"));
    hadSnap = std::filesystem::exists(board.at("snap_1_2.plist"));
  });
  board.append(other, line("a", 1, 2, 3));
  board.settle();
  EXPECT_TRUE(hadSnap);
  EXPECT_FALSE(hadWhole);
}

TEST_F(AppendingVectors, WorksWhileChangesAreIgnored) {
  board->setIgnoreChanges(true);
  board.append(other, line("a", 1, 2, 3));
  EXPECT_THAT(board.snapFile("1_2"), ElementsAre("line a"));
}

TEST_F(AppendingVectors, WorksBeforeAnyPageIsCurrent) {
  Board fresh;
  fresh.append(page(0, 0), line("a", 1, 2, 3));
  EXPECT_THAT(fresh.snapFile("0_0"), ElementsAre("line a"));
  EXPECT_THAT(fresh.snap("0_0"), ElementsAre("line a"));
  EXPECT_EQ(fresh->currentPage(), nullptr);
}

TEST_F(AppendingVectors, OfAnEmptyBatchCachesAndWritesEmptyLists) {
  board.append(other);
  EXPECT_THAT(board.wholeFile("1_2"), IsEmpty());
  EXPECT_THAT(board.snapFile("1_2"), IsEmpty());
  EXPECT_TRUE(board->hasVectorsWithPage(*other));
  EXPECT_EQ(board->wholeVectorss().count("1_2"), 1U);
}

TEST_F(AppendingVectors, GoesOnFromTheFilesOfAPageThatIsNotCached) {
  board.append(other, line("a", 1, 2, 3), text("t", "x"));
  board.settle();
  board.reopen();
  board.append(other, line("a", 4, 5, 6), line("b", 7, 8, 9));
  EXPECT_THAT(board.snap("1_2"),
              ElementsAre("line a (1 2 3)(4 5 6)", "text t at 0 0 size 0 0 'x'", "line b"));
  // Read from a file, the log's first piece is a record of its own and no longer the entry.
  EXPECT_THAT(board.wholeFile("1_2"),
              ElementsAre("line a", "text t at 0 0 size 0 0 'x'", "line a", "line b"));
}

TEST_F(AppendingVectors, GoesOnFromTheCacheRatherThanTheFiles) {
  board.append(other, line("a", 1, 2, 3));
  board.settle();
  std::filesystem::remove(board.at("snap_1_2.plist"));
  board.append(other, line("b", 1, 2, 3));
  EXPECT_THAT(board.snapFile("1_2"), ElementsAre("line a", "line b"));
}

TEST_F(AppendingVectors, KeepsWhatSomebodyElseAppendsWhileThePagesFilesAreRead) {
  board.append(other, line("old", 1, 2, 3));
  board.settle();
  board.reopen();
  FaultyCalls calls;
  DiskFileSystem disk(calls);
  const ScopedFileSystem scope(disk);
  calls.before(Call::kOpen, 1, [&] { board.append(other, line("theirs", 1, 2, 3)); });
  board.append(other, line("mine", 1, 2, 3));
  EXPECT_THAT(board.whole("1_2"), ElementsAre("line old", "line theirs", "line mine"));
  EXPECT_THAT(board.snapFile("1_2"), ElementsAre("line old", "line theirs", "line mine"));
}

TEST_F(AppendingVectors, SavesThemOnThePageThatBecomesCurrentWhileItsFilesAreRead) {
  board.append(other, line("old", 1, 2, 3));
  board.settle();
  board.reopen();
  FaultyCalls calls;
  DiskFileSystem disk(calls);
  const ScopedFileSystem scope(disk);
  calls.before(Call::kOpen, 1, [&] { board.show(other); });
  board.append(other, line("a", 1, 2, 3), line("a", 4, 5, 6));
  EXPECT_THAT(board.index(), ElementsAre("a: line a (1 2 3)(4 5 6)", "old: line old"));
  EXPECT_THAT(board.snap("1_2"), ElementsAre("line old", "line a (1 2 3)(4 5 6)"));
  EXPECT_TRUE(board->hasNewChange());
  board.settle();
}

TEST_F(AppendingVectors, CachesNothingBeforeItHoldsTheSemaphore) {
  board.settle();
  FaultyCalls calls;
  DiskFileSystem disk(calls);
  const ScopedFileSystem scope(disk);
  std::thread appending;
  {
    const SemaphoreHold hold(board->semphore());
    Gate hasRead;
    calls.before(Call::kOpen, 2, [&] { hasRead.open(); });
    appending = std::thread([&] { board.append(other, line("a", 1, 2, 3)); });
    hasRead.pass();
    EXPECT_FALSE(board->hasVectorsWithPage(*other));
    EXPECT_EQ(board->wholeVectorss().count("1_2"), 0U);
  }
  appending.join();
  EXPECT_THAT(board.whole("1_2"), ElementsAre("line a"));
  board.settle();
}

TEST_F(AppendingVectors, KeepsTheVeryObjects) {
  const auto stroke = line("a", 1, 2, 3);
  board.append(other, stroke);
  EXPECT_THAT(board.snapVectors("1_2"), ElementsAre(stroke));
  EXPECT_THAT(board.wholeVectors("1_2"), ElementsAre(stroke));
}

TEST_F(AppendingVectors, IsSeenByTheNextSwitchToThatPage) {
  board.append(other, line("a", 1, 2, 3));
  EXPECT_THAT(board.show(other), ElementsAre("line a"));
  EXPECT_THAT(board.index(), ElementsAre("a: line a"));
}

// ---- What a vector does to another page

TEST_F(AppendingVectors, FoldsALineIntoTheLastEntryOfItsIdentifier) {
  board.append(other, line("a", 1, 2, 3), line("b", 0, 0, 0), line("a", 4, 5, 6));
  EXPECT_THAT(board.snap("1_2"), ElementsAre("line a (1 2 3)(4 5 6)", "line b"));
  EXPECT_EQ(board.whole("1_2").size(), 3U);
}

TEST_F(AppendingVectors, FindsTheLastOfTwoEntriesOfOneIdentifier) {
  board->setSnapVectorss({{"1_2", {line("a", 0, 0, 0), line("a", 1, 1, 1), line("b", 2, 2, 2)}}});
  board.append(other, line("a", 4, 5, 6));
  EXPECT_THAT(board.snap("1_2"), ElementsAre("line a", "line a (1 1 1)(4 5 6)", "line b"));
}

TEST_F(AppendingVectors, GivesNoIdentifiersAndNoFirstPath) {
  const auto stroke = line(std::nullopt, 1, 2, 3);
  board.append(other, stroke, line(std::nullopt, 4, 5, 6));
  EXPECT_EQ(stroke->ID, std::nullopt);
  EXPECT_EQ(stroke->path, std::nullopt);
  EXPECT_THAT(board.snap("1_2"), ElementsAre("line nameless", "line nameless"));
}

TEST_F(AppendingVectors, DropsALineUnderTheIdentifierOfAnEntryOfAnotherKind) {
  board.append(other, offset("o", 1), text("t", "x"), line("o", 1, 2, 3), line("t", 1, 2, 3));
  EXPECT_THAT(board.snap("1_2"), ElementsAre("offset o by 1", "text t at 0 0 size 0 0 'x'"));
  EXPECT_EQ(board.whole("1_2").size(), 4U);
}

TEST_F(AppendingVectors, AppendsABoxInsteadOfMergingAndMovesItToTheEnd) {
  const auto square = box("b", 1, 2, 3, 4);
  auto update = box("b", 5, 6, 7, 8);
  update->ts = 9;
  board.append(other, square, line("a", 0, 0, 0), update);
  EXPECT_THAT(board.snap("1_2"), ElementsAre("line a", "box b at 5 6 size 3 4 (1 2 0)(5 6 9)"));
  EXPECT_EQ(board.snapVectors("1_2").back(), square);
}

TEST_F(AppendingVectors, MovesAPositionedEntryToTheEndEvenForABoxOfAnotherType) {
  board.append(other, text("t", "x"), line("a", 0, 0, 0), image("t", "u"));
  EXPECT_THAT(board.snap("1_2"), ElementsAre("line a", "text t at 0 0 size 0 0 'x'"));
  board.append(other, box("a", 1, 1, 1, 1));
  EXPECT_THAT(board.snap("1_2"), ElementsAre("text t at 0 0 size 0 0 'x'", "line a"));
}

TEST_F(AppendingVectors, TakesAMovedEntryOutAtItsPlaceOnly) {
  const auto one = text("t", "x");
  board->setSnapVectorss({{"1_2", {text("t", "x"), one, line("a", 0, 0, 0)}}});
  board.append(other, text("t", "y", 5));
  EXPECT_THAT(board.snap("1_2"), ElementsAre("text t at 0 0 size 0 0 'x'", "line a",
                                             "text t at 0 0 size 0 0 (0 0 0)(0 0 5) 'x'"));
  EXPECT_EQ(board.snapVectors("1_2").back(), one);
}

TEST_F(AppendingVectors, AddsAVectorWithoutPositionASecondTimeAsItself) {
  const auto first = offset("o", 1);
  const auto second = offset("o", 2);
  board.append(other, first, second);
  EXPECT_THAT(board.snapVectors("1_2"), ElementsAre(first, second));
}

TEST_F(AppendingVectors, AddsWhateverMeetsAnEntryWithoutPosition) {
  board.append(other, offset("o", 1), text("o", "x"), line("a", 0, 0, 0), offset("a", 2));
  EXPECT_THAT(board.snap("1_2"), ElementsAre("offset o by 1", "text o at 0 0 size 0 0 'x'",
                                             "line a", "offset a by 2"));
}

TEST_F(AppendingVectors, LeavesVectorsWithoutIdentifierToTheLog) {
  board.append(other, text(std::nullopt, "x"), offset(std::nullopt, 1));
  EXPECT_THAT(board.snap("1_2"), IsEmpty());
  EXPECT_EQ(board.whole("1_2").size(), 2U);
}

TEST_F(AppendingVectors, LeavesTransientVectorsToTheLogAndTheTailInPlace) {
  board->setSnapVectorss({{"1_2", {line("a", 0, 0, 0), cursor("c")}}});
  board.append(other, cursor("d"), camera("e"), magnifier("f"));
  EXPECT_THAT(board.snap("1_2"), ElementsAre("line a", "cursor c at 0 0 size 0 0 ''"));
  board.append(other, line("b", 1, 2, 3));
  EXPECT_THAT(board.snap("1_2"), ElementsAre("line a", "cursor c at 0 0 size 0 0 ''", "line b"));
  EXPECT_EQ(board.whole("1_2").size(), 4U);
}

TEST_F(AppendingVectors, RemovesTheFirstEntryOfTheIdentifierAndOnlyThat) {
  const auto same = text("t", "x");
  board->setSnapVectorss({{"1_2", {line("a", 0, 0, 0), text("t", "x"), same, same}}});
  board.append(other, removal("t"));
  EXPECT_THAT(board.snap("1_2"),
              ElementsAre("line a", "text t at 0 0 size 0 0 'x'", "text t at 0 0 size 0 0 'x'"));
  EXPECT_THAT(board.whole("1_2"), ElementsAre("remove remover of t"));
}

TEST_F(AppendingVectors, RemovesWithoutAskingTheIndexOfTheCurrentPage) {
  board.save(line("a", 1, 2, 3));
  board.append(other, line("a", 1, 2, 3), removal("a"));
  EXPECT_THAT(board.snap("1_2"), IsEmpty());
  EXPECT_THAT(board.index(), ElementsAre("a: line a (1 2 3)"));
}

TEST_F(AppendingVectors, RemovesNothingForATargetThatIsAbsentOrUnknown) {
  board.append(other, line(std::nullopt, 1, 2, 3), removal(std::nullopt), removal("x"),
               bare("remove", "r"));
  EXPECT_THAT(board.snap("1_2"), ElementsAre("line nameless"));
  EXPECT_EQ(board.whole("1_2").size(), 4U);
}

TEST_F(AppendingVectors, EmptiesTheSnapListForAClear) {
  board.append(other, line("a", 1, 2, 3), clearing(), line("b", 1, 2, 3));
  EXPECT_THAT(board.snap("1_2"), ElementsAre("line b"));
  EXPECT_THAT(board.whole("1_2"), ElementsAre("line a", "clear clearer", "line b"));
}

TEST_F(AppendingVectors, TakesALineByItsClassWhateverItsType) {
  board.savesOddRecords();
  auto odd = line("a", 4, 5, 6);
  odd->type = "clear";
  board.append(other, line("a", 1, 2, 3), odd);
  EXPECT_THAT(board.snap("1_2"), ElementsAre("line a")) << "of another type: nothing is folded in";
  auto newcomer = line("b", 4, 5, 6);
  newcomer->type = "cursor";
  board.append(other, newcomer);
  EXPECT_THAT(board.snap("1_2"), ElementsAre("line a", "cursor b"));
}

TEST_F(AppendingVectors, TakesTheSameObjectTwice) {
  const auto stroke = lineWith("a", Path{{1, 2, 3}});
  const auto square = box("b", 1, 2, 3, 4);
  board.append(other, stroke, stroke, square, square, square);
  EXPECT_THAT(board.snapVectors("1_2"), ElementsAre(stroke, square));
  EXPECT_EQ(stroke->path, (Path{{1, 2, 3}}));
}

// ---- Whether a page has vectors

TEST(HavingVectors, IsTrueForAPageWhoseListsAreCachedEvenWhenEmpty) {
  Board board;
  board.show(page(1, 1));
  EXPECT_TRUE(board->hasVectorsWithPage(*page(1, 1)));
  EXPECT_TRUE(board->hasVectorsWithPage(*page(1, 1, 0, 9)));
  EXPECT_FALSE(board->hasVectorsWithPage(*page(1, 2)));
}

TEST(HavingVectors, AsksTheCachedSnapListsNotTheWholeOnes) {
  const Board board;
  board->setWholeVectorss({{"1_1", {}}});
  EXPECT_FALSE(board->hasVectorsWithPage(*page(1, 1)));
  board->setSnapVectorss({{"1_1", {}}});
  EXPECT_TRUE(board->hasVectorsWithPage(*page(1, 1)));
}

TEST(HavingVectors, IsTrueForAPageOnThePageCacheList) {
  const Board board;
  board->setPageCacheList({"3_3", "1_1"});
  EXPECT_TRUE(board->hasVectorsWithPage(*page(1, 1)));
  EXPECT_FALSE(board->hasVectorsWithPage(*page(1, 11)));
}

TEST(HavingVectors, IsOtherwiseTrueExactlyWhenTheWholeFileExists) {
  Board board;
  board.plant("snap_1_1.plist", "");
  EXPECT_FALSE(board->hasVectorsWithPage(*page(1, 1)));
  board.plant("whole_1_1.plist", "not even readable");
  EXPECT_TRUE(board->hasVectorsWithPage(*page(1, 1)));
  std::filesystem::create_directory(board.at("whole_2_2.plist"));
  EXPECT_FALSE(board->hasVectorsWithPage(*page(2, 2))) << "a folder is no file";
}

}  // namespace
}  // namespace VelWhiteBoard
