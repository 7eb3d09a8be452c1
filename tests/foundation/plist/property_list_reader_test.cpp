// Records from property lists: what is ordinary XML, what is skipped, what each value gives.
#include "VelWhiteBoard/foundation/plist/property_list_reader.h"

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

#include "VelWhiteBoard/vectors/base_vector.h"
#include "VelWhiteBoard/vectors/diagrams.h"

#include "tests/support/all_kinds.h"
#include "tests/support/print_records.h"
#include "tests/support/property_lists.h"

namespace VelWhiteBoard {
namespace {

constexpr const char* kPlain = "<dict><key>text</key><string>a</string></dict>";

/// The texts of the records of a list of `AllKinds`, or what is wrong with the list.
std::string textsOf(std::string_view list, std::size_t blockSize = 0) {
  const ReadRecords read = readPropertyList(AllKinds::ownClass(), list, blockSize);
  if (!read.result.ok()) return "error: " + read.result.error;
  std::string texts;
  for (const auto& record : read.records) {
    if (!texts.empty()) texts += ',';
    texts += static_cast<const AllKinds&>(*record).text.value_or("-");
  }
  return texts;
}

std::shared_ptr<AllKinds> allKinds(const std::string& members) {
  return std::static_pointer_cast<AllKinds>(
      recordWithXML(AllKinds::ownClass(), "<dict>" + members + "</dict>"));
}

std::string classOf(const std::string& members) {
  const auto record = recordWithXML(VelWbBaseVector::ownClass(), "<dict>" + members + "</dict>");
  return record ? std::string(record->recordClass().name) : "none";
}

TEST(PropertyListReader, WhatIsOrdinaryXMLIsAccepted) {
  const std::string head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
  const std::string doctype =
      "<!DOCTYPE plist PUBLIC \"-//X//DTD PLIST 1.0//EN\" \"http://www.example.com/list.dtd\">";
  const std::string list =
      "<plist version=\"1.0\"><array>" + std::string(kPlain) + "</array></plist>";
  const std::string rows[] = {
      list,
      head + list,
      head + "\n" + doctype + "\r\n" + list + "\n\n \t",
      "<?xml version='1.0'?>" + list,
      "\xEF\xBB\xBF" + head + list,
      "<!-- a --><?tool x?>" + list + "<!-- b --><?tool y?>",
      "<!DOCTYPE plist>" + list,
      "<!DOCTYPE plist [ <!ELEMENT plist ANY> ]>" + list,
      "<plist><array  >\n\t<dict>\r\n<key >text</key ><!-- a -->\n<string>a</string>\n</dict>\n"
      "</array>\n</plist>",
      "<plist a='1' b=\"2\"><array c=''><dict d='&lt;'><key>text</key><string e='&#10;'>a</string>"
      "</dict></array></plist>",
      "<plist><array><dict><key>text</key><string><![CDATA[a]]></string></dict></array></plist>",
      "<plist><array><dict><key>text</key><string>&#97;</string></dict></array></plist>",
      "<plist><array><dict><key>&#x74;e<!-- x --><![CDATA[x]]>t</key><string>&#x61;</string>"
      "</dict></array></plist>",
      "<plist><array><dict><key>text</key><string><!-- b -->a<?c d?></string></dict></array>"
      "</plist>",
  };
  for (const std::string& row : rows) {
    for (const std::size_t blockSize : {0U, 1U, 5U}) EXPECT_EQ(textsOf(row, blockSize), "a") << row;
  }
}

TEST(PropertyListReader, ADeclarationMayNameAnotherEncoding) {
  EXPECT_EQ(textsOf("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><plist><array><dict>"
                    "<key>text</key><string>\xE9</string></dict></array></plist>"),
            "\xC3\xA9");
}

TEST(PropertyListReader, AnElementThatIsNoDictionaryIsSkippedWhateverItIs) {
  EXPECT_EQ(textsOf(listWith(std::string("<string>x</string><integer>1</integer>") + kPlain +
                             "<real>1.5</real><true/><false/><string/><date>2020-01-01T00:00:00Z"
                             "</date><data>AAAA</data><array>" +
                             kPlain + "<dict><key>a</key><array><dict/></array></dict></array>" +
                             kPlain + "<array/><dict/>")),
            "a,a,-");
}

TEST(PropertyListReader, AnEmptyListHasNoRecords) {
  for (const char* list : {"<plist><array/></plist>", "<plist><array></array></plist>",
                           "<plist> <array> <!-- --> </array> </plist>"}) {
    const ReadRecords read = readPropertyList(AllKinds::ownClass(), list);
    EXPECT_TRUE(read.result.ok()) << list << ": " << read.result.error;
    EXPECT_TRUE(read.records.empty());
  }
}

TEST(PropertyListReader, TextComesBitForBit) {
  const struct {
    const char* xml;
    std::string_view text;
  } rows[] = {
      {"<string></string>", ""},
      {"<string/>", ""},
      {"<string>  </string>", "  "},
      {"<string>\n\t</string>", "\n\t"},
      {"<string>a\r\nb\rc</string>", "a\nb\nc"},  // XML's own rule for line ends
      {"<string>a&#13;&#10;b&#xD;c</string>", "a\r\nb\rc"},
      {"<string>&lt;&gt;&amp;&quot;&apos;</string>", "<>&\"'"},
      {"<string>a<![CDATA[<b>&amp;]]>c</string>", "a<b>&amp;c"},
      {"<string><![CDATA[]]]]><![CDATA[>]]></string>", "]]>"},
      {"<string>]]&gt;</string>", "]]>"},
      {"<string>&#x1F600;&#128512;</string>", "\xF0\x9F\x98\x80\xF0\x9F\x98\x80"},
      {"<string>\xF0\x9F\x98\x80</string>", "\xF0\x9F\x98\x80"},
  };
  for (const auto& row : rows) {
    const auto record = allKinds(std::string("<key>text</key>") + row.xml);
    ASSERT_TRUE(record) << row.xml;
    EXPECT_EQ(record->text, row.text) << row.xml;
  }
}

TEST(PropertyListReader, NumbersAreReadInEverySpellingThatAListMayHave) {
  const struct {
    const char* xml;
    double real;
  } rows[] = {
      {"<real>0.1</real>", 0.1},
      {"<real>-1.5E+3</real>", -1500},
      {"<real>+2</real>", 2},
      {"<real> 2.5\n</real>", 2.5},
      {"<real>2<!-- x -->5</real>", 25},
      {"<real>&#50;</real>", 2},
      {"<integer>7</integer>", 7},
      {"<integer>+7</integer>", 7},
      {"<integer>\t-7 </integer>", -7},
      {"<integer>007</integer>", 7},
      {"<integer>18446744073709551615</integer>", 18446744073709551615.0},
      {"<integer>100000000000000000000</integer>", 1e20},
      {"<real>1e-400</real>", 0},
      {"<true/>", 1},
      {"<true></true>", 1},
      {"<true> </true>", 1},
      {"<false/>", 0},
      {"<string>12</string>", 12},
      {"<string>+12</string>", 0},
      {"<date>2020-01-01T00:00:00Z</date>", 0},
      {"<data>AAAA</data>", 0},
      {"<array/>", 0},
      {"<dict/>", 0},
  };
  for (const auto& row : rows) {
    const auto record = allKinds(std::string("<key>real</key>") + row.xml);
    ASSERT_TRUE(record) << row.xml;
    EXPECT_EQ(record->real, row.real) << row.xml;
  }
  EXPECT_TRUE(std::isnan(allKinds("<key>real</key><real>nan</real>")->real));
  EXPECT_TRUE(std::isinf(allKinds("<key>real</key><real>-inf</real>")->real));
}

TEST(PropertyListReader, ARealNumberBeyondTheRangeOfADoubleLeavesTheDefault) {
  const auto record = allKinds(
      "<key>text</key><string>a</string><key>real</key><real>1e400</real>"
      "<key>path</key><array><array><real>1</real><real>-1e400</real></array>"
      "<array><real>1</real></array></array>");
  ASSERT_TRUE(record);
  EXPECT_EQ(record->real, 0.0);
  EXPECT_EQ(record->text, "a");
  EXPECT_EQ(*record->path, (Path{{1}}));
}

TEST(PropertyListReader, OfAKeyThatOccursTwiceInsideAValueTheLastCountsUsefulOrNot) {
  const auto record = allKinds(
      "<key>array</key><array><dict><key>a</key><string>one</string><key>a</key><date/>"
      "<key>b</key><integer>1</integer></dict></array>");
  ASSERT_TRUE(record && record->array);
  EXPECT_EQ(Value(*record->array).dump(), R"([{"b":1}])");
}

TEST(PropertyListReader, IntegersAreExactOverBothRanges) {
  const auto record = allKinds(
      "<key>whole</key><integer>-9223372036854775808</integer>"
      "<key>natural</key><integer>18446744073709551615</integer>");
  EXPECT_EQ(record->whole, INT64_MIN);
  EXPECT_EQ(record->natural, UINT64_MAX);
}

TEST(PropertyListReader, OfAKeyThatOccursTwiceTheLastValueCounts) {
  const struct {
    const char* members;
    const char* json;
  } rows[] = {
      {"<key>real</key><real>1</real><key>real</key><real>2</real>", R"({"real":2})"},
      {"<key>real</key><real>1</real><key>real</key><string>x</string>", "{}"},
      {"<key>real</key><real>1</real><key>real</key><dict/>", "{}"},
      {"<key>text</key><string>a</string><key>text</key><date/>", "{}"},
      {"<key>text</key><string>a</string><key>text</key><true/>", "{}"},
      {"<key>path</key><array><array/></array><key>path</key><integer>1</integer>", "{}"},
      {"<key>array</key><array><true/></array><key>array</key><dict/>", "{}"},
      {"<key>list</key><array><dict/></array><key>list</key><data/>", "{}"},
      {"<key>array</key><array><dict><key>a</key><true/><key>a</key><false/></dict></array>",
       R"({"array":[{"a":false}]})"},
  };
  for (const auto& row : rows) {
    const auto record = allKinds(row.members);
    ASSERT_TRUE(record) << row.members;
    EXPECT_EQ(*record, *modelWithJSON<AllKinds>(row.json)) << row.members;
  }
  EXPECT_EQ(classOf("<key>type</key><string>line</string><key>type</key><string>text</string>"),
            "VelWbVecText");
  EXPECT_EQ(classOf("<key>type</key><string>line</string><key>type</key><true/>"),
            "VelWbBaseVector");
}

TEST(PropertyListReader, TheDecodingRuleChoosesTheClassOfEachRecord) {
  const struct {
    const char* members;
    const char* name;
  } rows[] = {
      {"<key>type</key><string>line</string>", "VelWbVecLine"},
      {"<key>type</key><string>diagram</string>", "VelWbVecDiagram"},
      {"<key>type</key><string>diagram</string><key>radiusX</key><dict/>", "VelWbVecCircle"},
      {"<key>radiusX</key><data/><key>type</key><string>diagram</string>", "VelWbVecCircle"},
      {"<key>type</key><integer>5</integer>", "VelWbBaseVector"},
      {"<key>type</key><array><string>line</string></array>", "VelWbBaseVector"},
      {"<key>type</key><array><string>line</string></array><key>w</key><true/>", "VelWbVecSquare"},
      {"<key>w</key><date/>", "VelWbVecSquare"},
      {"<key>x</key><array/>", "VelWbVecPoint"},
      {"<key>x</key><array/><key>w</key><dict/>", "VelWbVecSquare"},
      {"<key>W</key><true/>", "VelWbBaseVector"},
      {"<key>type</key><string> line</string>", "VelWbBaseVector"},
      {"", "VelWbBaseVector"},
  };
  for (const auto& row : rows) EXPECT_EQ(classOf(row.members), row.name) << row.members;
}

TEST(PropertyListReader, KeysMayComeInAnyOrder) {
  // Sorted, as some tools write them: the type comes behind what depends on it.
  const std::string sorted =
      "<key>ID</key><string>a</string>"
      "<key>offset</key><array><dict><key>k</key><integer>1</integer></dict></array>"
      "<key>path</key><array><array><real>1</real><integer>2</integer></array>"
      "<array><true/></array><string>x</string><array/></array>"
      "<key>points</key><array/>"
      "<key>pixel</key><string>5</string>"
      "<key>type</key><string>line</string>";
  const auto record = recordWithXML(VelWbBaseVector::ownClass(), "<dict>" + sorted + "</dict>");
  ASSERT_TRUE(record);
  EXPECT_EQ(*record,
            *modelWithJSON<VelWbVecLine>(
                R"({"type":"line","ID":"a","path":[[1.0,2],[]],"offset":[{"k":1}],"pixel":5})"));
  EXPECT_EQ(record->recordClass().name, "VelWbVecLine");

  // "path" is a path for a stroke, and names nothing in a command.
  const auto command = recordWithXML(
      VelWbBaseVector::ownClass(),
      "<dict><key>path</key><array><array><real>1</real></array></array><key>rmID</key>"
      "<string>r</string><key>type</key><string>remove</string></dict>");
  ASSERT_TRUE(command);
  EXPECT_EQ(command->recordClass().name, "VelWbVecRemove");
}

TEST(PropertyListReader, ValuesInPlacesWhereNoPropertyTakesThemAreReadOver) {
  const auto record = allKinds(
      "<key>stray</key><dict><key>a</key><array><dict/><date/><data/></array></dict>"
      "<key>text</key><dict><key>text</key><string>inner</string></dict>"
      "<key>path</key><dict><key>path</key><array/></dict>"
      "<key>array</key><array><date/><data>AAAA</data><integer>1</integer></array>"
      "<key>real</key><real>2</real>");
  ASSERT_TRUE(record);
  EXPECT_EQ(modelToJSONString(*record),
            R"({"real":2,"whole":0,"natural":0,"flag":false,"array":[1]})");
}

}  // namespace
}  // namespace VelWhiteBoard
