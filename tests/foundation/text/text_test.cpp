// Text on its way into JSON and XML.
#include "VelWhiteBoard/foundation/text/text.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/values/value.h"

namespace VelWhiteBoard {
namespace {

using std::string_view_literals::operator""sv;

std::string asJSON(std::string_view text) {
  std::string result;
  appendJSONText(result, text);
  return result;
}

std::string asXML(std::string_view text) {
  std::string result;
  appendXMLText(result, text);
  return result;
}

#define REPLACED "\xEF\xBF\xBD"

TEST(Text, WhatJSONEscapes) {
  const struct {
    std::string_view text;
    std::string_view json;
  } rows[] = {
      {""sv, R"("")"sv},
      {"plain text"sv, R"("plain text")"sv},
      {"\"\\/"sv, R"("\"\\/")"sv},
      {"\b\f\n\r\t"sv, R"("\b\f\n\r\t")"sv},
      {"\0\x01\x1F"sv, R"("\u0000\u0001\u001f")"sv},
      {"\x7F"sv, "\"\x7F\""sv},
      {"\xC3\xA9\xE7\x99\xBD\xF0\x9F\x98\x80"sv, "\"\xC3\xA9\xE7\x99\xBD\xF0\x9F\x98\x80\""sv},
      {"\xEF\xBF\xBE"sv, "\"\xEF\xBF\xBE\""sv},  // U+FFFE is text like any other in JSON
      {"\xE2\x80\xA8"sv, "\"\xE2\x80\xA8\""sv},
  };
  for (const auto& row : rows) EXPECT_EQ(asJSON(row.text), row.json);
}

TEST(Text, WhatXMLEscapesOrReplaces) {
  const struct {
    std::string_view text;
    std::string_view xml;
  } rows[] = {
      {""sv, ""sv},
      {"plain \"text\" it's"sv, "plain \"text\" it's"sv},
      {"a<b>c&d"sv, "a&lt;b&gt;c&amp;d"sv},
      {"]]>"sv, "]]&gt;"sv},
      {"\t\n"sv, "\t\n"sv},
      {"\r"sv, "&#13;"sv},
      {"\r\n"sv, "&#13;\n"sv},
      {"  "sv, "  "sv},
      {"\0"sv, REPLACED ""sv},
      {"\x01\x0B\x1F"sv, REPLACED REPLACED REPLACED ""sv},
      {"\x7F"sv, "\x7F"sv},
      {"\xC2\x85"sv, "\xC2\x85"sv},
      {"\xEF\xBF\xBE"sv, REPLACED ""sv},
      {"\xEF\xBF\xBF"sv, REPLACED ""sv},
      {"\xEF\xBF\xBD"sv, REPLACED ""sv},
      {"\xF0\x9F\xBF\xBE"sv, "\xF0\x9F\xBF\xBE"sv},  // U+1FFFE: allowed in XML
      {"\xF4\x8F\xBF\xBF"sv, "\xF4\x8F\xBF\xBF"sv},  // U+10FFFF
      {"\xEE\x80\x80"sv, "\xEE\x80\x80"sv},
  };
  for (const auto& row : rows) EXPECT_EQ(asXML(row.text), row.xml);
}

// What is no UTF-8. Each longest start of a character that is broken off counts as one.
constexpr struct {
  std::string_view text;
  std::string_view replaced;
} kBroken[] = {
    {"\x80"sv, REPLACED ""sv},               // continues nothing
    {"\xBF\xBF"sv, REPLACED REPLACED ""sv},  //
    {"a\xC3"sv, "a" REPLACED ""sv},          // broken off at the end
    {"\xC3"
     "b"sv,
     REPLACED "b"sv},
    {"\xE2\x82"sv, REPLACED ""sv},  //
    {"\xE2\x82"
     "c"sv,
     REPLACED "c"sv},
    {"\xF0\x9F\x98"sv, REPLACED ""sv},  //
    {"\xF0\x9F\x98\xF0\x9F\x98\x80"sv, REPLACED "\xF0\x9F\x98\x80"sv},
    {"\xC0\xAF"sv, REPLACED REPLACED ""sv},               // "/" in two bytes
    {"\xC1\xBF"sv, REPLACED REPLACED ""sv},               //
    {"\xE0\x9F\xBF"sv, REPLACED REPLACED REPLACED ""sv},  // overlong
    {"\xF0\x8F\xBF\xBF"sv, REPLACED REPLACED REPLACED REPLACED ""sv},
    {"\xED\xA0\x80"sv, REPLACED REPLACED REPLACED ""sv},               // half a surrogate pair
    {"\xED\xBF\xBF"sv, REPLACED REPLACED REPLACED ""sv},               //
    {"\xF4\x90\x80\x80"sv, REPLACED REPLACED REPLACED REPLACED ""sv},  // beyond U+10FFFF
    {"\xF5\x80\x80\x80"sv, REPLACED REPLACED REPLACED REPLACED ""sv},
    {"\xFE\xFF"sv, REPLACED REPLACED ""sv},
};

TEST(Text, BytesThatAreNoUTF8AreReplacedInBoth) {
  for (const auto& row : kBroken) {
    EXPECT_EQ(asXML(row.text), row.replaced);
    EXPECT_EQ(asJSON(row.text), '"' + std::string(row.replaced) + '"');
  }
}

TEST(Text, EveryTextOfTwoOrThreeBytesBecomesTextThatAStrictReaderTakes) {
  // Every pair of bytes, and every pair behind a byte that starts three.
  for (const std::string& start : {std::string(), std::string("\xE0"), std::string("\xED")}) {
    for (int first = 0; first < 256; ++first) {
      for (int second = 0; second < 256; ++second) {
        std::string text = start;
        text += static_cast<char>(first);
        text += static_cast<char>(second);
        const std::string json = asJSON(text);
        ASSERT_TRUE(Value::accept(json)) << json;
        const std::string again = Value::parse(json).get<std::string>();
        ASSERT_EQ(asJSON(again), json) << "replacing once must be enough";
      }
    }
  }
}

TEST(Text, TextIsAddedBehindWhatIsThere) {
  std::string text = "start:";
  appendJSONText(text, "a");
  appendXMLText(text, "&");
  EXPECT_EQ(text, "start:\"a\"&amp;");
}

TEST(Text, AHugeTextComesThroughWhole) {
  const std::string huge(10'000'000, 'x');
  EXPECT_EQ(asXML(huge), huge);
  EXPECT_EQ(asJSON(huge).size(), huge.size() + 2);
  const std::string broken(1'000'000, '\xFF');
  EXPECT_EQ(asXML(broken).size(), broken.size() * 3);
}

}  // namespace
}  // namespace VelWhiteBoard
