// What waits to be sent, and which pieces of a stroke are sent as one.
#include "lesson/outbox.h"

#include <memory>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "lesson/message.h"

namespace whiteboard {
namespace {

using namespace VelWhiteBoard;

using LinePtr = std::shared_ptr<VelWbVecLine>;

/// A piece of the stroke "s" with positions at these times.
LinePtr piece(std::initializer_list<double> times) {
  auto made = VelWbVecLine::initWithType("line");
  made->ID = "s";
  made->path.emplace();
  for (const double time : times) {
    made->path->push_back({time / 100, -time / 100, time});
    made->x = time / 100;
    made->y = -time / 100;
    made->ts = time;
  }
  return made;
}

/// A piece of the stroke "s" that has only its own position.
LinePtr bare(double time) {
  LinePtr made = piece({time});
  made->path.reset();
  return made;
}

/// Takes everything out, as if it were sent.
std::vector<std::string> sendAll(Outbox& outbox) {
  std::vector<std::string> texts;
  while (const auto message = outbox.next()) {
    texts.push_back(message->text);
    outbox.remove(message->id);
  }
  return texts;
}

/// How many messages two pieces become.
std::size_t messagesOf(const LinePtr& first, const LinePtr& second) {
  Outbox outbox;
  outbox.add("1_1", first);
  outbox.add("1_1", second);
  return outbox.size();
}

/// What one who has `earlier`, or nothing, has of the stroke after these messages.
std::string folded(const LinePtr& earlier, const std::vector<std::string>& texts) {
  VectorPtr stroke;
  if (earlier) stroke = std::make_shared<VelWbVecLine>(*earlier);
  for (const std::string& text : texts) {
    VectorPtr vector = decodeMessage(text)->vector;
    if (stroke) {
      recordCast<VelWbVecLine>(*stroke)->append(*vector);
    } else {
      stroke = std::move(vector);
    }
  }
  return modelToJSONString(*stroke);
}

TEST(Outbox, GivesOutTheOldestUntilItIsRemoved) {
  Outbox outbox;
  auto first = VelWbVecText::initWithType("text");
  first->ID = "a";
  auto second = VelWbVecText::initWithType("text");
  second->ID = "b";
  EXPECT_TRUE(outbox.add("1_1", first));
  EXPECT_TRUE(outbox.add("1_2", second));
  const auto sent = outbox.next();
  ASSERT_TRUE(sent);
  EXPECT_EQ(sent->text, "1_1\n" + modelToJSONString(*first));
  EXPECT_EQ(outbox.next()->id, sent->id);
  EXPECT_TRUE(outbox.remove(sent->id));
  EXPECT_FALSE(outbox.remove(sent->id));
  EXPECT_NE(outbox.next()->id, sent->id);
  EXPECT_EQ(outbox.next()->text, "1_2\n" + modelToJSONString(*second));
  EXPECT_EQ(outbox.size(), 1U);
}

TEST(Outbox, RemovesAMessageFromTheMiddle) {
  Outbox outbox;
  for (const std::string ID : {"a", "b", "c"}) {
    auto text = VelWbVecText::initWithType("text");
    text->ID = ID;
    outbox.add("1_1", text);
  }
  const std::string middle = outbox.all()[1].id;
  EXPECT_TRUE(outbox.remove(middle));
  const auto texts = sendAll(outbox);
  ASSERT_EQ(texts.size(), 2U);
  EXPECT_EQ(decodeMessage(texts[0])->vector->ID, "a");
  EXPECT_EQ(decodeMessage(texts[1])->vector->ID, "c");
}

TEST(Outbox, RefusesWhatNobodyWouldAccept) {
  Outbox outbox;
  EXPECT_FALSE(outbox.add("1", piece({1})));
  EXPECT_FALSE(outbox.add("1_1", nullptr));
  EXPECT_FALSE(outbox.add("1_1", VelWbVecText::initWithType("text")));
  EXPECT_TRUE(outbox.empty());
  EXPECT_FALSE(outbox.next());
}

TEST(Outbox, GivesEachMessageAnIdentifierOfItsOwn) {
  std::set<std::string> all;
  for (int i = 0; i < 10; ++i) {
    Outbox outbox;
    outbox.add("1_1", piece({1}));
    outbox.add("1_2", piece({2}));
    for (const OutgoingMessage& message : outbox.all()) {
      EXPECT_TRUE(outbox.isOwn(message.id));
      EXPECT_FALSE(Outbox().isOwn(message.id));
      all.insert(message.id);
    }
  }
  EXPECT_EQ(all.size(), 20U);
}

TEST(Outbox, KeepsTheIdentifierOfARestoredMessage) {
  Outbox outbox;
  outbox.restore({"ab-1", encodeMessage("1_1", *piece({1}))});
  outbox.restore({"ab-1", encodeMessage("1_1", *piece({1}))});
  outbox.add("1_1", piece({2}));
  EXPECT_EQ(outbox.size(), 2U) << "a restored message may have been sent, so nothing is joined";
  EXPECT_EQ(outbox.next()->id, "ab-1");
  EXPECT_TRUE(outbox.hasRestored());
  EXPECT_TRUE(outbox.remove("ab-1"));
  EXPECT_FALSE(outbox.hasRestored());
  EXPECT_TRUE(outbox.isOwn("ab-1"));
  EXPECT_FALSE(outbox.isOwn("ab-2"));
}

TEST(JoinedPieces, AreOneMessage) {
  Outbox outbox;
  for (int i = 1; i <= 50; ++i) outbox.add("1_1", piece({i + 0.0, i + 0.5}));
  const auto texts = sendAll(outbox);
  ASSERT_EQ(texts.size(), 1U);
  const auto stroke = recordPointerCast<VelWbVecLine>(decodeMessage(texts[0])->vector);
  ASSERT_TRUE(stroke);
  EXPECT_EQ(stroke->path->size(), 100U);
  EXPECT_EQ(stroke->ts, 50.5);
}

TEST(JoinedPieces, MayBeTheFirstAndTheLast) {
  const LinePtr last = piece({3});
  last->end = true;
  EXPECT_EQ(messagesOf(piece({1}), last), 1U);
  EXPECT_EQ(messagesOf(bare(1), bare(2)), 1U);
  EXPECT_EQ(messagesOf(bare(1), piece({2, 3})), 1U);
  EXPECT_EQ(messagesOf(piece({1, 2}), bare(3)), 1U);
}

TEST(JoinedPieces, AreNotThoseThatMayHaveBeenSent) {
  Outbox outbox;
  outbox.add("1_1", piece({1}));
  const auto sent = outbox.next();
  outbox.add("1_1", piece({2}));
  outbox.add("1_1", piece({3}));
  EXPECT_EQ(outbox.size(), 2U);
  EXPECT_EQ(outbox.next()->text, sent->text);
}

TEST(JoinedPieces, AreNotThoseWithSomethingBetween) {
  Outbox outbox;
  outbox.add("1_1", piece({1}));
  const LinePtr other = piece({2});
  other->ID = "t";
  outbox.add("1_1", other);
  outbox.add("1_1", piece({3}));
  EXPECT_EQ(outbox.size(), 3U);
}

TEST(JoinedPieces, AreOfTheSameStrokeOnTheSamePage) {
  Outbox outbox;
  outbox.add("1_1", piece({1}));
  outbox.add("1_2", piece({2}));
  EXPECT_EQ(outbox.size(), 2U);
  const LinePtr eraser = piece({2});
  eraser->type = "eraser";
  EXPECT_EQ(messagesOf(piece({1}), eraser), 2U);
  const LinePtr other = piece({2});
  other->ID = "t";
  EXPECT_EQ(messagesOf(piece({1}), other), 2U);
}

TEST(JoinedPieces, AreNeitherMovesNorFollowAnEnd) {
  const LinePtr move = piece({2});
  move->offset.emplace();
  EXPECT_EQ(messagesOf(piece({1}), move), 2U);
  EXPECT_EQ(messagesOf(move, piece({3})), 2U);
  const LinePtr ended = piece({1});
  ended->end = true;
  EXPECT_EQ(messagesOf(ended, piece({2})), 2U);
}

TEST(JoinedPieces, HavePositionsThatEverybodyTakes) {
  const LinePtr untimed = piece({});
  untimed->path->push_back({0.5, 0.5});
  EXPECT_EQ(messagesOf(piece({1}), untimed), 2U);
  EXPECT_EQ(messagesOf(untimed, piece({1})), 2U);
  EXPECT_EQ(messagesOf(piece({}), piece({1})), 2U);
  EXPECT_EQ(messagesOf(piece({2}), piece({2})), 2U);
  EXPECT_EQ(messagesOf(piece({2}), bare(1)), 2U);
  EXPECT_EQ(messagesOf(bare(0), bare(1)), 2U);
  EXPECT_EQ(messagesOf(piece({3, 2}), piece({4})), 2U);
}

TEST(JoinedPieces, StayBelowTheLongestMessage) {
  Outbox outbox;
  for (int i = 1; i <= 10'000; ++i) outbox.add("1_1", piece({i + 0.123456789}));
  const auto texts = sendAll(outbox);
  EXPECT_EQ(texts.size(), 5U);
  for (const std::string& text : texts) EXPECT_LT(text.size(), kMessageSizeLimit / 2);
}

/// A piece as it should not be, but as it may come.
LinePtr oddPiece(std::mt19937& dice) {
  const auto roll = [&](int sides) { return std::uniform_int_distribution(0, sides - 1)(dice); };
  static constexpr double kTimes[] = {-2, -1, 0, 1, 2, 3, 4, 5, 6, 7};
  const auto time = [&] { return kTimes[roll(10)]; };
  LinePtr made = bare(time());
  made->pixel = roll(3) - 1;
  made->ps = roll(3) * 500;
  made->widthIndex = roll(4) - 2;
  if (roll(3) == 0) made->color = "#11223344";
  made->end = roll(6) == 0;
  if (roll(8) == 0) made->offset = Array{0.5, 0.5};
  if (roll(3) == 0) return made;
  made->path.emplace();
  for (int left = roll(4); left > 0; --left) {
    switch (roll(8)) {
      case 0:
        made->path->push_back({time(), time()});
        break;
      case 1:
        made->path->push_back({time()});
        break;
      default:
        made->path->push_back({time(), time(), time()});
    }
  }
  return made;
}

TEST(JoinedPieces, GiveEverybodyTheSameStrokeAsThePieces) {
  std::size_t joined = 0;
  for (unsigned seed = 1; seed <= 5000; ++seed) {
    std::mt19937 dice(seed);
    Outbox outbox;
    std::vector<std::string> pieces;
    const int count = 2 + static_cast<int>(seed % 4);
    for (int i = 0; i < count; ++i) {
      const LinePtr next = oddPiece(dice);
      pieces.push_back(encodeMessage("1_1", *next));
      outbox.add("1_1", next);
    }
    const auto messages = sendAll(outbox);
    joined += pieces.size() - messages.size();
    ASSERT_EQ(folded(nullptr, messages), folded(nullptr, pieces)) << "seed " << seed;
    for (int i = 0; i < 5; ++i) {
      const LinePtr earlier = oddPiece(dice);
      ASSERT_EQ(folded(earlier, messages), folded(earlier, pieces)) << "seed " << seed;
    }
  }
  EXPECT_GT(joined, 100U) << "the test has looked at joined pieces";
}

}  // namespace
}  // namespace whiteboard
