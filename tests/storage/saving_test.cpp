// How a saved vector changes the current page: continuations, boxes, commands, transient vectors.
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/services/vector_manager.h"
#include "VelWhiteBoard/storage/vector_storage.h"
#include "VelWhiteBoard/vectors/diagrams.h"
#include "VelWhiteBoard/vectors/media_lists.h"

#include "tests/support/storage_story.h"

namespace VelWhiteBoard {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SavingVectors : public ::testing::Test {
 protected:
  SavingVectors() { board.show(page(1, 1)); }

  Board board;
};

// ---- Accepting a vector

TEST_F(SavingVectors, WhileChangesAreIgnoredTouchesNeitherListsNorVector) {
  board->setIgnoreChanges(true);
  const auto stroke = line(std::nullopt, 1, 2, 3);
  board.save(stroke);
  EXPECT_THAT(board.snap(), IsEmpty());
  EXPECT_THAT(board.whole(), IsEmpty());
  EXPECT_FALSE(board->hasNewChange());
  EXPECT_EQ(stroke->ID, std::nullopt);
  EXPECT_EQ(stroke->path, std::nullopt);
}

TEST_F(SavingVectors, IgnoresANullVector) {
  board.save(cursor());
  board->setHasNewChange(false);
  board.save(VectorPtr());
  EXPECT_THAT(board.snap(), ElementsAre("cursor cursor at 0 0 size 0 0 ''"));
  EXPECT_EQ(board.whole().size(), 1U);
  EXPECT_FALSE(board->hasNewChange());
}

TEST_F(SavingVectors, GivesAVectorWithoutIdentifierAGeneratedOne) {
  VelWbVectorManager::shareManager().init().setUserID("u");
  VelWbVectorManager::shareManager().setCreateTs(1'700'000'000.0 - 12.345);
  const auto stroke = line(std::nullopt, 1, 2, 3);
  board.save(stroke);
  EXPECT_EQ(stroke->ID, "u_1234");
  EXPECT_THAT(board.index(), ElementsAre("u_1234: line u_1234 (1 2 3)"));
}

TEST_F(SavingVectors, FoldsTwoPiecesWithoutIdentifierIntoOneWhenTheyShareAHundredth) {
  board.save(line(std::nullopt, 1, 2, 3), line(std::nullopt, 4, 5, 6));
  EXPECT_EQ(board.snap().size(), 1U);
  board.clock().advance(std::chrono::seconds(1));
  board.save(line(std::nullopt, 7, 8, 9));
  EXPECT_EQ(board.snap().size(), 2U);
}

TEST_F(SavingVectors, GivesCommandsAndTransientVectorsIdentifiersToo) {
  const auto remove = removal("x");
  remove->ID = std::nullopt;
  const auto pointer = cursor(std::nullopt);
  board.save(remove, pointer);
  EXPECT_TRUE(remove->ID.has_value());
  EXPECT_TRUE(pointer->ID.has_value());
}

TEST_F(SavingVectors, FindsAnEntryUnderTheIdentifierThatItWasGivenLater) {
  // Appended to a page that is not current, a vector stays without identifier; saved there again,
  // it gets one where it stands, too.
  const auto stroke = line(std::nullopt, 1, 2, 3);
  const auto elsewhere = line(std::nullopt, 1, 2, 3);
  board.append(page(1, 2), stroke, line("b", 1, 2, 3));
  board.append(page(1, 3), elsewhere, line("b", 1, 2, 3));
  board.show(page(1, 2, 2));
  board.save(stroke);
  EXPECT_THAT(board.snapVectors(), ElementsAre(stroke, board.snapVectors()[1], stroke));
  board.save(removal(stroke->ID), elsewhere);
  EXPECT_THAT(board.snap(), ElementsAre("line b", tell(*elsewhere)));
  board.append(page(1, 3), line(elsewhere->ID, 4, 5, 6), removal("b"));
  EXPECT_THAT(board.snapVectors("1_3"), ElementsAre(elsewhere));
  EXPECT_EQ(elsewhere->path, (Path{{1, 2, 3}, {4, 5, 6}}));
}

TEST_F(SavingVectors, TakesTheEmptyStringForAnIdentifier) {
  board.save(line("", 1, 2, 3), line("", 4, 5, 6));
  EXPECT_THAT(board.snap(), ElementsAre("line  (1 2 3)(4 5 6)"));
  EXPECT_THAT(board.index(), ElementsAre(": line  (1 2 3)(4 5 6)"));
}

TEST_F(SavingVectors, SetsTheNewChange) {
  EXPECT_FALSE(board->hasNewChange());
  board.save(line("a", 1, 2, 3));
  EXPECT_TRUE(board->hasNewChange());
}

TEST_F(SavingVectors, FilesThemUnderTheEmptyKeyBeforeTheFirstPage) {
  const Board fresh;
  fresh->saveVector(line("a", 1, 2, 3));
  EXPECT_THAT(fresh.snap(""), ElementsAre("line a (1 2 3)"));
  EXPECT_THAT(fresh.whole(""), ElementsAre("line a (1 2 3)"));
  EXPECT_THAT(fresh.index(), ElementsAre("a: line a (1 2 3)"));
}

TEST_F(SavingVectors, AsksForATimedSave) {
  board.clock().advance(std::chrono::milliseconds(20'000));
  board.save(line("a", 1, 2, 3));
  EXPECT_FALSE(board.has("snap_1_1.plist"));
  board.clock().advance(std::chrono::milliseconds(1));
  board.save(line("a", 4, 5, 6));
  EXPECT_THAT(board.snapFile("1_1"), ElementsAre("line a (1 2 3)(4 5 6)"));
  EXPECT_THAT(board.wholeFile("1_1"), ElementsAre("line a (1 2 3)(4 5 6)", "line a"));
}

TEST_F(SavingVectors, KeepsTheVeryObjects) {
  const auto stroke = line("a", 1, 2, 3);
  const auto words = text("t", "hello");
  board.save(stroke, words);
  EXPECT_THAT(board.snapVectors(), ElementsAre(stroke, words));
  EXPECT_THAT(board.wholeVectors(), ElementsAre(stroke, words));
  EXPECT_EQ(board->snapQuery().at("a"), stroke);
}

// ---- Strokes

TEST_F(SavingVectors, FoldsTwoPiecesOfAStrokeIntoTheFirst) {
  board.save(line("a", 1, 2, 3), line("a", 4, 5, 6));
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 2 3)(4 5 6)"));
  EXPECT_EQ(board.whole().size(), 2U);
}

TEST_F(SavingVectors, LetsTheFirstPieceGrowInTheWholeListToo) {
  const auto first = line("a", 1, 2, 3);
  board.save(first, line("b", 0, 0, 1), line("a", 4, 5, 6));
  EXPECT_EQ(board.wholeVectors().front(), first);
  EXPECT_EQ(board.snapVectors().front(), first);
  EXPECT_THAT(board.whole(), ElementsAre("line a (1 2 3)(4 5 6)", "line b (0 0 1)", "line a"));
  board.save(line("a", 7, 8, 9));
  EXPECT_EQ(board.whole().front(), "line a (1 2 3)(4 5 6)(7 8 9)");
}

TEST_F(SavingVectors, KeepsTheOrderOfStrokesThatGrowInTurns) {
  board.save(line("a", 1, 1, 1), line("b", 2, 2, 2), line("a", 3, 3, 3), line("b", 4, 4, 4));
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 1 1)(3 3 3)", "line b (2 2 2)(4 4 4)"));
}

TEST_F(SavingVectors, GivesALineWithoutPathOneOfItsOwnPosition) {
  const auto stroke = line("a", 10, 20, 5);
  board.save(stroke);
  EXPECT_EQ(stroke->path, (Path{{10, 20, 5}}));
}

TEST_F(SavingVectors, LeavesTheFirstPathOfALineAsItCameEvenWhenItIsEmpty) {
  const auto full = lineWith("a", Path{{1, 2}, {3}});
  const auto empty = lineWith("b", Path{});
  board.save(full, empty);
  EXPECT_EQ(full->path, (Path{{1, 2}, {3}}));
  EXPECT_EQ(empty->path, Path{});
}

TEST_F(SavingVectors, LeavesTheLaterPiecesWithoutPath) {
  const auto later = line("a", 4, 5, 6);
  board.save(line("a", 1, 2, 3), later);
  EXPECT_EQ(later->path, std::nullopt);
}

TEST_F(SavingVectors, LeavesABoxWithoutPath) {
  const auto square = box("b", 1, 2, 3, 4);
  board.save(square);
  EXPECT_EQ(square->path, std::nullopt);
}

TEST_F(SavingVectors, AddsNothingForAPieceThatArrivesTwice) {
  board.save(line("a", 1, 2, 3), line("a", 4, 5, 6), line("a", 4, 5, 6));
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 2 3)(4 5 6)"));
  EXPECT_EQ(board.whole().size(), 3U);
}

TEST_F(SavingVectors, TakesTheSameObjectTwice) {
  const auto stroke = line("a", 1, 2, 3);
  const auto words = text("t", "hello");
  board.save(stroke, stroke, words, words, stroke, words);
  EXPECT_THAT(board.snapVectors(), ElementsAre(stroke, words));
  EXPECT_EQ(stroke->path, (Path{{1, 2, 3}}));
  EXPECT_EQ(board.wholeVectors().size(), 6U);
}

TEST_F(SavingVectors, DropsAPositionedVectorOfAnotherTypeUnderAStrokesIdentifier) {
  auto marker = line("a", 4, 5, 6);
  marker->type = "markerPen";
  board.save(line("a", 1, 2, 3), marker, text("a", "t"), box("a", 1, 1, 1, 1));
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 2 3)"));
  EXPECT_EQ(board.whole().size(), 4U);
}

TEST_F(SavingVectors, DropsAPointWithoutClassOfItsOwnUnlessTypeAndIdentifierMatch) {
  auto point = VelWbVecPoint::initWithType("line");
  point->ID = "a";
  point->x = 4;
  point->y = 5;
  point->ts = 6;
  board.save(line("a", 1, 2, 3), point);
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 2 3)(4 5 6)"));
}

TEST_F(SavingVectors, LetsAStrokeStandTwiceWhenAVectorWithoutPositionHasItsIdentifier) {
  const auto stroke = line("a", 1, 2, 3);
  board.save(stroke, offset("a", 7));
  EXPECT_THAT(board.snapVectors(), ElementsAre(stroke, stroke));
  EXPECT_EQ(board->snapQuery().at("a"), stroke);
  EXPECT_THAT(board.whole(), ElementsAre("line a (1 2 3)", "offset a by 7"));
}

TEST_F(SavingVectors, LetsAStrokeThatStandsTwiceGrowInBothPlaces) {
  board.save(line("a", 1, 2, 3), offset("a", 7), line("a", 4, 5, 6));
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 2 3)(4 5 6)", "line a (1 2 3)(4 5 6)"));
  board.write();
  EXPECT_THAT(board.snapFile("1_1"), ElementsAre("line a (1 2 3)(4 5 6)", "line a (1 2 3)(4 5 6)"));
}

TEST_F(SavingVectors, StartsAnotherEntryWhenTheIndexWasEmptied) {
  board.save(line("a", 1, 2, 3));
  board->setSnapQuery({});
  board.save(line("a", 4, 5, 6), line("a", 7, 8, 9));
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 2 3)", "line a (4 5 6)(7 8 9)"));
}

// ---- Boxes and others

TEST_F(SavingVectors, MergesATextIntoTheLastEntry) {
  const auto words = text("t", "one", 1);
  board.save(words, text("t", "two", 2));
  EXPECT_THAT(board.snapVectors(), ElementsAre(words));
  EXPECT_EQ(words->text, "two");
  EXPECT_EQ(words->ts, 2);
}

TEST_F(SavingVectors, MergesATextThatIsNotLastAndMovesItToTheEnd) {
  board.save(text("t", "one"), line("a", 1, 2, 3), text("u", "u"), text("t", "two"));
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 2 3)", "text u at 0 0 size 0 0 'u'",
                                        "text t at 0 0 size 0 0 'two'"));
  EXPECT_EQ(board.whole().size(), 4U);
}

TEST_F(SavingVectors, MergesInsteadOfAppendingSoThatABoxGetsNoPath) {
  board.save(box("b", 1, 2, 3, 4));
  auto update = box("b", -10, 2, 7, 8);
  update->path = Path{{1, 2, 3}};
  board.save(update);
  EXPECT_THAT(board.snap(), ElementsAre("box b at 1 2 size 7 8"));
}

TEST_F(SavingVectors, DropsABoxOfAnotherTypeUnderABoxesIdentifierButMovesTheBoxToTheEnd) {
  board.save(text("t", "one"), line("a", 1, 2, 3), image("t", "u"));
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 2 3)", "text t at 0 0 size 0 0 'one'"));
  EXPECT_EQ(board.whole().back(), "image t at 0 0 size 0 0 'u'");
}

TEST_F(SavingVectors, KeepsTheLastEntryForAnythingElseUnderItsIdentifier) {
  const auto move = offset("o", 1);
  board.save(move, offset("o", 2), text("o", "t"), line("o", 1, 2, 3), bare("micPhone", "o"));
  EXPECT_THAT(board.snapVectors(), ElementsAre(move));
  EXPECT_EQ(move->value, 1);
  EXPECT_EQ(board.whole().size(), 5U);
}

TEST_F(SavingVectors, KeepsABoxAtTheEndAsItIsWhenAStrokeHasItsIdentifier) {
  board.save(text("t", "one"), line("t", 1, 2, 3));
  EXPECT_THAT(board.snap(), ElementsAre("text t at 0 0 size 0 0 'one'"));
  EXPECT_THAT(board.index(), ElementsAre("t: text t at 0 0 size 0 0 'one'"));
}

TEST_F(SavingVectors, LetsABoxStandTwiceWhenAVectorThatIsNoBoxHasItsIdentifier) {
  const auto words = text("t", "one");
  const auto stroke = line("a", 1, 2, 3);
  board.save(words, stroke, line("t", 4, 5, 6));
  EXPECT_THAT(board.snapVectors(), ElementsAre(words, stroke, words));
}

TEST_F(SavingVectors, LetsAnEarlierOffsetStandTwiceWhenItsSuccessorArrives) {
  const auto first = offset("o", 1);
  const auto stroke = line("a", 1, 2, 3);
  board.save(first, stroke, offset("o", 2));
  EXPECT_THAT(board.snapVectors(), ElementsAre(first, stroke, first));
  EXPECT_THAT(board.whole(), ElementsAre("offset o by 1", "line a (1 2 3)", "offset o by 2"));
  board.save(offset("o", 3));
  EXPECT_THAT(board.snapVectors(), ElementsAre(first, stroke, first)) << "it is the last one now";
}

TEST_F(SavingVectors, TreatsAMediaListLikeAnyVectorThatIsNoBox) {
  auto first = VelWbVecMediaList::initWithType("mediaList");
  first->ID = "m";
  auto second = VelWbVecMediaList::initWithType("mediaList");
  second->ID = "m";
  second->list.emplace();
  board.save(first, line("a", 1, 2, 3), second);
  EXPECT_THAT(board.snap(), ElementsAre("mediaList m", "line a (1 2 3)", "mediaList m"));
  EXPECT_EQ(board.snapVectors().back(), first);
  EXPECT_EQ(first->list, std::nullopt);
}

TEST_F(SavingVectors, TakesOutEveryEntryEqualToTheBoxThatIsMerged) {
  // Two equal entries come about when a page file holds them.
  const auto one = text("t", "one");
  const auto same = text("t", "one");
  const auto other = text("t", "other");
  board->setSnapVectorss({{"1_1", {one, other, same, line("a", 1, 2, 3)}}});
  board->setSnapQuery({{"t", one}});
  board.save(text("t", "two"));
  EXPECT_THAT(board.snap(), ElementsAre("text t at 0 0 size 0 0 'other'", "line a",
                                        "text t at 0 0 size 0 0 'two'"));
  EXPECT_EQ(board.snapVectors().back(), one);
}

TEST_F(SavingVectors, EditsTheLastEntryRatherThanTheIndexedOneOfTheSameIdentifier) {
  const auto indexed = text("t", "indexed");
  const auto last = text("t", "last");
  board->setSnapVectorss({{"1_1", {indexed, last}}});
  board->setSnapQuery({{"t", indexed}});
  board.save(text("t", "new"));
  EXPECT_THAT(board.snapVectors(), ElementsAre(indexed, last));
  EXPECT_EQ(last->text, "new");
  EXPECT_EQ(indexed->text, "indexed");
  EXPECT_EQ(board->snapQuery().at("t"), last);
}

TEST_F(SavingVectors, TreatsUnknownAndMissingTypesLikeAnyOther) {
  board.save(bare("instruction", "i"), bare(std::nullopt, "n"), bare("", "e"));
  EXPECT_THAT(board.snap(), ElementsAre("instruction i", "typeless n", " e"));
  EXPECT_EQ(board.index().size(), 3U);
}

TEST_F(SavingVectors, KeepsASwitchPageVectorLikeDrawnContent) {
  const auto visit = page(9, 9);
  visit->ID = "p";
  board.save(visit);
  EXPECT_THAT(board.snapVectors(), ElementsAre(visit));
  EXPECT_EQ(board->currentPage()->pageInfo(), "1_1");
}

}  // namespace
}  // namespace VelWhiteBoard
