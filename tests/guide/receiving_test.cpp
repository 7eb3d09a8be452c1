// What docs/client.md tells about the order of vectors and the page that they belong to.
#include <VelWhiteBoard/VelWhiteBoard.h>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/storage_story.h"

namespace VelWhiteBoard {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// [snippet: receive]
/// What goes over the network. A vector carries no page, so the message names it.
struct Message {
  std::string page;    // the sender's page: VelWbVecSwitchPage::pageInfo()
  std::string vector;  // modelToJSONString(*vector)
};

/// Files what the sequencer has sent to everybody, the author of the vector included.
void receive(VWBVectorStorage& board, const Message& message) {
  const VectorPtr vector = modelWithJSON<VelWbBaseVector>(message.vector);
  if (!vector) return;  // not the text of a JSON object
  if (const auto page = recordPointerCast<VelWbVecSwitchPage>(vector)) {
    board.switchPage(page);  // or keep it, if this participant reads elsewhere
    return;
  }
  const auto page = VelWbVecSwitchPage::pageFromInfo(message.page);
  if (page && vector->ID) board.saveVectors({vector}, page);
}
// [end]

// [snippet: own-ink]
/// Strokes that were sent and have not come back whole. The view leaves out the page's entries that
/// `holds` names, and draws these strokes on top.
class OwnInk {
 public:
  /// Before a piece is sent. Keeps a copy.
  void sent(const VelWbVecLine& piece) {
    std::shared_ptr<VelWbVecLine>& stroke = strokes_[piece.ID.value()];
    if (stroke) {
      stroke->append(piece);
    } else {
      stroke = std::make_shared<VelWbVecLine>(piece);
    }
  }
  /// After a vector has been received and filed.
  void received(const VelWbBaseVector& vector) {
    const auto* piece = recordCast<const VelWbVecLine>(&vector);
    if (piece != nullptr && piece->end && piece->ID) strokes_.erase(*piece->ID);
  }
  /// When the connection was lost. What the sequencer has taken comes with what was missed.
  void forget() { strokes_.clear(); }

  bool holds(const std::string& ID) const { return strokes_.contains(ID); }
  const std::map<std::string, std::shared_ptr<VelWbVecLine>>& strokes() const { return strokes_; }

 private:
  std::map<std::string, std::shared_ptr<VelWbVecLine>> strokes_;
};
// [end]

std::shared_ptr<VelWbVecSwitchPage> first() { return page(7, 1, 1); }
std::shared_ptr<VelWbVecSwitchPage> second() { return page(7, 2, 2); }

std::string contents(const Board& board, const VelWbVecSwitchPage& page) {
  return modelToJSONString(board->snapWithPage(page));
}

/// The very vector that another participant decodes from the text.
VectorPtr sent(const VectorPtr& vector) {
  return modelWithJSON<VelWbBaseVector>(modelToJSONString(*vector));
}

/// Strokes, boxes that are moved and resized, a cursor, a removal, a late piece.
std::vector<VectorPtr> lessonPart() {
  const auto drag = camera("c");
  return {line("s", 0.1, 0.1, 1),
          box("b", 0.1, 0.1, 0.2, 0.2),
          line("t", 0.2, 0.2, 2),
          line("s", 0.3, 0.1, 3),
          box("b", 0.2, 0.3, 0.4, 0.1),
          cursor(),
          text("w", "words", 4),
          text("w", "other", 5),
          removal("t"),
          line("t", 0.4, 0.4, 6),
          drag,
          image("i", "a.png"),
          box("b", 0.3, 0.3, 0.1, 1),
          line("s", 0.5, 0.1, 7)};
}

TEST(AGuidedClient, EndsWithTheSamePageAsTheOthersWhateverPageItIsOn) {
  Board onThePage;
  Board elsewhere;
  onThePage->switchPage(first());
  elsewhere->switchPage(first());
  elsewhere->switchPage(second());
  for (const VectorPtr& vector : lessonPart()) {
    if (vector->type == "remove") vector->ID = "r";
    const Message message{first()->pageInfo(), modelToJSONString(*vector)};
    receive(*onThePage, message);
    receive(*elsewhere, message);
    EXPECT_EQ(contents(onThePage, *first()), contents(elsewhere, *first()));
  }
  EXPECT_NE(contents(onThePage, *first()), "[]");
  EXPECT_EQ(contents(elsewhere, *second()), "[]");
  onThePage->saveFile(true);
  EXPECT_EQ(onThePage.wholeFile("7_1"), elsewhere.wholeFile("7_1"));
  EXPECT_EQ(onThePage.snapFile("7_1"), elsewhere.snapFile("7_1"));
}

TEST(AGuidedClient, FollowsAPageSwitchAndPassesOverWhatIsNoMessage) {
  Board board;
  receive(*board, {"", modelToJSONString(*second())});
  EXPECT_EQ(board->currentPage()->pageInfo(), "7_2");
  receive(*board, {"7_2", "no object"});
  receive(*board, {"no page", modelToJSONString(*text("t", "words"))});
  receive(*board, {"7_2", modelToJSONString(*text(std::nullopt, "no identifier"))});
  EXPECT_THAT(board.snap(), IsEmpty());
  receive(*board, {"7_2", modelToJSONString(*text("t", "words"))});
  EXPECT_EQ(board.snap().size(), 1U);
}

TEST(TwoWhoSaveTheirOwnVectorsAtOnce, StackThemInAnotherOrder) {
  Board one;
  Board other;
  one->switchPage(first());
  other->switchPage(first());
  one.save(line("a", 0, 0, 1), sent(line("b", 0, 0, 1)));
  other.save(line("b", 0, 0, 1), sent(line("a", 0, 0, 1)));
  EXPECT_THAT(one.snap(), ElementsAre("line a (0 0 1)", "line b (0 0 1)"));
  EXPECT_THAT(other.snap(), ElementsAre("line b (0 0 1)", "line a (0 0 1)"));
}

TEST(TwoWhoSaveTheirOwnVectorsAtOnce, DisagreeWhereABoxIsThatBothHaveMoved) {
  Board one;
  Board other;
  for (Board* each : {&one, &other}) {
    (*each)->switchPage(first());
    each->save(box("b", 0, 0, 0.1, 0.1));
  }
  const auto left = box("b", -0.4, 0, 0.1, 0.1);
  const auto right = box("b", 0.4, 0, 0.1, 0.1);
  one.save(left, sent(right));
  other.save(right, sent(left));
  const auto xOn = [](const Board& board) {
    return recordPointerCast<VelWbVecSquare>(board->entryWithID("b"))->x;
  };
  EXPECT_EQ(xOn(one), 0.4);
  EXPECT_EQ(xOn(other), -0.4);
}

TEST(OwnInk, IsTheStrokeThatComesBack) {
  Board board;
  board->switchPage(first());
  OwnInk ink;
  std::vector<Message> underWay;
  for (int i = 0; i < 5; ++i) {
    const auto piece = line("s", 0.1 * i, 0.1, 1 + i);
    piece->end = i == 4;
    ink.sent(*piece);
    underWay.push_back({"7_1", modelToJSONString(*piece)});
  }
  const auto shown = ink.strokes().at("s");
  for (const Message& message : underWay) {
    EXPECT_TRUE(ink.holds("s"));
    receive(*board, message);
    ink.received(*modelWithJSON<VelWbBaseVector>(message.vector));
  }
  EXPECT_FALSE(ink.holds("s"));
  EXPECT_EQ(*board->entryWithID("s"), *shown);
  ink.sent(*line("t", 0, 0, 9));
  ink.forget();
  EXPECT_THAT(ink.strokes(), IsEmpty());
}

TEST(VectorsForAnotherPage, ThatAreAppendedDoNotResizeABox) {
  Board saving;
  Board appending;
  Board onThePage;
  onThePage->switchPage(first());
  const VectorList edits = {box("b", 0, 0, 0.1, 0.1), box("b", 0.2, 0, 0.3, 0.3)};
  for (const VectorPtr& vector : edits) {
    onThePage.save(sent(vector));
    saving->saveVectors({sent(vector)}, first());
    appending->appendVectors({sent(vector)}, first());
  }
  EXPECT_EQ(contents(saving, *first()), contents(onThePage, *first()));
  EXPECT_NE(contents(appending, *first()), contents(onThePage, *first()));
  EXPECT_EQ(recordPointerCast<VelWbVecSquare>(appending->snapWithPage(*first())[0])->w, 0.1);
}

TEST(APieceThatArrivesAfterARemove, BeginsTheStrokeAnewOnEveryBoard) {
  Board board;
  board->switchPage(first());
  board.save(line("s", 0, 0, 1), line("s", 1, 1, 2), removal("s"), line("s", 2, 2, 3));
  EXPECT_THAT(board.snap(), ElementsAre("line s (2 2 3)"));
}

TEST(ALog, HoldsAFirstPieceThatHasGrown) {
  Board board;
  board->switchPage(first());
  board.save(line("s", 0, 0, 1), line("s", 1, 1, 2));
  EXPECT_THAT(board.whole(), ElementsAre("line s (0 0 1)(1 1 2)", "line s"));
}

TEST(TheFactorysCameraVector, LosesItsAddressOnTheWay) {
  auto capture = recordPointerCast<VelWbVecFile>(
      VWBToolManager::genVectorWithType(VelWBVectorTypeCamera, "c"));
  ASSERT_NE(capture, nullptr);
  capture->url = "a.png";
  EXPECT_EQ(modelToJSONString(*sent(capture)).find("a.png"), std::string::npos);
  Board board;
  board->switchPage(first());
  board.save(sent(capture));
  EXPECT_EQ(board.snap().size(), 1U);
  board.save(line("s", 0, 0, 1));
  EXPECT_THAT(board.snap(), ElementsAre("line s (0 0 1)"));
}

TEST(AnUndeletableImage, IsRemovedByARemoveAllTheSame) {
  Board board;
  board->switchPage(first());
  const auto picture = image("i", "a.png");
  picture->undeletable = true;
  board.save(picture, removal("i"));
  EXPECT_THAT(board.snap(), IsEmpty());
}

}  // namespace
}  // namespace VelWhiteBoard
