// Saving on a page that is not current has the same outcome as going there, saving, and coming
// back.
#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/records/model_mapping.h"
#include "VelWhiteBoard/storage/vector_storage.h"

#include "tests/support/random_arrivals.h"
#include "tests/support/storage_story.h"

namespace VelWhiteBoard {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SavingOnAnyPage : public ::testing::Test {
 protected:
  SavingOnAnyPage() { board.show(page(1, 1)); }

  const std::shared_ptr<VelWbVecSwitchPage> other = page(1, 2);
  Board board;
};

TEST_F(SavingOnAnyPage, EditsABoxInsteadOfAppendingToIt) {
  board->saveVectors({text("t", "one"), text("u", "other"), text("t", "two")}, other);
  EXPECT_THAT(board.snap("1_2"),
              ElementsAre("text u at 0 0 size 0 0 'other'", "text t at 0 0 size 0 0 'two'"));
  EXPECT_EQ(board.whole("1_2").size(), 3U);
}

TEST_F(SavingOnAnyPage, ContinuesEntriesOfEarlierCalls) {
  board->saveVectors({line("a", 1, 2, 3), text("t", "one")}, other);
  board->saveVectors({line("a", 4, 5, 6), text("t", "two")}, other);
  EXPECT_THAT(board.snap("1_2"),
              ElementsAre("line a (1 2 3)(4 5 6)", "text t at 0 0 size 0 0 'two'"));
}

TEST_F(SavingOnAnyPage, ContinuesEntriesThatAreRead) {
  board.show(other);
  board.save(text("t", "one"), text("u", "other"));
  board.show(page(1, 1));
  board.reopen();
  board->saveVectors({text("t", "two")}, other);
  EXPECT_THAT(board.snap("1_2"),
              ElementsAre("text u at 0 0 size 0 0 'other'", "text t at 0 0 size 0 0 'two'"));
}

TEST_F(SavingOnAnyPage, WritesThePageAtOnce) {
  board->saveVectors({line("a", 1, 2, 3)}, other);
  EXPECT_THAT(board.snapFile("1_2"), ElementsAre("line a (1 2 3)"));
  EXPECT_THAT(board.wholeFile("1_2"), ElementsAre("line a (1 2 3)"));
}

TEST_F(SavingOnAnyPage, LeavesTheCurrentPageAsItIs) {
  board.save(line("a", 1, 2, 3));
  board->setHasNewChange(false);
  board->saveVectors({line("a", 4, 5, 6), line("b", 1, 1, 1)}, other);
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 2 3)"));
  EXPECT_THAT(board.index(), ElementsAre("a: line a (1 2 3)"));
  EXPECT_FALSE(board->hasNewChange());
  EXPECT_EQ(board->currentPage()->pageInfo(), "1_1");
  EXPECT_THAT(tell(board->pageArray()), ElementsAre("1_1"));
}

TEST_F(SavingOnAnyPage, GivesAVectorWithoutIdentifierAGeneratedOne) {
  const auto stroke = line(std::nullopt, 1, 2, 3);
  board->saveVectors({stroke}, other);
  EXPECT_TRUE(stroke->ID.has_value());
}

TEST_F(SavingOnAnyPage, OnTheCurrentPageIsSavingEach) {
  board->saveVectors({text("t", "one"), text("u", "other"), text("t", "two")}, page(1, 1));
  EXPECT_EQ(board.snap().size(), 2U);
  EXPECT_TRUE(board->hasNewChange());
  EXPECT_FALSE(board.has("snap_1_1.plist")) << "there is no extra write";
}

TEST_F(SavingOnAnyPage, DoesNothingWhileChangesAreIgnored) {
  board->setIgnoreChanges(true);
  board->saveVectors({line("a", 1, 2, 3)}, other);
  EXPECT_THAT(board.snap("1_2"), IsEmpty());
  EXPECT_FALSE(board.has("snap_1_2.plist"));
}

TEST_F(SavingOnAnyPage, IgnoresNull) {
  board->saveVectors({nullptr, line("a", 1, 2, 3), nullptr}, other);
  board->saveVectors({line("b", 1, 2, 3)}, nullptr);
  EXPECT_THAT(board.snap("1_2"), ElementsAre("line a (1 2 3)"));
}

// ---- The entry with an identifier

TEST_F(SavingOnAnyPage, AnEntryOfTheCurrentPageIsFoundByItsIdentifier) {
  const auto stroke = line("a", 1, 2, 3);
  board.save(stroke, line("a", 4, 5, 6));
  board->saveVectors({line("b", 1, 2, 3)}, other);
  EXPECT_EQ(board->entryWithID("a"), stroke);
  EXPECT_EQ(board->entryWithID("b"), nullptr) << "it is on another page";
  EXPECT_EQ(board->entryWithID(""), nullptr);
  board.show(other);
  EXPECT_EQ(board->entryWithID("a"), nullptr);
  EXPECT_NE(board->entryWithID("b"), nullptr);
}

// ---- Random lessons

class SavingOnAnyPageAtRandom : public ::testing::TestWithParam<std::uint64_t> {};

TEST_P(SavingOnAnyPageAtRandom, IsGoingThereAndComingBack) {
  Chances chances(GetParam());
  Board stays;
  Board goes;
  stays.savesOddRecords();
  goes.savesOddRecords();
  stays.show(page(1, 9));
  goes.show(page(1, 9));
  std::size_t compared = 0;
  for (int step = 0; step < 400 && !HasFailure(); ++step) {
    const auto where = page(1, chances.oneIn(2) ? 1U : 2U, step);
    VectorList here;
    VectorList there;
    for (int i = chances.below(12); i >= 0; --i) {
      const Dictionary form = randomArrival(chances);
      here.push_back(modelWithDictionary<VelWbBaseVector>(form));
      there.push_back(modelWithDictionary<VelWbBaseVector>(form));
    }
    stays->saveVectors(here, where);
    goes->switchPage(where);
    for (const VectorPtr& vector : there) goes->saveVector(vector);
    goes->switchPage(page(1, 9, step));
    const std::string key = where->pageInfo();
    EXPECT_EQ(stays.snap(key), goes.snap(key)) << "in step " << step;
    EXPECT_EQ(stays.whole(key), goes.whole(key)) << "in step " << step;
    compared += stays.snap(key).size();
  }
  EXPECT_GT(compared, 1000U);
  for (const std::string key : {"1_1", "1_2"}) {
    EXPECT_EQ(stays.snapFile(key), goes.snapFile(key));
    EXPECT_EQ(stays.wholeFile(key), goes.wholeFile(key));
  }
}

INSTANTIATE_TEST_SUITE_P(Seed, SavingOnAnyPageAtRandom, ::testing::Values(1, 2, 3, 4, 5, 6));

}  // namespace
}  // namespace VelWhiteBoard
