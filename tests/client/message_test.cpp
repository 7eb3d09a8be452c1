// What goes over the network.
#include "lesson/message.h"

#include <string>

#include <gtest/gtest.h>

#include "lesson/lesson_name.h"
#include "lesson/local_bus.h"

namespace whiteboard {
namespace {

using namespace VelWhiteBoard;

std::shared_ptr<VelWbVecText> note() {
  auto made = VelWbVecText::initWithType("text");
  made->ID = "u_1";
  made->text = "first line\nsecond line";
  made->x = 0.25;
  return made;
}

TEST(Message, BeginsWithThePageAndGoesOnWithTheVector) {
  const auto vector = note();
  EXPECT_EQ(encodeMessage("12_3", *vector), "12_3\n" + modelToJSONString(*vector));
}

TEST(Message, ComesBackAsItWas) {
  const auto message = decodeMessage(encodeMessage("-4_18446744073709551615", *note()));
  ASSERT_TRUE(message.has_value());
  EXPECT_EQ(message->page, "-4_18446744073709551615");
  EXPECT_EQ(modelToJSONString(*message->vector), modelToJSONString(*note()));
}

TEST(Message, IsNoneWithoutAPageThatAPageKeyNames) {
  const std::string vector = R"({"type":"clear","ID":"a"})";
  EXPECT_TRUE(decodeMessage("1_1\n" + vector));
  for (const std::string page : {"", "1", "1_", "_1", "01_1", " 1_1", "1_1 ", "1_1\r", "1_-1"}) {
    std::string text = page;
    text.append("\n").append(vector);
    EXPECT_FALSE(decodeMessage(text)) << page;
  }
}

TEST(Message, IsNoneWithoutAVectorThatHasAnIdentifier) {
  for (const std::string vector :
       {"", "[]", "null", "{", "{}", R"({"type":"clear"})", R"({"ID":null})", "\xff"}) {
    EXPECT_FALSE(decodeMessage("1_1\n" + vector)) << vector;
  }
}

TEST(Message, IsNoneWithoutALineFeed) {
  EXPECT_FALSE(decodeMessage(""));
  EXPECT_FALSE(decodeMessage("1_1"));
  EXPECT_FALSE(decodeMessage(R"({"type":"clear","ID":"a"})"));
}

TEST(Message, MayHaveTheLongestSizeAndNoMore) {
  const std::string start = "1_1\n{\"type\":\"text\",\"ID\":\"a\",\"text\":\"";
  const std::string end = "\"}";
  const std::size_t room = kMessageSizeLimit - start.size() - end.size();
  EXPECT_TRUE(decodeMessage(start + std::string(room, 'x') + end));
  EXPECT_FALSE(decodeMessage(start + std::string(room + 1, 'x') + end));
}

TEST(LessonName, HasLettersDigitsHyphensAndUnderscores) {
  EXPECT_TRUE(isLessonName("a"));
  EXPECT_TRUE(isLessonName("Maths_7-b"));
  EXPECT_TRUE(isLessonName(std::string(64, 'x')));
  for (const std::string name : {"", " ", "a b", "a.b", "a*", ">", "a/b", "\xc3\xa4", "a\n"}) {
    EXPECT_FALSE(isLessonName(name)) << name;
  }
  EXPECT_FALSE(isLessonName(std::string(65, 'x')));
}

TEST(LocalBus, HandsOutWhatWasPublishedAtOnceAndInOrder) {
  LocalBus bus(1234.5);
  int told = 0;
  bus.start([&] { ++told; });
  bus.publish("1_1", note());
  bus.publish("1_2", note());
  EXPECT_EQ(told, 2);
  EXPECT_EQ(bus.status().kind, BusStatus::Kind::kLive);
  EXPECT_EQ(bus.status().created, 1234.5);
  const auto first = bus.take(1);
  const auto second = bus.take(10);
  ASSERT_EQ(first.size(), 1U);
  ASSERT_EQ(second.size(), 1U);
  EXPECT_EQ(first[0].sequence, 1U);
  EXPECT_EQ(first[0].page, "1_1");
  EXPECT_TRUE(first[0].isOwn);
  EXPECT_EQ(second[0].sequence, 2U);
  EXPECT_EQ(second[0].page, "1_2");
  EXPECT_EQ(modelToJSONString(*second[0].vector), modelToJSONString(*note()));
  EXPECT_TRUE(bus.take(10).empty());
}

TEST(LocalBus, DropsAndCountsWhatNobodyWouldAccept) {
  LocalBus bus(0);
  bus.start({});
  bus.publish("1", note());
  bus.publish("1_1", nullptr);
  bus.publish("1_1", VelWbVecText::initWithType("text"));
  EXPECT_EQ(bus.status().dropped, 3U);
  EXPECT_TRUE(bus.take(10).empty());
}

}  // namespace
}  // namespace whiteboard
