// Saved vectors that never stay on a page: removes, clears, and what lives only at its end.
#include <optional>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/storage/vector_storage.h"

#include "tests/support/storage_story.h"

namespace VelWhiteBoard {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SavingCommands : public ::testing::Test {
 protected:
  SavingCommands() { board.show(page(1, 1)); }

  Board board;
};

TEST(IgnoringVectors, IsForTheFiveTransientTypesInExactSpelling) {
  const Board board;
  for (const char* type : {"cursor", "camera", "magnifier", "clear", "remove"}) {
    EXPECT_TRUE(board->ignoreVector(*bare(type, "x"))) << type;
  }
  for (const char* type : {"line", "eraser", "text", "offset", "switchPage", "Cursor", "cursor ",
                           "", "micPhone", "removes", "clea"}) {
    EXPECT_FALSE(board->ignoreVector(*bare(type, "x"))) << type;
  }
  EXPECT_FALSE(board->ignoreVector(*bare(std::nullopt, "x")));
}

// ---- Remove

TEST_F(SavingCommands, ARemoveTakesItsTargetOutOfTheSnapListAndTheIndex) {
  board.save(line("a", 1, 2, 3), line("b", 1, 2, 3), removal("a"));
  EXPECT_THAT(board.snap(), ElementsAre("line b (1 2 3)"));
  EXPECT_THAT(board.index(), ElementsAre("b: line b (1 2 3)"));
  EXPECT_THAT(board.whole(),
              ElementsAre("line a (1 2 3)", "line b (1 2 3)", "remove remover of a"));
  EXPECT_TRUE(board->hasNewChange());
}

TEST_F(SavingCommands, ARemoveOfAnUnknownIdentifierIsOnlyLogged) {
  board.save(line("a", 1, 2, 3), removal("b"), removal(std::nullopt), removal(""));
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 2 3)"));
  EXPECT_EQ(board.index().size(), 1U);
  EXPECT_EQ(board.whole().size(), 4U);
}

TEST_F(SavingCommands, ARemoveAsksTheIndexNotTheList) {
  board.save(line("a", 1, 2, 3));
  board->setSnapQuery({});
  board.save(removal("a"));
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 2 3)"));
}

TEST_F(SavingCommands, ARemoveDropsTheIndexEntryOfWhatIsNotInTheList) {
  board->setSnapQuery({{"a", line("a", 1, 2, 3)}});
  board.save(line("b", 1, 2, 3), removal("a"));
  EXPECT_THAT(board.index(), ElementsAre("b: line b (1 2 3)"));
  EXPECT_THAT(board.snap(), ElementsAre("line b (1 2 3)"));
}

TEST_F(SavingCommands, ARemoveTakesOutAllPlacesOfAnEntryThatStandsTwice) {
  board.save(line("a", 1, 2, 3), line("b", 1, 2, 3), offset("a", 1), removal("a"));
  EXPECT_THAT(board.snap(), ElementsAre("line b (1 2 3)"));
}

TEST_F(SavingCommands, ARemoveTakesOutEveryEqualEntryAndLeavesADifferentOne) {
  const auto different = text("t", "different");
  board->setSnapVectorss({{"1_1", {text("t", "x"), different, text("t", "x")}}});
  board->setSnapQuery({{"t", different}});
  board.save(removal("t"));
  EXPECT_THAT(board.snapVectors(), ElementsAre(different));
  EXPECT_THAT(board.index(), IsEmpty());
}

TEST_F(SavingCommands, ARemoveThatIsNoRemoveRecordIsOnlyLogged) {
  board.save(line("a", 1, 2, 3), bare("remove", "a"));
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 2 3)"));
  EXPECT_THAT(board.whole(), ElementsAre("line a (1 2 3)", "remove a"));
}

TEST_F(SavingCommands, ARemoveRecordOfAnotherTypeIsNoRemove) {
  auto record = removal("a");
  record->type = "gone";
  board.save(line("a", 1, 2, 3), record);
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 2 3)", "gone remover of a"));
}

TEST_F(SavingCommands, ARemoveWithTheIdentifierOfAnEntryDoesNotContinueIt) {
  auto remove = removal("b");
  remove->ID = "a";
  board.save(text("a", "x"), line("b", 1, 2, 3), remove);
  EXPECT_THAT(board.snap(), ElementsAre("text a at 0 0 size 0 0 'x'"));
}

TEST_F(SavingCommands, AfterARemoveAPieceStartsAnew) {
  board.save(line("a", 1, 2, 3), removal("a"), line("a", 4, 5, 6));
  EXPECT_THAT(board.snap(), ElementsAre("line a (4 5 6)"));
}

// ---- Clear

TEST_F(SavingCommands, AClearEmptiesTheSnapListAndTheIndexAndIsLogged) {
  board.save(line("a", 1, 2, 3), text("t", "x"), clearing());
  EXPECT_THAT(board.snap(), IsEmpty());
  EXPECT_THAT(board.index(), IsEmpty());
  EXPECT_THAT(board.whole(),
              ElementsAre("line a (1 2 3)", "text t at 0 0 size 0 0 'x'", "clear clearer"));
}

TEST_F(SavingCommands, AClearIsOneByItsTypeAndAsksNeitherResourceNorPage) {
  auto clear = clearing();
  clear->resource = 77;
  clear->clearPage = 99;
  board.save(line("a", 1, 2, 3), clear, line("b", 1, 2, 3));
  EXPECT_THAT(board.snap(), ElementsAre("line b (1 2 3)"));
  board.save(bare("clear", "c"));
  EXPECT_THAT(board.snap(), IsEmpty());
}

// ---- The transient tail

TEST_F(SavingCommands, ACursorStandsAtTheEndUntilTheNextVector) {
  board.save(line("a", 1, 2, 3), cursor("c"));
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 2 3)", "cursor c at 0 0 size 0 0 ''"));
  board.save(line("b", 1, 2, 3));
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 2 3)", "line b (1 2 3)"));
  EXPECT_EQ(board.whole().size(), 3U);
}

TEST_F(SavingCommands, ATransientVectorGetsNoPlaceInTheIndex) {
  board.save(cursor("c"), camera("d"), magnifier("e"));
  EXPECT_THAT(board.index(), IsEmpty());
}

TEST_F(SavingCommands, ATransientVectorTakesThePlaceOfTheOneBefore) {
  board.save(cursor("c"), cursor("c"));
  EXPECT_EQ(board.snap().size(), 1U);
  board.save(camera("d"));
  EXPECT_THAT(board.snap(), ElementsAre("camera d at 0 0 size 0 0"));
}

TEST_F(SavingCommands, ATransientVectorNeverContinuesAnEntry) {
  const auto words = text("t", "x");
  const auto pointer = cursor("t");
  board.save(words, pointer);
  EXPECT_THAT(board.snapVectors(), ElementsAre(words, pointer));
  EXPECT_EQ(board->snapQuery().at("t"), words);
}

TEST_F(SavingCommands, TheTailGoesEvenForAVectorThatOnlyContinues) {
  board.save(line("a", 1, 2, 3), cursor(), line("a", 4, 5, 6));
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 2 3)(4 5 6)"));
}

TEST_F(SavingCommands, TheTailGoesBeforeTheLastEntryIsLookedAt) {
  board.save(text("t", "one"), cursor(), text("t", "two"));
  EXPECT_THAT(board.snap(), ElementsAre("text t at 0 0 size 0 0 'two'"));
}

TEST_F(SavingCommands, TheTailGoesForARemoveOfNothing) {
  board.save(line("a", 1, 2, 3), cursor(), removal("nothing"));
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 2 3)"));
}

TEST_F(SavingCommands, OnlyOneTransientEntryGoesAtATime) {
  board->setSnapVectorss({{"1_1", {cursor("c"), cursor("d")}}});
  board.save(line("a", 1, 2, 3));
  EXPECT_THAT(board.snap(), ElementsAre("cursor c at 0 0 size 0 0 ''", "line a (1 2 3)"));
}

TEST_F(SavingCommands, TheTailGoesByItsTypeWhateverItsClass) {
  board->setSnapVectorss({{"1_1", {bare("remove", "r")}}});
  board.save(line("a", 1, 2, 3));
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 2 3)"));
}

// ---- Magnifiers

TEST_F(SavingCommands, ASecondMagnifierReplacesTheFirst) {
  board.save(line("a", 1, 2, 3), magnifier("m"), magnifier("n"));
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 2 3)", "magnifier n at 0 0 size 0 0"));
  EXPECT_EQ(board.whole().size(), 3U);
  board.save(line("b", 1, 2, 3));
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 2 3)", "line b (1 2 3)"));
}

TEST_F(SavingCommands, AMagnifierTakesOutTheFirstOneOfThePageWhereverItStands) {
  board->setSnapVectorss(
      {{"1_1", {line("a", 1, 2, 3), magnifier("m"), magnifier("n"), line("b", 1, 2, 3)}}});
  board.save(magnifier("o"));
  EXPECT_THAT(board.snap(), ElementsAre("line a", "magnifier n at 0 0 size 0 0", "line b",
                                        "magnifier o at 0 0 size 0 0"));
}

TEST(SavingAnEntryAgain, ThatIsNamedByItPutsItIntoTheIndexOnce) {
  Board board;
  board.show(page(1, 1));
  const auto glass = magnifier(std::nullopt);
  board->setSnapVectorss({{"1_1", {glass, cursor("c")}}});
  board.save(glass);
  ASSERT_TRUE(glass->ID);
  EXPECT_EQ(board.snap().size(), 1U);
  board.save(text(glass->ID, "note"));
  EXPECT_EQ(board.snap().size(), 1U);
  board.save(removal(glass->ID));
  EXPECT_EQ(board.snap().size(), 0U);
}

}  // namespace
}  // namespace VelWhiteBoard
