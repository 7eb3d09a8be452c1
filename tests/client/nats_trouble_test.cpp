// What a participant sees, and how it ends, when a server is not as it should be.
#include <chrono>
#include <optional>
#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "lesson/nats_bus.h"
#include "lesson/nats_bus_state.h"
#include "tests/client/support/nats_server.h"
#include "tests/client/support/participant.h"
#include "tests/client/support/raw_stream.h"

namespace whiteboard {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using Kind = BusStatus::Kind;

TEST(NatsTrouble, TellsThatTheTokenIsWrong) {
  const NatsServer server({.token = "right"});
  Participant wrong({server.url(), "maths", "wrong", ""});
  Participant none({server.url(), "maths", "", ""});
  ASSERT_TRUE(wrong.becomes(Kind::kRefused));
  ASSERT_TRUE(none.becomes(Kind::kRefused));
  EXPECT_EQ(wrong.status().problem, "The server does not accept the token.");
  Participant right({server.url(), "maths", "right", ""});
  right.publish("a");
  ASSERT_TRUE(right.has(1));
  EXPECT_EQ(wrong.status().kind, Kind::kRefused);
}

TEST(NatsTrouble, TellsThatTheServerKeepsNoLessons) {
  const NatsServer server({.hasJetStream = false});
  const Participant one(server.url());
  EXPECT_TRUE(one.tells("keeps no lessons"));
}

TEST(NatsTrouble, TellsThatNobodyAnswers) {
  const Participant one(deadUrl());
  EXPECT_TRUE(one.tells("no server answers"));
  EXPECT_EQ(one.status().kind, Kind::kConnecting);
}

TEST(NatsTrouble, FindsTheServerThatAnswersAmongSeveral) {
  const NatsServer server;
  const std::string dead = deadUrl();
  Participant last(dead + "," + server.url());
  Participant first(server.url() + "," + dead);
  last.publish("a");
  ASSERT_TRUE(first.has(1));
  EXPECT_TRUE(last.isLive());
  EXPECT_EQ(last.status().problem, "");
  const Participant none(dead + "," + dead);
  EXPECT_TRUE(none.tells("no server answers"));
}

TEST(NatsTrouble, TellsThatOneServerCannotKeepALessonThreeTimes) {
  const NatsServer server;
  const Participant one(NatsBus::Options{server.url(), "maths", "", "", 3});
  EXPECT_TRUE(one.tells("Cannot open the lesson"));
}

TEST(NatsTrouble, BeginsAnewWhenTheServerHasLostTheLesson) {
  NatsServer server;
  Participant one(server.url());
  for (const std::string& ID : numbered("a", 5)) one.publish(ID);
  ASSERT_TRUE(one.has(5));
  server.kill();
  server.loseData();
  server.start();
  ASSERT_TRUE(one.tells("has lost"));
  one.publish("b");
  ASSERT_TRUE(one.has(6));
  EXPECT_THAT(one.sequences(), ElementsAre(1, 2, 3, 4, 5, 1));
  EXPECT_TRUE(one.isLive());
  EXPECT_THAT(one.status().problem, HasSubstr("has lost"));
}

TEST(NatsTrouble, IsNotBlockedByAMessageThatTheLessonDoesNotTake) {
  const NatsServer server;
  const RawStream stream(server.url(), {.messageSize = 1000});
  Participant one(server.url());
  one.publish("a1");
  one.publish(std::string(2000, 'x'));
  one.publish("a2");
  ASSERT_TRUE(one.has(2));
  EXPECT_EQ(one.IDs(), numbered("a", 2));
  EXPECT_EQ(one.status().dropped, 1U);
  EXPECT_THAT(one.status().problem, HasSubstr("not sent"));
}

TEST(NatsTrouble, KeepsWhatAFullLessonDoesNotTake) {
  const NatsServer server;
  const RawStream stream(server.url(), {.messages = 2});
  Participant one(server.url());
  for (const std::string& ID : numbered("a", 4)) one.publish(ID);
  ASSERT_TRUE(one.has(2));
  EXPECT_TRUE(one.tells("Cannot send"));
  EXPECT_EQ(one.status().unsent, 2U);
  EXPECT_EQ(one.status().dropped, 0U);
}

TEST(NatsTrouble, TellsThatAPartOfTheLessonIsMissing) {
  const NatsServer server;
  RawStream stream(server.url(), {});
  for (const std::string& ID : numbered("a", 6)) {
    stream.store(ID, encodeMessage("1_1", *box(ID)));
  }
  for (const std::uint64_t sequence : {1U, 2U, 4U, 6U}) stream.remove(sequence);
  Participant one(server.url());
  ASSERT_TRUE(one.has(2));
  EXPECT_THAT(one.IDs(), ElementsAre("a3", "a5"));
  ASSERT_TRUE(one.isLive());
  EXPECT_THAT(one.status().problem, HasSubstr("missing"));
  one.publish("b");
  ASSERT_TRUE(one.has(3));
  EXPECT_THAT(one.sequences(), ElementsAre(3, 5, 7));
}

TEST(NatsTrouble, AsksForSignsOfLifeEachSecond) {
  const NatsServer server;
  const Participant one(server.url());
  ASSERT_TRUE(one.isLive());
  RawStream stream(server.url());
  const auto consumers = stream.consumers();
  ASSERT_EQ(consumers.size(), 1U);
  EXPECT_EQ(stream.heartbeatOf(consumers.front()), 1);
}

TEST(NatsTrouble, GoesOnWhenTheServerServesItNoLonger) {
  const NatsServer server;
  Participant one(server.url());
  Participant two(server.url());
  one.publish("a1");
  ASSERT_TRUE(one.has(1));
  ASSERT_TRUE(two.has(1));
  RawStream stream(server.url());
  for (const std::string& consumer : stream.consumers()) stream.removeConsumer(consumer);
  one.publish("a2");
  ASSERT_TRUE(one.has(2));
  ASSERT_TRUE(two.has(2));
  two.publish("a3");
  ASSERT_TRUE(one.has(3));
  ASSERT_TRUE(two.has(3));
  EXPECT_EQ(one.IDs(), numbered("a", 3));
  EXPECT_EQ(two.IDs(), numbered("a", 3));
  EXPECT_EQ(one.status().problem, "");
}

/// Answers that a server gives before it has everything again.
TEST(NatsTrouble, DoesNotBelieveALossThatPasses) {
  NatsBusState state({deadUrl(), "maths", "", ""});
  EXPECT_FALSE(state.hasLost(std::nullopt)) << "nothing is known yet";
  const StreamState stream{1000, 5, 5};
  EXPECT_EQ(state.opened(stream), 1U);
  for (std::uint64_t sequence = 1; sequence <= 5; ++sequence) {
    Arrival arrival;
    arrival.sequence = sequence;
    arrival.vector = box("a");
    state.arrived(std::move(arrival), "");
  }
  EXPECT_FALSE(state.hasLost(stream));
  EXPECT_TRUE(state.hasLost(std::nullopt));
  EXPECT_TRUE(state.hasLost(StreamState{1000, 4, 4}));
  EXPECT_FALSE(state.hasLost(StreamState{1000.5, 5, 5})) << "servers of a cluster differ";
  EXPECT_TRUE(state.hasLost(StreamState{2000, 5, 5}));
  EXPECT_EQ(state.opened(stream), 6U);
  EXPECT_EQ(state.status().problem, "");
  EXPECT_EQ(state.opened(StreamState{2000, 5, 5}), 1U);
  EXPECT_THAT(state.status().problem, HasSubstr("has lost"));
}

/// The limit is far above what is promised, and below what a connection waits for an answer.
template <class Action>
bool isSoonDone(Action action) {
  const auto start = std::chrono::steady_clock::now();
  action();
  return std::chrono::steady_clock::now() - start < std::chrono::milliseconds(1800);
}

TEST(NatsTrouble, EndsSoonWithoutAServer) {
  NatsBus notStarted({deadUrl(), "maths", "", ""});
  Participant one(deadUrl());
  one.publish("a");
  ASSERT_TRUE(one.tells("no server"));
  EXPECT_TRUE(isSoonDone([&] { one.leave(); }));
}

TEST(NatsTrouble, EndsSoonWhenTheServerSaysNothing) {
  const SilentServer server;
  Participant one(server.url());
  one.publish("a");
  ASSERT_TRUE(eventually([&] { return server.isCalled(); }));
  EXPECT_TRUE(isSoonDone([&] { one.leave(); }));
}

TEST(NatsTrouble, EndsSoonWhenTheServerHangs) {
  NatsServer server;
  Participant one(server.url());
  ASSERT_TRUE(one.isLive());
  server.hang();
  one.publish("a");
  EXPECT_TRUE(isSoonDone([&] { one.leave(); }));
}

TEST(NatsTrouble, GivesUpAServerThatHangsAndSendsOnceWhatItHadNotAnswered) {
  NatsServer server;
  Participant one(server.url());
  ASSERT_TRUE(one.isLive());
  server.hang();
  for (const std::string& ID : numbered("a", 20)) one.publish(ID);
  ASSERT_TRUE(one.becomes(Kind::kConnecting));
  EXPECT_EQ(one.status().unsent, 20U);
  // It finds a message of the connection that was given up, and a new connection.
  server.resume();
  ASSERT_TRUE(one.has(20));
  ASSERT_TRUE(one.hasSentAll());
  Participant late(server.url());
  ASSERT_TRUE(late.isLive());
  ASSERT_TRUE(late.has(20));
  EXPECT_EQ(late.IDs(), numbered("a", 20));
  EXPECT_EQ(one.IDs(), numbered("a", 20));
}

}  // namespace
}  // namespace whiteboard
