// What is no property list of records, and where the reader says that it goes wrong.
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/plist/property_list_reader.h"
#include "VelWhiteBoard/vectors/base_vector.h"

#include "tests/support/all_kinds.h"
#include "tests/support/property_lists.h"

namespace VelWhiteBoard {
namespace {

using std::string_view_literals::operator""sv;

PropertyListResult resultOf(std::string_view list, std::size_t blockSize = 0) {
  return readPropertyList(AllKinds::ownClass(), list, blockSize).result;
}

void expectRefused(std::string_view list) {
  const PropertyListResult whole = resultOf(list);
  EXPECT_FALSE(whole.ok()) << list;
  EXPECT_FALSE(static_cast<bool>(whole));
  EXPECT_GE(whole.line, 1U) << list;
  EXPECT_LE(whole.byte, list.size()) << list;
  for (const std::size_t blockSize : {1U, 3U}) {
    const PropertyListResult inBlocks = resultOf(list, blockSize);
    EXPECT_EQ(inBlocks.error, whole.error) << list;
    EXPECT_EQ(inBlocks.line, whole.line) << list;
    EXPECT_EQ(inBlocks.column, whole.column) << list;
    EXPECT_EQ(inBlocks.byte, whole.byte) << list;
  }
}

TEST(PropertyListRefusals, ADocumentThatIsNoListOfRecords) {
  for (const auto document : {""sv,
                              " "sv,
                              "\n"sv,
                              "rubbish"sv,
                              "{}"sv,
                              "bplist00"sv,
                              "<"sv,
                              "<plist"sv,
                              "<plist>"sv,
                              "<plist/>"sv,
                              "<plist></plist>"sv,
                              "<array/>"sv,
                              "<html/>"sv,
                              "<Plist><array/></Plist>"sv,
                              "<plist><dict/></plist>"sv,
                              "<plist><string>a</string></plist>"sv,
                              "<plist><integer>1</integer></plist>"sv,
                              "<plist><true/></plist>"sv,
                              "<plist><key>a</key></plist>"sv,
                              "<plist><array/><array/></plist>"sv,
                              "<plist><array/><dict/></plist>"sv,
                              "<plist><array/><string/></plist>"sv,
                              "<plist><array/>"sv,
                              "<plist><array></plist>"sv,
                              "<plist><array/></plist>x"sv,
                              "<plist><array/></plist><plist><array/></plist>"sv,
                              "<plist><array/></plist>\0"sv,
                              "x<plist><array/></plist>"sv,
                              " <?xml version=\"1.0\"?><plist><array/></plist>"sv,
                              "<plist><plist><array/></plist></plist>"sv}) {
    expectRefused(document);
  }
}

TEST(PropertyListRefusals, AnElementThatNoPropertyListHasWhereverItStands) {
  for (const auto element :
       {"<foo/>"sv, "<Array/>"sv, "<int>1</int>"sv, "<null/>"sv, "<plist/>"sv, "<x:dict/>"sv}) {
    expectRefused(listWith(element));
    const struct {
      const char* before;
      const char* after;
    } places[] = {
        {"<array>", "</array>"},
        {"<dict><key>text</key>", "</dict>"},
        {"<dict><key>array</key><array>", "</array></dict>"},
        {"<dict><key>path</key><array>", "</array></dict>"},
        {"<dict><key>path</key><array><array>", "</array></array></dict>"},
        {"<dict><key>stray</key><dict><key>a</key>", "</dict></dict>"},
    };
    for (const auto& place : places) {
      ASSERT_TRUE(resultOf(listWith(place.before + std::string("<true/>") + place.after)));
      expectRefused(listWith(place.before + std::string(element) + place.after));
    }
  }
}

TEST(PropertyListRefusals, AKeyWithoutAValueOrAValueWithoutAKey) {
  for (const auto element :
       {"<dict><key>a</key></dict>"sv, "<dict><key>a</key><key>b</key><true/></dict>"sv,
        "<dict><true/></dict>"sv, "<dict><key>a</key><true/><true/></dict>"sv,
        "<dict><array/></dict>"sv, "<dict><dict/></dict>"sv, "<key>a</key>"sv,
        "<array><key>a</key></array>"sv, "<array><dict><key>a</key></dict></array>"sv,
        "<dict><key>stray</key><dict><true/></dict></dict>"sv,
        "<dict><key>array</key><array><dict><key>a</key></dict></array></dict>"sv,
        "<dict><key>array</key><array><key>a</key></array></dict>"sv,
        "<dict><key>path</key><array><key>a</key></array></dict>"sv}) {
    expectRefused(listWith(element));
  }
}

TEST(PropertyListRefusals, ANumberThatIsNone) {
  for (const auto number : {"<integer></integer>"sv,
                            "<integer/>"sv,
                            "<integer> </integer>"sv,
                            "<integer>abc</integer>"sv,
                            "<integer>12abc</integer>"sv,
                            "<integer>1.5</integer>"sv,
                            "<integer>1e3</integer>"sv,
                            "<integer>0x10</integer>"sv,
                            "<integer>+-1</integer>"sv,
                            "<integer>--1</integer>"sv,
                            "<integer>1 2</integer>"sv,
                            "<integer>-</integer>"sv,
                            "<integer>1,000</integer>"sv,
                            "<integer>\xD9\xA1</integer>"sv,
                            "<real></real>"sv,
                            "<real/>"sv,
                            "<real>abc</real>"sv,
                            "<real>1.5x</real>"sv,
                            "<real>1,5</real>"sv,
                            "<real>0x1p3</real>"sv,
                            "<real>1e</real>"sv,
                            "<real>--1</real>"sv,
                            "<real>.</real>"sv,
                            "<real>1 2</real>"sv,
                            "<real>nan(1)</real>"sv,
                            "<true>x</true>"sv,
                            "<false>false</false>"sv}) {
    const std::string xml(number);
    expectRefused(listWith(xml));
    expectRefused(listWith("<array>" + xml + "</array>"));
    expectRefused(listWith("<dict><key>real</key>" + xml + "</dict>"));
    expectRefused(listWith("<dict><key>stray</key>" + xml + "</dict>"));
    expectRefused(listWith("<dict><key>array</key><array>" + xml + "</array></dict>"));
    expectRefused(
        listWith("<dict><key>path</key><array><array>" + xml + "</array></array></dict>"));
  }
}

TEST(PropertyListRefusals, TextOutsideOfTheElementsThatHaveIt) {
  for (const auto list :
       {"<plist>x<array/></plist>"sv, "<plist><array/>x</plist>"sv,
        "<plist><array>x</array></plist>"sv, "<plist><array><dict>x</dict></array></plist>"sv,
        "<plist><array><dict><key>a</key>x<true/></dict></array></plist>"sv,
        "<plist><array><array>x</array></array></plist>"sv,
        "<plist><array>&#120;</array></plist>"sv, "<plist><array><![CDATA[x]]></array></plist>"sv,
        "<plist><array>\xC2\xA0</array></plist>"sv}) {
    expectRefused(list);
  }
}

TEST(PropertyListRefusals, AnElementInsideAText) {
  for (const auto element :
       {"<string><string/></string>"sv, "<string>a<true/>b</string>"sv, "<true><array/></true>"sv,
        "<integer><real>1</real></integer>"sv, "<date><dict/></date>"sv, "<data><key/></data>"sv,
        "<dict><key>a<string/></key><true/></dict>"sv}) {
    expectRefused(listWith(element));
  }
}

TEST(PropertyListRefusals, Entities) {
  const std::string list = "<plist><array><string>&e;</string></array></plist>";
  const std::string plain = "<plist><array><string>e</string></array></plist>";
  for (const std::string& document : {
           list,
           "<!DOCTYPE plist>" + list,
           "<!DOCTYPE plist SYSTEM \"list.dtd\">" + list,
           "<!DOCTYPE plist PUBLIC \"-//X//DTD PLIST 1.0//EN\" \"http://example.com/x.dtd\">" +
               list,
           "<!DOCTYPE plist [<!ENTITY e \"x\">]>" + list,
           "<!DOCTYPE plist [<!ENTITY e \"x\">]>" + plain,
           "<!DOCTYPE plist [<!ENTITY e SYSTEM \"file:///etc/passwd\">]>" + list,
           "<!DOCTYPE plist [<!ENTITY % p SYSTEM \"file:///etc/passwd\"> %p;]>" + plain,
           "<!DOCTYPE plist [%p;]>" + list,
           "<!DOCTYPE plist [<!ENTITY % p \"<!ENTITY e 'x'>\"> %p;]>" + list,
           "<!DOCTYPE plist [<!ENTITY a \"xxxxxxxxxx\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;\">"
           "<!ENTITY c \"&b;&b;&b;&b;&b;&b;\"><!ENTITY e \"&c;&c;&c;&c;&c;\">]>" +
               list,
           "<!DOCTYPE plist [<!ENTITY e \"&e;\">]>" + list,
       }) {
    expectRefused(document);
  }
  // The five of XML itself are no entities of the document.
  EXPECT_TRUE(
      resultOf("<!DOCTYPE plist SYSTEM \"list.dtd\"><plist><array><string>&lt;&gt;&amp;"
               "&quot;&apos;</string></array></plist>"));
}

TEST(PropertyListRefusals, BytesAndCharactersThatXMLDoesNotHave) {
  for (const auto text : {"\xFF"sv,
                          "\xC3"sv,
                          "\x80"sv,
                          "\xC0\x80"sv,
                          "\xED\xA0\x80"sv,
                          "\xF4\x90\x80\x80"sv,
                          "\xE2\x82<"sv,
                          "\0"sv,
                          "\x01"sv,
                          "\x1F"sv,
                          "\xEF\xBF\xBE"sv,
                          "&#0;"sv,
                          "&#1;"sv,
                          "&#x1F;"sv,
                          "&#xD800;"sv,
                          "&#xFFFE;"sv,
                          "&#x110000;"sv,
                          "&#;"sv,
                          "&#x;"sv,
                          "&"sv,
                          "& "sv,
                          "&amp"sv,
                          "<"sv,
                          "]]>"sv,
                          "<!-- -- -->"sv,
                          "<![CDATA["sv}) {
    expectRefused(listWith("<string>" + std::string(text) + "</string>"));
  }
  expectRefused(listWith("<dict><key>\xFF</key><true/></dict>"));
  expectRefused(listWith("<!-- \xFF -->"));
  expectRefused(listWith("<string a='\xFF'/>"));
}

TEST(PropertyListRefusals, XMLThatIsNotWellFormed) {
  for (const auto element : {"<dict>"sv, "</dict>"sv, "<dict></array>"sv, "<string>a</String>"sv,
                             "<string a></string>"sv, "<string a=b></string>"sv,
                             "<string a='1' a='2'/>"sv, "< string/>"sv, "<string/ >"sv, "<!-- "sv,
                             "<?pi "sv, "<?xml version='1.0'?>"sv, "<!DOCTYPE plist>"sv}) {
    expectRefused(listWith(element));
  }
  expectRefused("<?xml version=\"1.0\" encoding=\"no-such-encoding\"?><plist><array/></plist>");
  expectRefused("<?xml encoding=\"UTF-8\"?><plist><array/></plist>");
}

TEST(PropertyListRefusals, TheResultNamesTheCulpritAndItsPlace) {
  const struct {
    std::string_view list;
    const char* error;
    std::uint64_t line;
    std::uint64_t column;
    std::uint64_t byte;
  } rows[] = {
      {"<plist><array>\n\t<foo/>\n</array></plist>", "not an element of property lists", 2, 2, 16},
      {"<plist>\n<dict/></plist>", "the top of the list is not an array", 2, 1, 8},
      {"<plist><array>\r\n<dict><true/></dict>", "a value has no key", 2, 7, 22},
      {"<plist><array><dict><key>a</key>\n</dict>", "a key has no value", 2, 1, 33},
      {"<plist><array>\n\n  <integer>x</integer>", "malformed integer", 3, 13, 28},
      {"<plist><array>\xE7\x99\xBD</array></plist>", "text stands outside an element", 1, 15, 14},
  };
  for (const auto& row : rows) {
    for (const std::size_t blockSize : {0U, 1U, 2U, 5U}) {
      const PropertyListResult result = resultOf(row.list, blockSize);
      EXPECT_EQ(result.error, row.error) << row.list;
      EXPECT_EQ(result.line, row.line) << row.list;
      EXPECT_EQ(result.column, row.column) << row.list;
      EXPECT_EQ(result.byte, row.byte) << row.list;
    }
  }
  const std::string cutOff = "<plist><array>\n<dict>\n";
  EXPECT_EQ(resultOf(cutOff).byte, cutOff.size());
  EXPECT_EQ(resultOf(cutOff).line, 3U);
  const std::string broken = listWith("\n<string>\xFF</string>");
  EXPECT_EQ(resultOf(broken).byte, broken.find('\xFF'));
  EXPECT_EQ(resultOf(listWith("")).line, 0U) << "no error has no place";
}

TEST(PropertyListRefusals, WhatComesBehindAnErrorChangesNothing) {
  PropertyListReader reader(AllKinds::ownClass(), [](const std::shared_ptr<Record>&) {});
  EXPECT_FALSE(reader.feed("<plist><array>\n</plist>"));
  EXPECT_FALSE(reader.feed("\n\n\n<plist><array/></plist>"));
  EXPECT_FALSE(reader.feed(""));
  const PropertyListResult result = reader.finish();
  const PropertyListResult expected = resultOf("<plist><array>\n</plist>");
  EXPECT_EQ(result.error, expected.error);
  EXPECT_EQ(result.line, 2U);
  EXPECT_EQ(result.byte, expected.byte);
}

TEST(PropertyListRefusals, EveryPrefixOfAFileIsAnErrorAndNoPrefixGivesAHalfRecord) {
  std::ostringstream contents;
  contents << std::ifstream(VELWB_TEST_DATA_DIR "/property_lists/records.plist").rdbuf();
  const std::string golden = contents.str();
  const ReadRecords whole = readPropertyList(VelWbBaseVector::ownClass(), golden);
  ASSERT_EQ(whole.records.size(), 5U);
  // The line feed behind the last element is no part of the list.
  const std::size_t complete = golden.rfind('>') + 1;
  for (std::size_t length = 0; length < golden.size(); ++length) {
    const ReadRecords read =
        readPropertyList(VelWbBaseVector::ownClass(), std::string_view(golden).substr(0, length));
    ASSERT_EQ(read.result.ok(), length >= complete) << length;
    ASSERT_LE(read.records.size(), whole.records.size());
    for (std::size_t index = 0; index < read.records.size(); ++index) {
      ASSERT_EQ(*read.records[index], *whole.records[index]) << length;
    }
  }
}

}  // namespace
}  // namespace VelWhiteBoard
