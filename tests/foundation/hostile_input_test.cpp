// Input that somebody made to hurt: it ends soon, takes memory in proportion, and leaves no mark.
#include <algorithm>
#include <cstddef>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/file_system.h"
#include "VelWhiteBoard/foundation/plist/property_list_reader.h"
#include "VelWhiteBoard/foundation/records/coder.h"
#include "VelWhiteBoard/foundation/records/model_mapping.h"
#include "VelWhiteBoard/vectors/base_vector.h"
#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/diagrams.h"
#include "VelWhiteBoard/vectors/media_lists.h"
#include "VelWhiteBoard/vectors/strokes.h"

#include "tests/support/counted_memory.h"
#include "tests/support/small_stack.h"

namespace VelWhiteBoard {
namespace {

constexpr int kDeep = 100'000;
constexpr std::string_view kHead = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
constexpr std::string_view kTop = "<plist version=\"1.0\"><array>";
constexpr std::string_view kBottom = "</array></plist>";

std::string repeated(std::string_view text, std::size_t count) {
  std::string result;
  result.reserve(text.size() * count);
  while (count-- > 0) result += text;
  return result;
}

std::string listWith(std::string_view elements) {
  std::string list(kHead);
  list.reserve(kHead.size() + kTop.size() + elements.size() + kBottom.size());
  list.append(kTop).append(elements).append(kBottom);
  return list;
}

struct Reading {
  PropertyListResult result;
  std::size_t records = 0;
  std::shared_ptr<Record> last;
};

/// Reads as the storage does: in blocks of the size that files come in. Keeps the last record only.
Reading readInBlocks(std::string_view text) {
  Reading reading;
  PropertyListReader reader(VelWbBaseVector::ownClass(), [&](std::shared_ptr<Record> record) {
    ++reading.records;
    reading.last = std::move(record);
  });
  while (!text.empty()) {
    const std::string_view block = text.substr(0, kFileBlockSize);
    text.remove_prefix(block.size());
    if (!reader.feed(block)) break;
  }
  reading.result = reader.finish();
  return reading;
}

/// Reads, and expects that the reader took no more than four times the text's size.
Reading readInBounds(const std::string& text) {
  constexpr std::size_t kTimes = 4;
  constexpr std::size_t kAnyway = 256 * 1024;  // what an empty list takes, blocks and tables
  const PeakMemory peak;
  Reading reading = readInBlocks(text);
  EXPECT_LE(peak.bytes(), kTimes * text.size() + kAnyway) << "for " << text.size() << " bytes";
  return reading;
}

TEST(HostileLists, NestingOfAHundredThousandLevelsCostsNoStack) {
  struct Row {
    const char* where;
    std::string before;
    std::string open;
    std::string close;
    std::string after;
  };
  const std::vector<Row> rows = {
      {"in the list", "", "<array>", "</array>", ""},
      {"dictionaries in the list", "", "<array><dict><key>a</key>", "</dict></array>", ""},
      {"under an unknown key", "<dict><key>zz</key>", "<array>", "</array>", "</dict>"},
      {"under a text", "<dict><key>type</key>", "<dict><key>a</key>", "</dict>", "</dict>"},
      {"in free points", "<dict><key>type</key><string>diagram</string><key>points</key><array>",
       "<array>", "</array>", "</array></dict>"},
      {"in a path", "<dict><key>x</key><real>1</real><key>path</key><array>", "<array>", "</array>",
       "</array></dict>"},
      {"in media items", "<dict><key>type</key><string>mediaList</string><key>list</key><array>",
       "<dict><key>list</key><array>", "</array></dict>", "</array></dict>"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.where);
    onSmallStack([&row] {
      // A dictionary's last key needs a value.
      const std::string inner = row.open.ends_with("</key>") ? "<true/>" : "";
      const Reading reading = readInBounds(listWith(row.before + repeated(row.open, kDeep) + inner +
                                                    repeated(row.close, kDeep) + row.after +
                                                    "<dict><key>ts</key><real>7</real></dict>"));
      EXPECT_TRUE(reading.result.ok()) << reading.result.error;
      ASSERT_NE(reading.last, nullptr);
      EXPECT_EQ(static_cast<const VelWbBaseVector&>(*reading.last).ts, 7);
    });
  }
}

TEST(HostileLists, NestingThatIsNeverClosedIsRefused) {
  onSmallStack([] {
    const std::string text = std::string(kHead) + std::string(kTop) + repeated("<array>", kDeep);
    EXPECT_FALSE(readInBounds(text).result.ok());
  });
}

TEST(HostileLists, EntityBombsAreRefusedAtTheirDeclaration) {
  const std::vector<std::pair<const char*, std::string>> rows = {
      {"internal", "<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;\">"},
      {"external", "<!ENTITY a SYSTEM \"file:///etc/passwd\">"},
      {"parameter", "<!ENTITY % p \"<!ENTITY a 'b'>\"> %p;"},
      {"external parameter", "<!ENTITY % p SYSTEM \"file:///etc/passwd\"> %p;"},
      {"unparsed", "<!NOTATION n SYSTEM \"n\"><!ENTITY a SYSTEM \"x\" NDATA n>"},
      {"defaults of attributes", "<!ATTLIST dict a CDATA \"b\">"},
  };
  for (const auto& [what, declarations] : rows) {
    const Reading reading = readInBlocks(
        std::string(kHead) + "<!DOCTYPE plist [" + declarations + "]>" + std::string(kTop) +
        "<dict><key>ID</key><string>x</string></dict>" + std::string(kBottom));
    EXPECT_FALSE(reading.result.ok()) << what;
    EXPECT_EQ(reading.records, 0U) << what;
    EXPECT_EQ(reading.result.line, 2U) << what;
  }
}

TEST(HostileLists, EveryPrefixOfARealFileIsRefusedAndGivesTheRecordsBeforeItsEnd) {
  std::ifstream file(VELWB_TEST_DATA_DIR "/property_lists/records.plist", std::ios::binary);
  const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  const std::size_t end = text.rfind("</plist>") + std::string_view("</plist>").size();
  ASSERT_GT(text.size(), 1000U);
  std::size_t last = 0;
  for (std::size_t size = 0; size < end; ++size) {
    const Reading reading = readInBlocks(std::string_view(text).substr(0, size));
    EXPECT_FALSE(reading.result.ok()) << size;
    EXPECT_GE(reading.records, last) << size;
    last = reading.records;
  }
  const Reading whole = readInBlocks(text);
  EXPECT_TRUE(whole.result.ok()) << whole.result.error;
  EXPECT_EQ(last, whole.records);
}

TEST(HostileLists, AHugeTextTakesMemoryInProportion) {
  constexpr std::size_t kHuge = 100'000'000;
  const std::vector<std::pair<const char*, std::pair<std::string, std::string>>> rows = {
      {"a text", {"<dict><key>ID</key><string>", "</string></dict>"}},
      {"an unknown key", {"<dict><key>", "</key><true/></dict>"}},
      {"a comment", {"<!--", "--><dict/>"}},
  };
  for (const auto& [what, around] : rows) {
    SCOPED_TRACE(what);
    const Reading reading =
        readInBounds(listWith(around.first + std::string(kHuge, 'x') + around.second));
    EXPECT_TRUE(reading.result.ok()) << reading.result.error;
    EXPECT_EQ(reading.records, 1U);
  }
}

TEST(HostileLists, AHugeNumberIsReadOrRefused) {
  constexpr std::size_t kHuge = 10'000'000;
  const std::string digits(kHuge, '9');
  EXPECT_TRUE(
      readInBounds(listWith("<dict><key>ts</key><real>" + digits + "</real></dict>")).result.ok());
  readInBounds(listWith("<dict><key>ts</key><integer>" + digits + "</integer></dict>"));
}

TEST(HostileLists, AMillionKeysInOneDictionaryTakeMemoryInProportion) {
  constexpr int kKeys = 1'000'000;
  const std::vector<std::pair<const char*, std::string>> values = {
      {"scalars", "<true/>"}, {"lists", "<array/>"}, {"dictionaries", "<dict/>"}};
  for (const auto& [what, value] : values) {
    SCOPED_TRACE(what);
    std::string members;
    for (int key = 0; key < kKeys; ++key) {
      members += "<key>k" + std::to_string(key) + "</key>" + value;
    }
    const Reading reading =
        readInBounds(listWith("<dict>" + members + "<key>type</key><string>text</string>" +
                              "<key>text</key><string>hello</string></dict>"));
    EXPECT_TRUE(reading.result.ok()) << reading.result.error;
    const auto* words = recordCast<VelWbVecText>(reading.last.get());
    ASSERT_NE(words, nullptr);
    EXPECT_EQ(words->text, "hello");
  }
}

TEST(HostileLists, OfAKeyThatOccursAMillionTimesTheLastValueCounts) {
  constexpr int kTimes = 1'000'000;
  const Reading reading =
      readInBounds(listWith("<dict>" + repeated("<key>ID</key><true/>", kTimes) +
                            "<key>ID</key><string>last</string></dict>"));
  EXPECT_TRUE(reading.result.ok()) << reading.result.error;
  EXPECT_EQ(static_cast<const VelWbBaseVector&>(*reading.last).ID, "last");
}

TEST(HostileLists, AMillionEmptyPositionsTakeMemoryInProportion) {
  constexpr int kPositions = 1'000'000;
  const Reading reading =
      readInBounds(listWith("<dict><key>x</key><real>1</real><key>path</key><array>" +
                            repeated("<array/>", kPositions) + "</array></dict>"));
  EXPECT_TRUE(reading.result.ok()) << reading.result.error;
  EXPECT_EQ(recordCast<VelWbVecPoint>(reading.last.get())->path->size(), 1'000'000U);
}

TEST(HostileLists, AnyElementUnderAnyPropertyLeavesARecord) {
  const std::vector<std::string> elements = {
      "<true/>",
      "<integer>-1</integer>",
      "<real>nan</real>",
      "<real>-inf</real>",
      "<string/>",
      "<string>1e999</string>",
      "<date>x</date>",
      "<data>x</data>",
      "<array/>",
      "<dict/>",
      "<array><dict><key>a</key><array/></dict><string>x</string><array><true/></array></array>",
      "<dict><key>a</key><dict/></dict>"};
  for (const RecordClass* each :
       {&VelWbVecLine::ownClass(), &VelWbVecCircle::ownClass(), &VelWbVecVideo::ownClass(),
        &VelWbVecText::ownClass(), &VelWbVecMediaList::ownClass()}) {
    for (const Property& property : each->properties) {
      for (const std::string& element : elements) {
        const Reading reading = readInBlocks(
            listWith("<dict><key>" + std::string(property.name) + "</key>" + element + "</dict>"));
        EXPECT_TRUE(reading.result.ok()) << property.name << " " << element;
        EXPECT_EQ(reading.records, 1U) << property.name << " " << element;
      }
    }
  }
}

TEST(HostileJSON, NestingOfAHundredThousandLevelsCostsNoStack) {
  onSmallStack([] {
    for (const char* key : {"points", "path", "list", "zz", "ID"}) {
      const std::string open = std::string("{\"type\":\"diagram\",\"") + key + "\":";
      const std::string closed = open + repeated("[", kDeep) + repeated("]", kDeep) + "}";
      VelWbVecDiagram expected;
      expected.type = "diagram";
      const auto withArrays = recordWithJSON(VelWbBaseVector::ownClass(), closed);
      ASSERT_NE(withArrays, nullptr) << key;
      if (key == std::string_view("path")) expected.path.emplace();  // its one position is none
      EXPECT_EQ(*withArrays, expected) << key;
      expected.path.reset();
      const std::string objects =
          open + repeated("{\"a\":", kDeep) + "1" + repeated("}", kDeep) + "}";
      const auto withObjects = recordWithJSON(VelWbBaseVector::ownClass(), objects);
      ASSERT_NE(withObjects, nullptr) << key;
      EXPECT_EQ(*withObjects, expected) << key;
      EXPECT_EQ(recordWithJSON(VelWbBaseVector::ownClass(), open + repeated("[", kDeep)), nullptr);
    }
    EXPECT_TRUE(
        recordsWithJSON(VelWbBaseVector::ownClass(), repeated("[", kDeep) + repeated("]", kDeep))
            .empty());
  });
}

TEST(HostileJSON, AMillionKeysInOneObjectEnd) {
  std::string text = "{";
  for (int key = 0; key < 1'000'000; ++key) text += "\"k" + std::to_string(key) + "\":[],";
  text += "\"type\":\"text\",\"text\":\"hello\"}";
  const auto record = recordWithJSON(VelWbBaseVector::ownClass(), text);
  const auto* words = recordCast<VelWbVecText>(record.get());
  ASSERT_NE(words, nullptr);
  EXPECT_EQ(words->text, "hello");
}

TEST(HostileJSON, ATextOfAHundredMillionBytesIsKept) {
  const auto record = recordWithJSON(VelWbBaseVector::ownClass(),
                                     "{\"ID\":\"" + std::string(100'000'000, 'x') + "\"}");
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(static_cast<const VelWbBaseVector&>(*record).ID->size(), 100'000'000U);
}

TEST(HostileArchives, NestingOfAHundredThousandLevelsCostsNoStack) {
  onSmallStack([] {
    for (const char* head : {"\x81", "\xa1\x61\x61", "\x9f", "\xc1", "\x5f", "\x7f"}) {
      EXPECT_TRUE(Coder(repeated(head, kDeep)).values().empty());
      EXPECT_TRUE(Coder("\xa1\x61\x61" + repeated(head, kDeep) + "\xf6").values().empty());
    }
  });
}

TEST(HostileArchives, SizesThatAreNotThereAreNotBelieved) {
  const PeakMemory peak;
  for (const char* head :
       {"\x9b\x7f\xff\xff\xff\xff\xff\xff\xff", "\xbb\x7f\xff\xff\xff\xff\xff\xff\xff",
        "\x7b\x7f\xff\xff\xff\xff\xff\xff\xff", "\x9a\x7f\xff\xff\xff"}) {
    EXPECT_TRUE(Coder(std::string("\xa1\x61\x61") + head).values().empty());
  }
  EXPECT_LE(peak.bytes(), 64U * 1024U);
}

}  // namespace
}  // namespace VelWhiteBoard
