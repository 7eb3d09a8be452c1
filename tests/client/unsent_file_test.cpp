// What could not be sent is sent when the program runs again.
#include "lesson/unsent_file.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "lesson/lesson_connection.h"
#include "tests/client/support/nats_server.h"
#include "tests/client/support/participant.h"
#include "tests/client/support/raw_stream.h"
#include "tests/support/temporary_folder.h"

namespace whiteboard {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using VelWhiteBoard::TemporaryFolder;

OutgoingMessage message(const std::string& id, const std::string& ID) {
  return {id, encodeMessage("1_1", *box(ID))};
}

std::vector<std::string> idsIn(const std::string& path) {
  std::vector<std::string> ids;
  for (const OutgoingMessage& each : readUnsent(path)) ids.push_back(each.id);
  return ids;
}

TEST(UnsentFile, ComesBackAsItWas) {
  const TemporaryFolder folder;
  const std::string path = folder.at("unsent");
  const std::string awkward = "\"quoted\"\n\xc3\xa4";
  ASSERT_TRUE(writeUnsent(path, {message("ab-1", "a"), message("ab-2", awkward)}));
  const auto read = readUnsent(path);
  ASSERT_EQ(read.size(), 2U);
  EXPECT_EQ(read[0].id, "ab-1");
  EXPECT_EQ(read[0].text, message("ab-1", "a").text);
  EXPECT_EQ(read[1].text, message("ab-2", awkward).text);
}

TEST(UnsentFile, GoesWhenNothingIsUnsent) {
  const TemporaryFolder folder;
  const std::string path = folder.at("unsent");
  ASSERT_TRUE(writeUnsent(path, {message("ab-1", "a")}));
  ASSERT_TRUE(writeUnsent(path, {}));
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(UnsentFile, IsEmptyWhenThereIsNone) {
  const TemporaryFolder folder;
  EXPECT_THAT(readUnsent(folder.at("unsent")), IsEmpty());
  EXPECT_THAT(readUnsent(""), IsEmpty());
}

TEST(UnsentFile, StaysWhenItCannotBeReplaced) {
  const TemporaryFolder folder;
  const std::string path = folder.at("unsent");
  ASSERT_TRUE(writeUnsent(path, {message("ab-1", "a")}));
  std::filesystem::create_directory(path + ".new");
  EXPECT_FALSE(writeUnsent(path, {message("ab-2", "b")}));
  EXPECT_THAT(idsIn(path), ElementsAre("ab-1"));
}

TEST(UnsentFile, LeavesOutLinesThatAreNoMessages) {
  const TemporaryFolder folder;
  const std::string path = folder.at("unsent");
  ASSERT_TRUE(writeUnsent(path, {message("ab-1", "a")}));
  std::ofstream(path, std::ios::app) << "\n[]\n{}\n{\"id\":\"ab-3\",\"page\":\"1_1\"}\n"
                                     << "{\"id\":\"ab\\r\\n\",\"page\":\"1_1\",\"vector\":"
                                     << "\"{\\\"ID\\\":\\\"c\\\"}\"}\n"
                                     << "{\"id\":\"ab-2\",\"page\":\"1_1\",\"vector\":"
                                     << "\"{\\\"ID\\\":\\\"c\\\"}\"}\n{\"id\":\"ab-4\",";
  EXPECT_THAT(idsIn(path), ElementsAre("ab-1", "ab-2"));
}

TEST(NatsBusUnsent, IsSentAtTheNextStart) {
  const TemporaryFolder folder;
  const std::string path = folder.at("unsent");
  NatsServer server;
  server.kill();
  {
    Participant first({server.url(), "maths", "", path});
    first.publish("a");
    first.publish("b");
  }
  EXPECT_EQ(idsIn(path).size(), 2U);
  const auto ids = idsIn(path);
  {
    Participant second({server.url(), "maths", "", path});
    EXPECT_EQ(second.status().unsent, 2U);
    second.publish("c");
  }
  ASSERT_EQ(idsIn(path).size(), 3U);
  EXPECT_EQ(idsIn(path)[0], ids[0]);
  EXPECT_EQ(idsIn(path)[1], ids[1]);
  server.start();
  {
    Participant third({server.url(), "maths", "", path});
    ASSERT_TRUE(third.has(3));
    ASSERT_TRUE(third.hasSentAll());
    EXPECT_THAT(third.IDs(), ElementsAre("a", "b", "c"));
    for (const Arrival& arrival : third.arrivals()) EXPECT_TRUE(arrival.isOwn);
    EXPECT_FALSE(std::filesystem::exists(path)) << "all of it has been sent";
  }
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(NatsBusUnsent, IsNotSentAgainWhenTheLessonHasIt) {
  const TemporaryFolder folder;
  const std::string path = folder.at("unsent");
  const NatsServer server;
  ASSERT_TRUE(writeUnsent(path, {message("ab-1", "a"), message("ab-2", "b")}));
  {
    LessonConnection connection(server.url(), "maths", "");
    connection.openStream();
    ASSERT_EQ(connection.send(message("ab-1", "a")).kind, SendResult::Kind::kSent);
  }
  Participant one({server.url(), "maths", "", path});
  ASSERT_TRUE(one.has(2));
  ASSERT_TRUE(one.hasSentAll());
  one.publish("c");
  ASSERT_TRUE(one.has(3));
  EXPECT_THAT(one.IDs(), ElementsAre("a", "b", "c"));
  EXPECT_EQ(one.arrivals().back().sequence, 3U);
}

TEST(NatsBusUnsent, IsNotSentAgainWhenOnlyTheLessonKnowsItsIdentifier) {
  const TemporaryFolder folder;
  const std::string path = folder.at("unsent");
  const NatsServer server;
  {
    RawStream stream(server.url(), {.window = 100});
    stream.store("ab-1", message("ab-1", "a").text);
    stream.store("x-1", message("x-1", "x").text);
    // Once the server has forgotten the younger identifier, it has forgotten the other, too.
    ASSERT_TRUE(eventually([&] { return stream.store("x-1", message("x-1", "x").text) != 0; }));
  }
  ASSERT_TRUE(writeUnsent(path, {message("ab-1", "a"), message("ab-2", "b")}));
  Participant one({server.url(), "maths", "", path});
  ASSERT_TRUE(one.has(4));
  ASSERT_TRUE(one.hasSentAll());
  EXPECT_THAT(one.IDs(), ElementsAre("a", "x", "x", "b"));
}

TEST(NatsBusUnsent, LeavesNoFileWhenEverythingWasSent) {
  const TemporaryFolder folder;
  const NatsServer server;
  {
    Participant one({server.url(), "maths", "", folder.at("unsent")});
    one.publish("a");
    ASSERT_TRUE(one.has(1));
  }
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

}  // namespace
}  // namespace whiteboard
