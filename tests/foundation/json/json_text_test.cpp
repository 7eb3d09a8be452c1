// Records as JSON text: exact on the way out, strict about the form and lenient about the contents
// on the way in.
#include <cstddef>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/records/model_mapping.h"
#include "VelWhiteBoard/vectors/commands.h"
#include "VelWhiteBoard/vectors/diagrams.h"

#include "tests/support/all_kinds.h"
#include "tests/support/print_records.h"

namespace VelWhiteBoard {
namespace {

using std::string_view_literals::operator""sv;

std::string levels(std::size_t depth, const char* inside = "") {
  return std::string(depth, '[') + inside + std::string(depth, ']');
}

TEST(JSONText, KeysStandInTheOrderOfTheDeclarationOnOneLine) {
  VelWbVecDiagram diagram;
  diagram.type = "diagram";
  diagram.ts = 10;
  diagram.ID = "u_1";
  diagram.x = 0.1;
  diagram.y = -0.25;
  diagram.ps = 800;
  diagram.end = true;
  diagram.path = Path{{0.5, 10, 1e16}, {}, {-0.0}};
  diagram.w = 1e-7;
  diagram.points = Array{10, 10.0, nullptr, "a\nb", Dictionary{{"b", true}, {"a", Array{}}}};
  EXPECT_EQ(modelToJSONString(diagram),
            R"({"type":"diagram","ts":10,"ID":"u_1","x":0.1,"y":-0.25,"ps":800,"end":true,)"
            R"("path":[[0.5,10,1e+16],[],[-0.0]],"w":1e-07,"h":0,)"
            R"("points":[10,10.0,null,"a\nb",{"a":[],"b":true}],"pixel":0})");
}

TEST(JSONText, NumbersAreShortestAndExact) {
  const struct {
    double number;
    const char* text;
  } rows[] = {{10, "10"},
              {1e1, "10"},
              {100000, "100000"},
              {0.1, "0.1"},
              {0.30000000000000004, "0.30000000000000004"},
              {1700000000.123456, "1700000000.123456"},
              {-0.0, "-0.0"},
              {0.0, "0"},
              {5e-324, "5e-324"}};
  for (const auto& row : rows) {
    AllKinds record;
    record.real = row.number;
    const std::string expected = std::string(R"({"real":)") + row.text + ",";
    EXPECT_EQ(modelToJSONString(record).substr(0, expected.size()), expected);
  }
  VelWbVecSwitchPage page;
  page.WBID = std::numeric_limits<std::int64_t>::min();
  page.curPage = std::numeric_limits<std::uint64_t>::max();
  EXPECT_EQ(modelToJSONString(page),
            R"({"ts":0,"WBID":-9223372036854775808,"resource":0,"curPage":18446744073709551615,)"
            R"("totalPage":0,"imageMode":false,"w":0,"h":0})");
}

TEST(JSONText, WhatJSONCannotCarryIsLeftOutAndZeroInsideAPath) {
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  AllKinds record;
  record.real = kNaN;
  record.path = Path{{kNaN, kInfinity, -kInfinity}};
  EXPECT_EQ(modelToJSONString(record), R"({"whole":0,"natural":0,"flag":false,"path":[[0,0,0]]})");
}

TEST(JSONText, TextThatIsNoUTF8IsReplacedAndStillAJSONText) {
  AllKinds record;
  record.text = "a\xFF\xC3z";
  record.array = Array{"\xED\xA0\x80", Dictionary{{"\xFE", 1}}};
  const std::string text = modelToJSONString(record);
  EXPECT_TRUE(Value::accept(text)) << text;
  EXPECT_EQ(modelWithJSON<AllKinds>(text)->text, "a\xEF\xBF\xBD\xEF\xBF\xBDz");
}

TEST(JSONText, VectorsAreWrittenAsOneArrayWithoutNullPointers) {
  const VectorList vectors{VelWbBaseVector::initWithType("cursor"), nullptr,
                           VelWbVecRemove::initWithType("remove")};
  EXPECT_EQ(modelToJSONString(vectors), R"([{"type":"cursor","ts":0},{"type":"remove","ts":0}])");
  EXPECT_EQ(modelToJSONString(VectorList{}), "[]");
  EXPECT_EQ(modelToJSONString(VectorList{nullptr}), "[]");
  EXPECT_EQ(Value(modelToJSONObject(vectors)).dump(),
            R"([{"ts":0.0,"type":"cursor"},{"ts":0.0,"type":"remove"}])");
}

TEST(JSONText, OnlyTheTextOfAnObjectGivesARecord) {
  const std::string_view rows[] = {
      ""sv,
      " "sv,
      "[]"sv,
      "5"sv,
      "null"sv,
      "\"{}\""sv,
      "{"sv,
      "}"sv,
      "{}}"sv,
      "{} {}"sv,
      "{}x"sv,
      "{'a':1}"sv,
      "{a:1}"sv,
      "{\"a\"}"sv,
      "{\"a\":}"sv,
      "{\"a\":1,}"sv,
      "{,}"sv,
      "{\"a\":01}"sv,
      "{\"a\":+1}"sv,
      "{\"a\":1.}"sv,
      "{\"a\":.5}"sv,
      "{\"a\":0x1}"sv,
      "{\"a\":NaN}"sv,
      "{\"a\":Infinity}"sv,
      "{\"a\":-}"sv,
      "{\"a\":tru}"sv,
      "{\"a\":True}"sv,
      "{\"a\":\"\n\"}"sv,
      "{\"a\":\"\\x\"}"sv,
      "{\"a\":\"\xFF\"}"sv,
      "{\"a\":\"\xC0\x80\"}"sv,
      "{}\0"sv,
      "/**/{}"sv,
      "{\"a\":1 \"b\":2}"sv,
      "{\"a\":[1,2}"sv,
      "{\"a\":1e400,}"sv,
      "{\"a\":18446744073709551616"sv,
      "{\"a\":018446744073709551616}"sv,
      "{\"a\":1e}"sv,
      "{\"a\":1e400x}"sv,
  };
  for (const auto text : rows) EXPECT_EQ(modelWithJSON<AllKinds>(text), nullptr) << text;
  EXPECT_NE(modelWithJSON<AllKinds>(" \t\r\n{ } \n"), nullptr);
}

TEST(JSONText, OnlyTheTextOfAnArrayGivesRecords) {
  for (const auto text : {""sv, "{}"sv, "5"sv, "["sv, "[{}"sv, "[{},]"sv, "[{}]]"sv,
                          "[{}"
                          "{}]"sv}) {
    EXPECT_TRUE(modelArrayWithJSON<AllKinds>(text).empty()) << text;
  }
  EXPECT_TRUE(modelArrayWithJSON<AllKinds>("[]").empty());
  EXPECT_EQ(modelArrayWithJSON<AllKinds>(R"([{},1,{"text":"a"},[{}]])").size(), 2U);
}

TEST(JSONText, OfAKeyThatOccursTwiceTheLastValueCounts) {
  const struct {
    const char* json;
    const char* expected;
  } rows[] = {
      {R"({"real":1,"real":2})", R"({"real":2,"whole":0,"natural":0,"flag":false})"},
      {R"({"text":"a","real":1,"text":"b"})",
       R"({"text":"b","real":1,"whole":0,"natural":0,"flag":false})"},
      {R"({"text":"a","text":null})", R"({"real":0,"whole":0,"natural":0,"flag":false})"},
      // The last value is of no use, so the default stays: the first one counts no more.
      {R"({"real":1,"real":"abc"})", R"({"real":0,"whole":0,"natural":0,"flag":false})"},
      {R"({"whole":1,"whole":{}})", R"({"real":0,"whole":0,"natural":0,"flag":false})"},
      {R"({"natural":1,"natural":[]})", R"({"real":0,"whole":0,"natural":0,"flag":false})"},
      {R"({"flag":true,"flag":"maybe"})", R"({"real":0,"whole":0,"natural":0,"flag":false})"},
      {R"({"text":"a","text":true})", R"({"real":0,"whole":0,"natural":0,"flag":false})"},
      {R"({"path":[[1,2]],"path":5})", R"({"real":0,"whole":0,"natural":0,"flag":false})"},
      {R"({"array":[1],"array":{}})", R"({"real":0,"whole":0,"natural":0,"flag":false})"},
      {R"({"list":[{}],"list":"x"})", R"({"real":0,"whole":0,"natural":0,"flag":false})"},
      {R"({"array":[{"a":1,"a":2}]})",
       R"({"real":0,"whole":0,"natural":0,"flag":false,"array":[{"a":2}]})"},
  };
  for (const auto& row : rows) {
    const auto record = modelWithJSON<AllKinds>(row.json);
    ASSERT_TRUE(record) << row.json;
    EXPECT_EQ(modelToJSONString(*record), row.expected) << row.json;
    EXPECT_EQ(*record, *modelWithDictionary<AllKinds>(Value::parse(row.json))) << row.json;
  }
}

TEST(JSONText, OfATypeThatOccursTwiceTheLastOneChoosesTheClass) {
  EXPECT_EQ(modelWithJSON<VelWbBaseVector>(R"({"type":"line","type":"text"})")->recordClass().name,
            "VelWbVecText");
  EXPECT_EQ(modelWithJSON<VelWbBaseVector>(R"({"type":"line","type":7})")->recordClass().name,
            "VelWbBaseVector");
}

TEST(JSONText, AnIntegerOfMoreThan64BitsIsANumberLikeAnyOther) {
  const auto record = modelWithJSON<AllKinds>(
      R"({"text":18446744073709551616,"real":-100000000000000000000,"whole":100000000000000000000,)"
      R"("natural":100000000000000000000,"flag":100000000000000000000,)"
      R"("path":[[1,100000000000000000000]],"array":["100000000000000000000",)"
      R"(100000000000000000000,5,{"\"":[100000000000000000000]}]})");
  ASSERT_TRUE(record);
  EXPECT_EQ(record->text, "1.8446744073709552e+19");
  EXPECT_EQ(record->real, -1e20);
  EXPECT_EQ(record->whole, std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(record->natural, std::numeric_limits<std::uint64_t>::max());
  EXPECT_TRUE(record->flag);
  EXPECT_EQ(*record->path, (Path{{1, 1e20}}));
  EXPECT_EQ(Value(*record->array).dump(), R"(["100000000000000000000",1e+20,5,{"\"":[1e+20]}])");
  EXPECT_EQ(modelArrayWithJSON<AllKinds>("[{\"whole\":-100000000000000000000},{}]").size(), 2U);
}

TEST(JSONText, ANumberBeyondTheRangeOfADoubleIsOfNoUseAndTheRestIsRead) {
  const auto record = modelWithJSON<AllKinds>(
      R"({"text":1e400,"real":1e400,"whole":-1e400,"natural":1e400,"flag":1E+400,)"
      R"("path":[[1,2],[1e400,2]],"array":["1e400 \" 1e400",1e400,5e-400]})");
  ASSERT_TRUE(record);
  EXPECT_EQ(modelToJSONString(*record),
            R"({"real":0,"whole":0,"natural":0,"flag":false,"path":[[1,2]],)"
            R"("array":["1e400 \" 1e400",null,0.0]})");
  EXPECT_EQ(modelArrayWithJSON<AllKinds>(R"([{"real":1e400},{"text":"a"}])").size(), 2U);
  EXPECT_EQ(modelWithJSON<VelWbBaseVector>(R"({"w":1e400})")->recordClass().name, "VelWbVecSquare");
}

TEST(JSONText, HalfAPairOfSurrogatesIsReplacedAndCostsNothingElse) {
  const auto textOf = [](const std::string& json) {
    const auto record = modelWithJSON<AllKinds>(R"({"whole":3,"text":")" + json + R"("})");
    return record && record->whole == 3 ? record->text : std::nullopt;
  };
  EXPECT_EQ(textOf(R"(x\ud83d)"), "x\uFFFD");
  EXPECT_EQ(textOf(R"(\uDE00x)"), "\uFFFDx");
  EXPECT_EQ(textOf(R"(\ud83d\ud83d\ude00)"), "\uFFFD\U0001F600");
  EXPECT_EQ(textOf(R"(\ud83d\u0041)"), "\uFFFDA");
  EXPECT_EQ(textOf(R"(\\ud83d \ud83d)"), "\\ud83d \uFFFD");
  EXPECT_EQ(textOf(R"(\ud83)"), std::nullopt) << "no escape at all";
}

TEST(JSONText, ANumberOutOfRangeChangesNothingAboutRealNumbersBesideIt) {
  const auto record = modelWithJSON<AllKinds>(R"({"array":[1E5,1e5,1.0],"stray":1e400})");
  ASSERT_TRUE(record);
  EXPECT_EQ(modelToJSONString(*record),
            R"({"real":0,"whole":0,"natural":0,"flag":false,"array":[100000.0,100000.0,1.0]})");
}

TEST(JSONText, NestingOfAHundredThousandLevelsIsNoDanger) {
  const std::string deep = levels(100'000);
  for (const std::string& text :
       {deep, R"({"array":)" + deep + "}", R"({"stray":)" + deep + "}", std::string(100'000, '['),
        R"({"array":)" + std::string(100'000, '['),
        R"({"whole":100000000000000000000,"array":)" + deep + "}",
        R"({"whole":1e400,"array":)" + std::string(100'000, '{')}) {
    const auto record = modelWithJSON<AllKinds>(text);
    EXPECT_TRUE(!record || !record->array);
    EXPECT_LE(modelArrayWithJSON<AllKinds>("[" + text + "]").size(), 1U);
  }
}

TEST(JSONText, ALargeNumberChangesNothingAboutTheNestingThatIsTaken) {
  for (const std::size_t depth : {200U, 256U, 257U, 500U, 1000U}) {
    const std::string plain = R"({"array":)" + levels(depth) + "}";
    const std::string large = R"({"array":)" + levels(depth) + R"(,"stray":100000000000000000000})";
    const auto expected = modelWithJSON<AllKinds>(plain);
    const auto found = modelWithJSON<AllKinds>(large);
    ASSERT_EQ(found == nullptr, expected == nullptr) << depth;
    if (expected) {
      EXPECT_EQ(*found, *expected) << depth;
    }
  }
}

TEST(JSONText, HugeTextsAreReadAndWrittenWhole) {
  AllKinds record;
  record.text = std::string(8'000'000, 'x');
  record.array = Array(200'000, Value("y"));
  const std::string text = modelToJSONString(record);
  const auto restored = modelWithJSON<AllKinds>(text);
  ASSERT_TRUE(restored);
  EXPECT_EQ(*restored, record);
  // The next text is read as if nothing had been.
  EXPECT_EQ(modelWithJSON<AllKinds>(R"({"text":"a"})")->text, "a");
}

TEST(JSONText, EveryPrefixOfAnObjectIsNoObject) {
  AllKinds record;
  record.text = "a\"\\\n\xE7\x99\xBD";
  record.real = 0.1;
  record.path = Path{{1, 2, 3}, {}};
  record.array = Array{nullptr, true, 1e20, Dictionary{{"k", "v"}}};
  const std::string text = modelToJSONString(record);
  ASSERT_TRUE(modelWithJSON<AllKinds>(text));
  for (std::size_t length = 0; length < text.size(); ++length) {
    EXPECT_EQ(modelWithJSON<AllKinds>(std::string_view(text).substr(0, length)), nullptr) << length;
  }
}

TEST(JSONText, EscapesInKeysAndTextsMeanTheirCharacters) {
  const auto record =
      modelWithJSON<AllKinds>(R"({"te\u0078t":"\u767d\ud83d\ude00\u0000\/","\u0072eal":1})");
  ASSERT_TRUE(record);
  EXPECT_EQ(record->text, std::string("\xE7\x99\xBD\xF0\x9F\x98\x80\0/", 9));
  EXPECT_EQ(record->real, 1.0);
}

}  // namespace
}  // namespace VelWhiteBoard
