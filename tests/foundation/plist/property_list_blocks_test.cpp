// Property lists in pieces, deeply nested, or huge.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/plist/property_list_reader.h"
#include "VelWhiteBoard/vectors/base_vector.h"
#include "VelWhiteBoard/vectors/diagrams.h"

#include "tests/support/all_kinds.h"
#include "tests/support/print_records.h"
#include "tests/support/property_lists.h"

namespace VelWhiteBoard {
namespace {

constexpr const char* kPlainDict = "<dict><key>text</key><string>a</string></dict>";

std::shared_ptr<AllKinds> kindsOf(const std::string& members) {
  return std::static_pointer_cast<AllKinds>(
      recordWithXML(AllKinds::ownClass(), "<dict>" + members + "</dict>"));
}

std::string arrays(std::size_t depth, const std::string& inside = "") {
  std::string text;
  for (std::size_t level = 0; level < depth; ++level) text += "<array>";
  text += inside;
  for (std::size_t level = 0; level < depth; ++level) text += "</array>";
  return text;
}

TEST(PropertyListBlocks, NestingOfAHundredThousandLevelsIsReadOver) {
  constexpr std::size_t kLevels = 100'000;
  const std::string deep = arrays(kLevels);
  std::string dictionaries;
  for (std::size_t level = 0; level < kLevels; ++level) dictionaries += "<dict><key>a</key>";
  dictionaries += "<true/>";
  for (std::size_t level = 0; level < kLevels; ++level) dictionaries += "</dict>";
  const std::string rows[] = {
      deep,
      "<dict><key>array</key>" + deep + "<key>text</key><string>a</string></dict>",
      "<dict><key>path</key>" + deep + "<key>text</key><string>a</string></dict>",
      "<dict><key>stray</key>" + deep + "<key>text</key><string>a</string></dict>",
      "<dict><key>list</key>" + deep + "<key>text</key><string>a</string></dict>",
      "<dict><key>stray</key>" + dictionaries + "<key>text</key><string>a</string></dict>",
      "<dict><key>array</key><array>" + dictionaries +
          "</array><key>text</key><string>a</string></dict>",
  };
  for (const std::string& row : rows) {
    const ReadRecords read = readPropertyList(AllKinds::ownClass(), listWith(row + kPlainDict));
    ASSERT_TRUE(read.result.ok()) << read.result.error << row.substr(0, 50);
    for (const auto& record : read.records) {
      EXPECT_EQ(static_cast<const AllKinds&>(*record).text, "a");
      EXPECT_FALSE(static_cast<const AllKinds&>(*record).array.has_value());
    }
    EXPECT_GE(read.records.size(), 1U);
  }
  const ReadRecords open = readPropertyList(
      AllKinds::ownClass(), "<plist><array><dict><key>array</key>" + deep.substr(0, kLevels * 7));
  EXPECT_FALSE(open.result.ok());
}

TEST(PropertyListBlocks, BlocksOfAnySizeGiveTheSameRecords) {
  std::ostringstream contents;
  contents << std::ifstream(VELWB_TEST_DATA_DIR "/property_lists/records.plist").rdbuf();
  const std::string golden = contents.str();
  const ReadRecords whole = readPropertyList(VelWbBaseVector::ownClass(), golden);
  ASSERT_TRUE(whole.result.ok()) << whole.result.error;
  ASSERT_EQ(whole.records.size(), 5U);
  for (const std::size_t blockSize : {1U, 2U, 3U, 7U, 64U, 1000U}) {
    const ReadRecords read = readPropertyList(VelWbBaseVector::ownClass(), golden, blockSize);
    ASSERT_TRUE(read.result.ok()) << blockSize << ": " << read.result.error;
    ASSERT_EQ(read.records.size(), whole.records.size());
    for (std::size_t index = 0; index < whole.records.size(); ++index) {
      EXPECT_EQ(*read.records[index], *whole.records[index]) << blockSize;
    }
  }
}

TEST(PropertyListBlocks, AHugeTextArrivesWhole) {
  const std::string huge(5'000'000, 'x');
  const auto record = kindsOf("<key>text</key><string>" + huge + "&amp;" + huge + "</string>");
  ASSERT_TRUE(record);
  EXPECT_EQ(record->text, huge + "&" + huge);
}

TEST(PropertyListBlocks, RecordsArriveAsSoonAsTheyAreComplete) {
  std::size_t count = 0;
  PropertyListReader reader(AllKinds::ownClass(), [&count](std::shared_ptr<Record>) { ++count; });
  EXPECT_TRUE(reader.feed("<plist><array><dict>"));
  EXPECT_EQ(count, 0U);
  EXPECT_TRUE(reader.feed("</dict><"));
  EXPECT_EQ(count, 1U);
  EXPECT_TRUE(reader.feed(""));
  EXPECT_TRUE(reader.feed("dict/></array></plist>"));
  EXPECT_EQ(count, 2U);
  EXPECT_TRUE(reader.finish().ok());
}

TEST(PropertyListBlocks, WhatTheConsumerThrowsComesOutOfFeed) {
  PropertyListReader reader(AllKinds::ownClass(), [](const std::shared_ptr<Record>&) {
    throw std::runtime_error("enough");
  });
  EXPECT_THROW(reader.feed("<plist><array><dict/><dict/>"), std::runtime_error);
}

}  // namespace
}  // namespace VelWhiteBoard
