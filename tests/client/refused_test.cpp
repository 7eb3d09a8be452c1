// Messages that the lesson never takes.
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "lesson/local_bus.h"
#include "lesson/nats_bus.h"
#include "lesson/unsent_file.h"
#include "tests/client/support/nats_server.h"
#include "tests/client/support/participant.h"
#include "tests/support/temporary_folder.h"

namespace whiteboard {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Pair;
using VelWhiteBoard::TemporaryFolder;

std::vector<std::pair<std::string, std::string>> pagesAndIDs(const std::vector<OwnVector>& own) {
  std::vector<std::pair<std::string, std::string>> all;
  for (const OwnVector& each : own) all.emplace_back(each.page, each.vector->ID.value_or(""));
  return all;
}

/// A text that is longer than a message of 5,000 bytes may be.
VelWhiteBoard::VectorPtr large(const std::string& ID) {
  auto text = VelWhiteBoard::VelWbVecText::initWithType("text");
  text->ID = ID;
  text->text = std::string(6000, 'x');
  return text;
}

TEST(ARefusedMessage, IsReportedOnceWithItsPage) {
  const NatsServer server({.maxPayload = 5000});
  Participant one(server.url());
  one.publish("a1");
  one.bus().publish("1_7", large("b"));
  one.publish("a2");
  ASSERT_TRUE(one.has(2));
  EXPECT_THAT(pagesAndIDs(one.bus().takeRefused()), ElementsAre(Pair("1_7", "b")));
  EXPECT_THAT(one.bus().takeRefused(), IsEmpty());
  EXPECT_TRUE(one.hasSentAll());
}

TEST(ARefusedMessage, IsReportedThoughItIsLongerThanAnyMessageMayBe) {
  const NatsServer server;
  Participant one(server.url());
  auto text = VelWhiteBoard::VelWbVecText::initWithType("text");
  text->ID = "long";
  text->text = std::string(kMessageSizeLimit, 'x');
  one.bus().publish("1_1", text);
  EXPECT_THAT(one.refused(1), ElementsAre("long"));
}

TEST(ARefusedMessage, MayHoldPiecesThatWereJoined) {
  NatsServer server({.maxPayload = 5000});
  server.kill();
  Participant one(server.url());
  for (int i = 1; i <= 1000; ++i) {
    auto piece = VelWhiteBoard::VelWbVecLine::initWithType("line");
    piece->ID = "stroke";
    piece->ts = i;
    piece->path = VelWhiteBoard::Path{{0.1, 0.1, i + 0.0}};
    one.bus().publish("1_1", piece);
  }
  server.start();
  EXPECT_THAT(one.refused(1), ElementsAre("stroke"));
}

TEST(ARefusedMessage, IsWhatNobodyWouldAccept) {
  NatsBus bus({deadUrl(), "maths", "", ""});
  LocalBus alone(0);
  for (Bus* each : {static_cast<Bus*>(&bus), static_cast<Bus*>(&alone)}) {
    each->publish("no page", box("a"));
    each->publish("1_1", nullptr);
    EXPECT_THAT(pagesAndIDs(each->takeRefused()), ElementsAre(Pair("no page", "a")));
    EXPECT_THAT(each->takeRefused(), IsEmpty());
  }
}

TEST(ARefusedMessage, IsOneOfAParticipantWhoMayOnlyRead) {
  const NatsServer server({.hasReader = true});
  Participant writer(server.urlFor("writer"));
  writer.publish("a");
  ASSERT_TRUE(writer.has(1));
  Participant reader(server.urlFor("reader"));
  ASSERT_TRUE(reader.has(1));
  reader.publish("b1");
  reader.publish("b2");
  EXPECT_THAT(reader.refused(2), ElementsAre("b1", "b2"));
  EXPECT_THAT(reader.status().problem, HasSubstr("does not let this participant write"));
  EXPECT_EQ(reader.status().unsent, 0U);
  writer.publish("c");
  ASSERT_TRUE(reader.has(2));
  EXPECT_THAT(reader.IDs(), ElementsAre("a", "c"));
}

TEST(ARefusedMessage, IsNotSentAgainByTheNextRun) {
  const TemporaryFolder folder;
  const std::string path = folder.at("unsent");
  NatsServer server({.maxPayload = 5000});
  server.kill();
  {
    Participant first({server.url(), "maths", "", path});
    first.bus().publish("1_1", large("b"));
    first.publish("a");
  }
  ASSERT_EQ(readUnsent(path).size(), 2U);
  server.start();
  {
    NatsBus second({server.url(), "maths", "", path});
    EXPECT_THAT(pagesAndIDs(second.unsentBefore()),
                ElementsAre(Pair("1_1", "b"), Pair("1_1", "a")));
    second.start({});
    std::vector<OwnVector> refused;
    ASSERT_TRUE(eventually([&] {
      for (OwnVector& own : second.takeRefused()) refused.push_back(std::move(own));
      return second.status().unsent == 0;
    }));
    EXPECT_THAT(pagesAndIDs(refused), ElementsAre(Pair("1_1", "b")));
  }
  EXPECT_THAT(readUnsent(path), IsEmpty());
}

TEST(ARefusedMessage, IsNotSentAgainAfterACrash) {
  const TemporaryFolder folder;
  const std::string path = folder.at("unsent");
  const NatsServer server({.hasReader = true});
  {
    const Participant maker(server.urlFor("writer"));
    ASSERT_TRUE(maker.isLive());
  }
  ASSERT_TRUE(writeUnsent(path, {{"ab-1", encodeMessage("1_1", *box("a"))},
                                 {"ab-2", encodeMessage("1_1", *box("b"))}}));
  Participant reader({server.urlFor("reader"), "maths", "", path});
  // The file says so as soon as the message has been refused, not only at the end.
  EXPECT_TRUE(eventually([&] {
    const auto kept = readUnsent(path);
    return kept.size() == 1 && kept.front().id == "ab-2";
  }));
  EXPECT_TRUE(eventually([&] { return readUnsent(path).empty(); }));
}

}  // namespace
}  // namespace whiteboard
