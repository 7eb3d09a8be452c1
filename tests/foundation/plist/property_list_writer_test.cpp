// The files that records become: the layout to the last byte, and nothing that a strict reader
// refuses.
#include "VelWhiteBoard/foundation/plist/property_list_writer.h"

#include <cstdint>
#include <fstream>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/vectors/commands.h"
#include "VelWhiteBoard/vectors/diagrams.h"
#include "VelWhiteBoard/vectors/media_lists.h"

#include "tests/support/all_kinds.h"
#include "tests/support/print_records.h"
#include "tests/support/property_lists.h"
#include "tests/support/special_numbers.h"

namespace VelWhiteBoard {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

/// The records of data/property_lists/records.plist, which was written by hand.
RecordList goldenRecords() {
  auto line = VelWbVecLine::initWithType("line");
  line->ts = 10;
  line->ID = "u_1";
  line->x = -0.25;
  line->y = -0.0;
  line->ps = 400;
  line->end = true;
  line->path = Path{{0.1, 0.1 + 0.2, 1700000000.123456}, {1e16, 9e-5}, {}};
  line->color = "#FF3467FF";
  line->widthIndex = -1;
  line->pixel = std::numeric_limits<std::int64_t>::max();
  line->offset.emplace();

  auto diagram = VelWbVecDiagram::initWithType("diagram");
  diagram->ID = "";
  diagram->kind = "a <b> & \"c\"";
  diagram->points = Array{nullptr,
                          1,
                          1.0,
                          std::numeric_limits<std::uint64_t>::max(),
                          -5,
                          true,
                          nullptr,
                          "]]>",
                          Dictionary{{"<k>", Array{Dictionary{{"null", nullptr}}}},
                                     {"empty", Array{nullptr, nullptr}},
                                     {"gone", nullptr}}};

  auto page = VelWbVecSwitchPage::initWithType("switchPage");
  page->WBID = std::numeric_limits<std::int64_t>::min();
  page->curPage = std::numeric_limits<std::uint64_t>::max();
  page->url = "   ";

  auto list = VelWbVecMediaList::initWithType("mediaList");
  list->owner = 9;
  list->list.emplace().push_back(std::make_shared<VelWbVecMediaItem>());
  list->list->push_back(nullptr);
  list->list->front()->ID = "a";
  return {line, std::make_shared<VelWbBaseVector>(), diagram, page, list};
}

std::string contentsOf(const std::string& file) {
  std::ostringstream contents;
  contents << std::ifstream(file, std::ios::binary).rdbuf();
  return contents.str();
}

/// The record after it has been in a file.
std::shared_ptr<AllKinds> throughFile(const AllKinds& record) {
  const ReadRecords list =
      readPropertyList(AllKinds::ownClass(), propertyListOf({record.copyWithZone()}));
  EXPECT_TRUE(list.result.ok()) << list.result.error;
  EXPECT_EQ(list.records.size(), 1U);
  return list.records.empty() ? nullptr : std::static_pointer_cast<AllKinds>(list.records[0]);
}

TEST(PropertyListWriter, TheLayoutIsTheClassicOneToTheLastByte) {
  const std::string golden = contentsOf(VELWB_TEST_DATA_DIR "/property_lists/records.plist");
  ASSERT_FALSE(golden.empty());
  EXPECT_EQ(propertyListOf(goldenRecords()), golden);
}

TEST(PropertyListWriter, ASecondReaderFindsInTheFileWhatTheDictionaryFormSays) {
  const Value found = readWithSecondReader(propertyListOf(goldenRecords()));
  ASSERT_EQ(found.size(), 5U);
  Array expected;
  for (const auto& record : goldenRecords()) expected.emplace_back(modelToJSONObject(*record));
  // Nulls are what a file cannot say.
  expected[2]["points"] =
      Value::parse(R"([1,1.0,18446744073709551615,-5,true,"]]>",{"<k>":[{}],"empty":[]}])");
  EXPECT_EQ(found.dump(1), Value(expected).dump(1));
}

TEST(PropertyListWriter, NoRecordsAreAnEmptyArray) {
  EXPECT_EQ(propertyListOf({}),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
            "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
            "<plist version=\"1.0\">\n"
            "<array/>\n"
            "</plist>\n");
  EXPECT_EQ(readWithSecondReader(propertyListOf({})).dump(), "[]");
}

TEST(PropertyListWriter, NumbersThatAFileCannotCarryAreLeftOutOrZeroInAPath) {
  AllKinds record;
  record.real = kNaN;
  record.path = Path{{kNaN, kInfinity, -kInfinity}};
  record.array = Array{kNaN, 1, kInfinity, Dictionary{{"a", -kInfinity}}};
  const auto restored = throughFile(record);
  EXPECT_EQ(restored->real, 0.0);
  EXPECT_EQ(*restored->path, (Path{{0, 0, 0}}));
  EXPECT_EQ(Value(*restored->array).dump(), "[1,{}]");
  EXPECT_THAT(propertyListOf({record.copyWithZone()}), Not(HasSubstr("nan")));
  EXPECT_THAT(propertyListOf({record.copyWithZone()}), Not(HasSubstr("<key>real</key>")));
}

TEST(PropertyListWriter, TextThatXMLCanCarryComesBackBitForBit) {
  const std::string_view texts[] = {
      "",
      " ",
      "   ",
      "\n",
      "\r",
      "\r\n",
      "\t",
      "\r\r\n\n",
      " a ",
      "\na\n",
      "]]>",
      "<![CDATA[x]]>",
      "&amp;",
      "&#13;",
      "<!-- -->",
      "<string>",
      "\"'",
      "\xC2\x85",
      "\xE2\x80\xA8",
      "\xE7\x99\xBD\xE6\x9D\xBF",
      "\xF0\x9F\x98\x80",
      "\xEF\xBB\xBF",
      "a\xEF\xBF\xBD",
      "\x7F",
  };
  RecordList records;
  for (const auto text : texts) {
    auto record = std::make_shared<AllKinds>();
    record->text = text;
    record->array = Array{std::string(text), Dictionary{{std::string(text), std::string(text)}}};
    records.push_back(record);
  }
  const std::string file = propertyListOf(records);
  const ReadRecords list = readPropertyList(AllKinds::ownClass(), file);
  ASSERT_TRUE(list.result.ok()) << list.result.error;
  ASSERT_EQ(list.records.size(), records.size());
  const Value second = readWithSecondReader(file);
  ASSERT_EQ(second.size(), records.size());
  for (std::size_t index = 0; index < records.size(); ++index) {
    EXPECT_EQ(*list.records[index], *records[index]) << ::testing::PrintToString(texts[index]);
    EXPECT_EQ(second[index].dump(), Value(modelToJSONObject(*records[index])).dump());
  }
}

TEST(PropertyListWriter, TextThatXMLCannotCarryIsReplacedAndTheFileStaysReadable) {
  using std::string_view_literals::operator""sv;
  const struct {
    std::string_view text;
    std::string_view restored;
  } rows[] = {
      {"a\0b"sv,
       "a\xEF\xBF\xBD"
       "b"sv},
      {"\x01\x1F"sv, "\xEF\xBF\xBD\xEF\xBF\xBD"sv},
      {"\xEF\xBF\xBE"sv, "\xEF\xBF\xBD"sv},
      {"\xEF\xBF\xBF"sv, "\xEF\xBF\xBD"sv},
      {"\xFF"sv, "\xEF\xBF\xBD"sv},
      {"a\xC3"sv, "a\xEF\xBF\xBD"sv},
      {"\xED\xA0\x80"sv, "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"sv},
  };
  RecordList records;
  for (const auto& row : rows) {
    AllKinds record;
    record.text = row.text;
    record.array = Array{Dictionary{{std::string(row.text), std::string(row.text)}}};
    const auto restored = throughFile(record);
    ASSERT_TRUE(restored);
    EXPECT_EQ(restored->text, row.restored);
    const std::string text(row.restored);
    EXPECT_EQ(Value(*restored->array), Value(Array{Dictionary{{text, text}}}));
    EXPECT_EQ(*throughFile(*restored), *restored) << "replacing once is enough";
    records.push_back(record.copyWithZone());
  }
  EXPECT_EQ(readWithSecondReader(propertyListOf(records)).size(), std::size(rows));
}

TEST(PropertyListWriter, NullsAreLeftOutOfAFileAndEverythingAroundThemIsWritten) {
  AllKinds record;
  record.array = Value::parse(R"([null,[null],{"a":null,"b":[1,null,2]},null,"x"])").get<Array>();
  EXPECT_EQ(Value(*throughFile(record)->array).dump(), R"([[],{"b":[1,2]},"x"])");
}

TEST(PropertyListWriter, OneAwkwardRecordNeverMakesAFileUnreadable) {
  auto awkward = std::make_shared<AllKinds>();
  awkward->text = std::string(1000, '\0');
  Value deep = Array();
  for (int level = 0; level < 1000; ++level) {
    Array outer;
    outer.push_back(std::move(deep));
    deep = std::move(outer);
  }
  awkward->array.emplace();
  awkward->array->push_back(std::move(deep));
  awkward->array->push_back(Value::binary({1, 2, 3}));
  awkward->array->push_back(Value(Value::value_t::discarded));
  auto plain = std::make_shared<AllKinds>();
  plain->text = "plain";
  const std::string file = propertyListOf({plain, awkward, plain});
  const ReadRecords list = readPropertyList(AllKinds::ownClass(), file);
  ASSERT_TRUE(list.result.ok()) << list.result.error;
  ASSERT_EQ(list.records.size(), 3U);
  EXPECT_EQ(*list.records[0], *plain);
  EXPECT_EQ(*list.records[2], *plain);
}

TEST(PropertyListWriter, IntegersAboveTheSignedRangeComeBackExactly) {
  AllKinds record;
  record.natural = std::numeric_limits<std::uint64_t>::max();
  record.whole = std::numeric_limits<std::int64_t>::min();
  record.array = Array{record.natural, record.whole, std::uint64_t{9223372036854775808U}};
  const auto restored = throughFile(record);
  EXPECT_EQ(*restored, record);
  EXPECT_TRUE(restored->array->at(0).is_number_unsigned());
  EXPECT_EQ(Value(*restored->array).dump(),
            "[18446744073709551615,-9223372036854775808,9223372036854775808]");
}

TEST(PropertyListWriter, TheTextComesInBlocksThatTogetherAreTheFile) {
  RecordList records;
  for (int index = 0; index < 3000; ++index) records.push_back(goldenRecords()[0]);
  std::vector<std::size_t> blocks;
  std::string text;
  const BlockConsumer consumer = [&](std::string_view block) {
    blocks.push_back(block.size());
    text += block;
    return true;
  };
  PropertyListWriter writer(consumer);
  for (const auto& record : records) ASSERT_TRUE(writer.add(*record));
  ASSERT_TRUE(writer.finish());
  EXPECT_EQ(text, propertyListOf(records));
  EXPECT_GT(blocks.size(), 10U);
  const ReadRecords list = readPropertyList(VelWbBaseVector::ownClass(), text);
  EXPECT_EQ(list.records.size(), records.size());
}

TEST(PropertyListWriter, AfterTheConsumerHasFailedNothingMoreIsProduced) {
  int calls = 0;
  const BlockConsumer consumer = [&calls](std::string_view) {
    ++calls;
    return false;
  };
  PropertyListWriter writer(consumer);
  bool went = true;
  for (int index = 0; index < 1000; ++index) went = writer.add(*goldenRecords()[0]);
  EXPECT_FALSE(went);
  EXPECT_FALSE(writer.finish());
  EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace VelWhiteBoard
