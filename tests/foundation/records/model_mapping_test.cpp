// Records from their dictionary form: what each kind of property makes of each kind of value.
//
// Every rule is tried in all forms in which values arrive: a dictionary, JSON text, a property
// list, an archive.
#include "VelWhiteBoard/foundation/records/model_mapping.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/records/coder.h"

#include "tests/support/all_kinds.h"
#include "tests/support/print_records.h"
#include "tests/support/property_lists.h"

namespace VelWhiteBoard {
namespace {

constexpr const char* kKeys[] = {"text", "real", "whole", "natural", "flag", "path", "array"};

/// One value under every key.
Dictionary everywhere(const Value& value) {
  Dictionary dictionary;
  for (const char* key : kKeys) dictionary.emplace(key, value);
  return dictionary;
}

struct Arrival {
  const char* form;
  std::shared_ptr<AllKinds> record;
};

/// The record that `value` under every key gives, in every form that can express it.
std::vector<Arrival> arrivals(const std::string& json) {
  const Value value = Value::parse(json);
  const Dictionary dictionary = everywhere(value);
  std::vector<Arrival> list;
  list.push_back({"dictionary", modelWithDictionary<AllKinds>(dictionary)});
  std::string text = "{";
  for (const char* key : kKeys) {
    text += text.size() > 1 ? ",\"" : "\"";
    text += key;
    text += "\":" + json;
  }
  list.push_back({"JSON text", modelWithJSON<AllKinds>(text + "}")});
  Coder archive;
  for (const auto& [key, member] : dictionary) archive.encode(key, member);
  list.push_back({"archive", AllKinds::initWithCoder(Coder(archive.data()))});
  if (json.find("null") == std::string::npos && json.find("\\u0000") == std::string::npos) {
    list.push_back({"property list", std::static_pointer_cast<AllKinds>(
                                         recordWithXML(AllKinds::ownClass(), xmlOf(dictionary)))});
  }
  return list;
}

/// The property in JSON; "-" when it is absent.
std::string shown(const Dictionary& dictionary, const std::string& key) {
  const auto found = dictionary.find(key);
  return found == dictionary.end() ? "-" : found->second.dump();
}

struct ReadingRow {
  const char* json;
  /// The properties text, real, whole, natural, flag, path and array afterwards.
  const char* expected[7];
};

constexpr const char* kMaximum = "9223372036854775807";
constexpr const char* kMinimum = "-9223372036854775808";
constexpr const char* kNaturalMaximum = "18446744073709551615";

void check(const ReadingRow& row) {
  for (const Arrival& arrival : arrivals(row.json)) {
    ASSERT_TRUE(arrival.record) << row.json << " by " << arrival.form;
    const Dictionary dictionary = modelToJSONObject(*arrival.record);
    for (std::size_t index = 0; index < std::size(kKeys); ++index) {
      EXPECT_EQ(shown(dictionary, kKeys[index]), row.expected[index])
          << row.json << " as " << kKeys[index] << " by " << arrival.form;
    }
  }
}

TEST(ModelMapping, NullIsNullZeroOrFalse) {
  check({"null", {"-", "0.0", "0", "0", "false", "-", "-"}});
}

TEST(ModelMapping, ABooleanIsOneOrZeroForNumbersAndNoText) {
  check({"true", {"-", "1.0", "1", "1", "true", "-", "-"}});
  check({"false", {"-", "0.0", "0", "0", "false", "-", "-"}});
}

TEST(ModelMapping, ANumberIsItsShortestTextForATextAndNotZeroIsTrue) {
  const ReadingRow rows[] = {
      {"0", {R"("0")", "0.0", "0", "0", "false", "-", "-"}},
      {"0.0", {R"("0")", "0.0", "0", "0", "false", "-", "-"}},
      {"12", {R"("12")", "12.0", "12", "12", "true", "-", "-"}},
      {"-12", {R"("-12")", "-12.0", "-12", "0", "true", "-", "-"}},
      {"-10.0", {R"("-10")", "-10.0", "-10", "0", "true", "-", "-"}},
      {"0.1", {R"("0.1")", "0.1", "0", "0", "true", "-", "-"}},
      {"1e3", {R"("1000")", "1000.0", "1000", "1000", "true", "-", "-"}},
      {"9007199254740993",
       {R"("9007199254740993")", "9.007199254740992e+15", "9007199254740993", "9007199254740993",
        "true", "-", "-"}},
      {kMaximum,
       {R"("9223372036854775807")", "9.223372036854776e+18", kMaximum, kMaximum, "true", "-", "-"}},
      {kMinimum,
       {R"("-9223372036854775808")", "-9.223372036854776e+18", kMinimum, "0", "true", "-", "-"}},
      {kNaturalMaximum,
       {R"("18446744073709551615")", "1.8446744073709552e+19", kMaximum, kNaturalMaximum, "true",
        "-", "-"}},
  };
  for (const ReadingRow& row : rows) check(row);
}

TEST(ModelMapping, AnIntegerCutsTowardZeroAndStopsAtTheEndsOfItsRange) {
  const ReadingRow rows[] = {
      {"1.9", {R"("1.9")", "1.9", "1", "1", "true", "-", "-"}},
      {"-1.9", {R"("-1.9")", "-1.9", "-1", "0", "true", "-", "-"}},
      {"-0.9", {R"("-0.9")", "-0.9", "0", "0", "true", "-", "-"}},
      {"1e300", {R"("1e+300")", "1e+300", kMaximum, kNaturalMaximum, "true", "-", "-"}},
      {"-1e300", {R"("-1e+300")", "-1e+300", kMinimum, "0", "true", "-", "-"}},
      {"9223372036854775808",
       {R"("9223372036854775808")", "9.223372036854776e+18", kMaximum, "9223372036854775808",
        "true", "-", "-"}},
      {"18446744073709551616",
       {R"("1.8446744073709552e+19")", "1.8446744073709552e+19", kMaximum, kNaturalMaximum, "true",
        "-", "-"}},
      {"-9223372036854775809",
       {R"("-9.223372036854776e+18")", "-9.223372036854776e+18", kMinimum, "0", "true", "-", "-"}},
  };
  for (const ReadingRow& row : rows) check(row);
}

TEST(ModelMapping, ATextThatIsAJSONNumberIsThatNumberForANumber) {
  const ReadingRow rows[] = {
      {R"("12")", {R"("12")", "12.0", "12", "12", "false", "-", "-"}},
      {R"("-12.7")", {R"("-12.7")", "-12.7", "-12", "0", "false", "-", "-"}},
      {R"("1e3")", {R"("1e3")", "1000.0", "1000", "1000", "false", "-", "-"}},
      {R"("-0.0")", {R"("-0.0")", "-0.0", "0", "0", "false", "-", "-"}},
      {R"("18446744073709551615")",
       {R"("18446744073709551615")", "1.8446744073709552e+19", kMaximum, kNaturalMaximum, "false",
        "-", "-"}},
  };
  for (const ReadingRow& row : rows) check(row);
}

TEST(ModelMapping, AnyOtherTextLeavesANumberAtItsDefault) {
  for (const char* json :
       {R"("")",       R"(" 12 ")", R"("12 ")",  R"("+5")",       R"("0x10")",  R"("1e400")",
        R"("-1e400")", R"("01")",   R"("1.")",   R"(".5")",       R"("1,5")",   R"("12abc")",
        R"("abc")",    R"("nan")",  R"("inf")",  R"("Infinity")", R"("\n1")",   R"("null")",
        R"("[1]")",    R"("yes")",  R"("TRUE")", R"("１２")",     R"("\u0000")"}) {
    check({json, {json, "0.0", "0", "0", "false", "-", "-"}});
  }
}

TEST(ModelMapping, OnlyTheTextsTrueAndFalseAreBooleans) {
  check({R"("true")", {R"("true")", "0.0", "0", "0", "true", "-", "-"}});
  check({R"("false")", {R"("false")", "0.0", "0", "0", "false", "-", "-"}});
  check({R"(" true")", {R"(" true")", "0.0", "0", "0", "false", "-", "-"}});
}

TEST(ModelMapping, AnArrayIsForArraysOnly) {
  check({"[]", {"-", "0.0", "0", "0", "false", "[]", "[]"}});
  check({"[[1.5,2.5,3.5]]", {"-", "0.0", "0", "0", "false", "[[1.5,2.5,3.5]]", "[[1.5,2.5,3.5]]"}});
}

TEST(ModelMapping, ADictionaryIsForNoProperty) {
  check({"{}", {"-", "0.0", "0", "0", "false", "-", "-"}});
  check({R"({"a":1,"b":[1]})", {"-", "0.0", "0", "0", "false", "-", "-"}});
}

TEST(ModelMapping, APositionThatIsNoArrayOfNumbersIsDropped) {
  const char* json =
      R"([[1.5,2],[true,2],["1",2],[[1],2],[{},2],{},{"a":1},5,"a",true,[3],[],[1,2,3,4],[9,9,"t"]])";
  check({json, {"-", "0.0", "0", "0", "false", "[[1.5,2.0],[3.0],[],[1.0,2.0,3.0,4.0]]", json}});
  check({"[null,[1,2],[null,2]]",
         {"-", "0.0", "0", "0", "false", "[[1.0,2.0]]", "[null,[1,2],[null,2]]"}});
}

TEST(ModelMapping, ThePositionsOfAPathTakeIntegersOfAnySize) {
  const auto record = modelWithJSON<AllKinds>(
      R"({"path":[[1,-1,18446744073709551615],[9223372036854775807,0.25,-0.0]]})");
  ASSERT_TRUE(record && record->path);
  EXPECT_EQ(*record->path,
            (Path{{1, -1, 18446744073709551615.0}, {9223372036854775807.0, 0.25, 0}}));
  EXPECT_TRUE(std::signbit((*record->path)[1][2]));
}

TEST(ModelMapping, AFreeFormArrayKeepsWhateverItWasGivenToTheLastElement) {
  const std::string json =
      R"([null,true,1,-1,1.0,-0.0,0.1,18446744073709551615,9007199254740993,"","a\r\n\t",[[],{}],)"
      R"({"":null,"b":{"c":[1,2.5,null]}},null])";
  for (const Arrival& arrival : arrivals(json)) {
    ASSERT_TRUE(arrival.record && arrival.record->array) << arrival.form;
    EXPECT_EQ(Value(*arrival.record->array).dump(), Value::parse(json).dump()) << arrival.form;
  }
}

TEST(ModelMapping, AnIntegerThatArrivesAsAnIntegerStaysOneInAFreeFormArray) {
  for (const Arrival& arrival : arrivals("[5,5.0,-5,18446744073709551615]")) {
    const Array& array = *arrival.record->array;
    EXPECT_TRUE(array[0].is_number_integer()) << arrival.form;
    EXPECT_TRUE(array[1].is_number_float()) << arrival.form;
    EXPECT_TRUE(array[2].is_number_integer()) << arrival.form;
    EXPECT_EQ(array[3].get<std::uint64_t>(), 18446744073709551615U) << arrival.form;
    EXPECT_THAT(modelToJSONString(*arrival.record),
                ::testing::HasSubstr("[5,5.0,-5,18446744073709551615]"));
  }
}

TEST(ModelMapping, AListOfRecordsTakesTheDictionariesOfAnArrayAndNothingElse) {
  const struct {
    const char* json;
    const char* expected;
  } rows[] = {
      {R"([])", "[]"},
      {R"([{"text":"a"},5,"x",true,[{"text":"b"}],{"text":"c"}])", R"(["a","c"])"},
      {R"({"text":"a"})", "absent"},
      {R"(5)", "absent"},
      {R"("[]")", "absent"},
  };
  for (const auto& row : rows) {
    const Dictionary dictionary{{"list", Value::parse(row.json)}};
    const std::shared_ptr<AllKinds> records[] = {
        modelWithDictionary<AllKinds>(dictionary),
        modelWithJSON<AllKinds>(Value(dictionary).dump()),
        std::static_pointer_cast<AllKinds>(recordWithXML(AllKinds::ownClass(), xmlOf(dictionary))),
    };
    for (const auto& record : records) {
      ASSERT_TRUE(record) << row.json;
      std::string found = "absent";
      if (record->list) {
        Array texts;
        for (const auto& item : *record->list) texts.emplace_back(item->text.value_or("none"));
        found = Value(texts).dump();
      }
      EXPECT_EQ(found, row.expected) << row.json;
    }
  }
}

}  // namespace
}  // namespace VelWhiteBoard
