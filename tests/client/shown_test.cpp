// What is shown to those who are there, and not kept; and lessons that are only looked for.
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "lesson/local_bus.h"
#include "lesson/nats_bus_state.h"
#include "lesson/recording.h"
#include "tests/client/support/nats_server.h"
#include "tests/client/support/participant.h"
#include "tests/client/support/raw_stream.h"

namespace whiteboard {
namespace {

using ::testing::ElementsAre;

VelWhiteBoard::VectorPtr pointer(const std::string& ID, double x = 0) {
  auto made = VelWhiteBoard::VelWbVecSquare::initWithType("cursor");
  made->ID = ID;
  made->x = x;
  return made;
}

TEST(WhatIsShown, ArrivesAtAllWhoAreThereAndIsNotKept) {
  const NatsServer server;
  Participant one(server.url());
  Participant two(server.url());
  one.publish("a1");
  ASSERT_TRUE(one.isLive());
  ASSERT_TRUE(two.isLive());
  ASSERT_TRUE(one.has(1));
  ASSERT_TRUE(two.has(1));
  one.bus().show("1_2", pointer("p"));
  ASSERT_TRUE(one.has(2));
  ASSERT_TRUE(two.has(2));
  EXPECT_THAT(two.sequences(), ElementsAre(1, 0));
  EXPECT_THAT(two.IDs(), ElementsAre("a1", "p"));
  EXPECT_EQ(two.arrivals().back().page, "1_2");
  one.publish("a2");
  ASSERT_TRUE(two.has(3));
  EXPECT_EQ(two.sequences().back(), 2U) << "it has no place in the order";
  Participant late(server.url());
  ASSERT_TRUE(late.isLive());
  ASSERT_TRUE(late.has(2));
  EXPECT_THAT(late.IDs(), ElementsAre("a1", "a2"));
  NatsBus bus({server.url(), "maths", "", ""});
  EXPECT_EQ(recordLesson(bus, 30).recording.events.size(), 2U);
}

TEST(WhatIsShown, IsLostWithoutAConnection) {
  NatsServer server;
  Participant one(server.url());
  ASSERT_TRUE(one.isLive());
  server.kill();
  ASSERT_TRUE(one.becomes(BusStatus::Kind::kConnecting));
  one.bus().show("1_1", pointer("p"));
  EXPECT_EQ(one.status().unsent, 0U);
  server.start();
  one.publish("a");
  ASSERT_TRUE(one.has(1));
  EXPECT_THAT(one.IDs(), ElementsAre("a"));
}

TEST(WhatIsShown, IsOnlyTheLastPositionOfAPointer) {
  NatsBusState state({deadUrl(), "maths", "", ""});
  const auto arrives = [&](const std::string& ID, double x) {
    state.shown(encodeMessage("1_1", *pointer(ID, x)));
  };
  arrives("p", 0.1);
  EXPECT_TRUE(state.take(10).empty()) << "the lesson is not there yet";
  state.caughtUp();
  arrives("p", 0.1);
  arrives("p", 0.2);
  arrives("q", 0.3);
  state.shown("no message");
  const auto arrivals = state.take(10);
  ASSERT_EQ(arrivals.size(), 2U);
  const auto* first =
      VelWhiteBoard::recordCast<VelWhiteBoard::VelWbVecSquare>(arrivals.front().vector.get());
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first->x, 0.2);
  EXPECT_EQ(arrivals.back().vector->ID, "q");
}

TEST(WhatIsShown, ArrivesWhereOneIsAlone) {
  LocalBus bus(0);
  bus.start({});
  bus.show("1_1", pointer("p"));
  bus.publish("1_1", box("a"));
  const auto arrivals = bus.take(10);
  ASSERT_EQ(arrivals.size(), 2U);
  EXPECT_EQ(arrivals[0].sequence, 0U);
  EXPECT_EQ(arrivals[1].sequence, 1U);
}

TEST(ALessonThatIsOnlyLookedFor, IsNotMade) {
  const NatsServer server;
  NatsBus::Options options{server.url(), "maths", "", ""};
  options.makesLesson = false;
  {
    NatsBus bus(options);
    const ReadRecording read = recordLesson(bus, 60);
    EXPECT_EQ(read.problem, "The server has no lesson of this name.");
    EXPECT_TRUE(read.recording.empty());
  }
  EXPECT_THROW(RawStream(server.url()).consumers(), std::runtime_error);
  Participant maker(server.url());
  maker.publish("a");
  ASSERT_TRUE(maker.has(1));
  NatsBus bus(options);
  EXPECT_EQ(recordLesson(bus, 60).recording.events.size(), 1U);
}

}  // namespace
}  // namespace whiteboard
