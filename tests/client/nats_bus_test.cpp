// Lessons on a real server.
#include "lesson/nats_bus.h"

#include <atomic>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "lesson/lesson_connection.h"
#include "tests/client/support/nats_server.h"
#include "tests/client/support/participant.h"

namespace whiteboard {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Kind = BusStatus::Kind;

std::vector<std::string> ownIDsOf(const Participant& participant) {
  std::vector<std::string> all;
  for (const Arrival& arrival : participant.arrivals()) {
    if (arrival.isOwn) all.push_back(arrival.vector->ID.value());
  }
  return all;
}

/// Sends any text to the lesson, as a program that knows nothing of vectors.
void sendRaw(const NatsServer& server, const std::string& id, const std::string& text) {
  LessonConnection connection(server.url(), "maths", "");
  connection.openStream();
  const SendResult result = connection.send({id, text});
  ASSERT_EQ(result.kind, SendResult::Kind::kSent) << result.problem;
}

TEST(NatsBus, BringsTheVectorsOfAllIntoOneOrder) {
  constexpr int kEach = 200;
  const NatsServer server;
  Participant one(server.url());
  Participant two(server.url());
  for (int i = 1; i <= kEach; ++i) {
    one.publish("one." + std::to_string(i));
    two.publish("two." + std::to_string(i));
  }
  ASSERT_TRUE(one.has(2 * kEach));
  ASSERT_TRUE(two.has(2 * kEach));
  EXPECT_EQ(one.IDs(), two.IDs());
  EXPECT_EQ(one.sequences(), two.sequences());
  EXPECT_EQ(one.sequences().front(), 1U);
  EXPECT_EQ(one.sequences().back(), 2U * kEach);
  EXPECT_EQ(ownIDsOf(one), numbered("one.", kEach));
  EXPECT_EQ(ownIDsOf(two), numbered("two.", kEach));
  EXPECT_EQ(one.arrivals().front().page, "1_1");
  EXPECT_EQ(one.arrivals().front().time, two.arrivals().front().time);
}

TEST(NatsBus, GivesEverythingToOneWhoJoinsLate) {
  const NatsServer server;
  Participant early(server.url());
  for (const std::string& ID : numbered("a", 300)) early.publish(ID);
  ASSERT_TRUE(early.has(300));

  Participant late(server.url());
  ASSERT_TRUE(late.isLive());
  ASSERT_TRUE(late.has(300));
  EXPECT_EQ(late.IDs(), numbered("a", 300));
  EXPECT_THAT(ownIDsOf(late), IsEmpty());
  EXPECT_GT(late.status().created, 1.6e9);
  EXPECT_EQ(late.status().created, early.status().created);
  EXPECT_LE(late.status().created, late.arrivals().front().time);
  EXPECT_EQ(late.status().problem, "");
}

TEST(NatsBus, HasHandedOutEverythingBeforeItIsLive) {
  const NatsServer server;
  Participant early(server.url());
  for (const std::string& ID : numbered("a", 500)) early.publish(ID);
  ASSERT_TRUE(early.hasSentAll());
  for (int round = 0; round < 5; ++round) {
    NatsBus late({server.url(), "maths", "", ""});
    late.start({});
    ASSERT_TRUE(eventually([&] { return late.status().kind == Kind::kLive; }));
    EXPECT_EQ(late.take(1000).size(), 500U);
  }
}

TEST(NatsBus, KeepsLessonsApart) {
  const NatsServer server;
  Participant maths(server.url());
  Participant music({server.url(), "music", "", ""});
  maths.publish("a");
  music.publish("b");
  ASSERT_TRUE(maths.has(1));
  ASSERT_TRUE(music.has(1));
  EXPECT_THAT(maths.IDs(), ElementsAre("a"));
  EXPECT_THAT(music.IDs(), ElementsAre("b"));
}

TEST(NatsBus, SendsEverythingOnceAndInOrderThoughTheServerIsKilled) {
  constexpr int kEach = 1000;
  NatsServer server;
  Participant one(server.url());
  Participant two(server.url());
  for (int i = 1; i <= kEach; ++i) {
    one.publish("one." + std::to_string(i));
    two.publish("two." + std::to_string(i));
  }
  for (const std::size_t arrived : {150U, 700U, 1300U}) {
    ASSERT_TRUE(one.has(arrived));
    ASSERT_LT(one.arrivals().size(), 2U * kEach) << "the server is killed in the middle";
    server.kill();
    server.start();
  }
  ASSERT_TRUE(one.has(2 * kEach));
  ASSERT_TRUE(two.has(2 * kEach));
  ASSERT_TRUE(one.hasSentAll());
  ASSERT_TRUE(two.hasSentAll());
  Participant late(server.url());
  ASSERT_TRUE(late.isLive());
  ASSERT_TRUE(late.has(2 * kEach));
  EXPECT_EQ(late.arrivals().size(), 2U * kEach) << "nothing is there twice";
  EXPECT_EQ(one.IDs(), late.IDs());
  EXPECT_EQ(two.IDs(), late.IDs());
  EXPECT_EQ(ownIDsOf(one), numbered("one.", kEach));
  EXPECT_EQ(ownIDsOf(two), numbered("two.", kEach));
}

TEST(NatsBus, SendsWhatWasPublishedWithoutAServerWhenThereIsOne) {
  NatsServer server;
  Participant one(server.url());
  one.publish("a1");
  ASSERT_TRUE(one.has(1));
  server.kill();
  ASSERT_TRUE(one.becomes(Kind::kConnecting));
  one.publish("a2");
  one.publish("a3");
  EXPECT_EQ(one.status().unsent, 2U);
  EXPECT_THAT(one.status().problem, HasSubstr("."));
  server.start();
  ASSERT_TRUE(one.has(3));
  ASSERT_TRUE(one.hasSentAll());
  EXPECT_EQ(one.IDs(), numbered("a", 3));
  EXPECT_EQ(one.status().problem, "");
}

TEST(NatsBus, JoinsThePiecesOfAStrokeThatWait) {
  NatsServer server;
  server.kill();
  Participant one(server.url());
  for (int i = 1; i <= 100; ++i) {
    auto piece = VelWhiteBoard::VelWbVecLine::initWithType("line");
    piece->ID = "s";
    piece->ts = i;
    piece->path = VelWhiteBoard::Path{{0.1, 0.1, i + 0.0}};
    one.bus().publish("1_1", piece);
  }
  EXPECT_EQ(one.status().unsent, 1U);
  server.start();
  ASSERT_TRUE(one.has(1));
  const auto* stroke =
      VelWhiteBoard::recordCast<VelWhiteBoard::VelWbVecLine>(one.arrivals().front().vector.get());
  ASSERT_NE(stroke, nullptr);
  EXPECT_EQ(stroke->path->size(), 100U);
}

TEST(NatsBus, DropsAndCountsMessagesThatAreNone) {
  const NatsServer server;
  Participant one(server.url());
  one.publish("a1");
  ASSERT_TRUE(one.has(1));
  sendRaw(server, "x-1", "");
  sendRaw(server, "x-2", "1_1\n{\"type\":\"text\"}");
  sendRaw(server, "x-3", std::string("\0\xff\n{}", 5));
  one.publish("a2");
  ASSERT_TRUE(one.has(2));
  EXPECT_EQ(one.status().dropped, 3U);
  EXPECT_THAT(one.sequences(), ElementsAre(1, 5));

  sendRaw(server, "x-4", "1_1");
  Participant late(server.url());
  ASSERT_TRUE(late.isLive());
  ASSERT_TRUE(late.has(2));
  EXPECT_EQ(late.status().dropped, 4U);
}

TEST(NatsBus, DropsAndCountsWhatNobodyWouldAccept) {
  const NatsServer server;
  Participant one(server.url());
  one.bus().publish("no page", box("a"));
  one.bus().publish("1_1", nullptr);
  EXPECT_EQ(one.status().dropped, 2U);
  EXPECT_EQ(one.status().unsent, 0U);
}

TEST(NatsBus, IsNotBlockedByAMessageThatIsLargerThanAMessageMayBe) {
  const NatsServer server;
  Participant one(server.url());
  one.publish("a1");
  one.publish(std::string(kMessageSizeLimit, 'x'));
  one.publish("a2");
  ASSERT_TRUE(one.has(2));
  EXPECT_EQ(one.IDs(), numbered("a", 2));
  EXPECT_EQ(one.status().dropped, 1U);
  EXPECT_THAT(one.status().problem, HasSubstr("not sent"));
}

TEST(NatsBus, IsNotBlockedByAMessageThatTheServerDoesNotTake) {
  const NatsServer server({.maxPayload = 5000});
  Participant one(server.url());
  one.publish("a1");
  one.publish(std::string(6000, 'x'));
  one.publish("a2");
  ASSERT_TRUE(one.has(2));
  EXPECT_EQ(one.IDs(), numbered("a", 2));
  EXPECT_EQ(one.status().dropped, 1U);
  EXPECT_THAT(one.status().problem, HasSubstr("not sent"));
  EXPECT_EQ(one.status().kind, Kind::kLive);
}

TEST(NatsBus, NotifiesOneWhoOnlyTakes) {
  const NatsServer server;
  std::atomic<int> told = 0;
  NatsBus bus({server.url(), "maths", "", ""});
  bus.start([&] { ++told; });
  ASSERT_TRUE(eventually([&] { return bus.status().kind == Kind::kLive; }));
  for (int round = 1; round <= 3; ++round) {
    const int before = told;
    bus.publish("1_1", box("a"));
    std::size_t taken = 0;
    ASSERT_TRUE(eventually([&] {
      if (told > before) taken += bus.take(10).size();
      return taken == 1;
    })) << "round "
        << round;
  }
}

TEST(NatsBus, RefusesTheNameOfNoLesson) {
  EXPECT_THROW(NatsBus({deadUrl(), "a b", "", ""}), std::invalid_argument);
  EXPECT_THROW(NatsBus({deadUrl(), "", "", ""}), std::invalid_argument);
}

}  // namespace
}  // namespace whiteboard
