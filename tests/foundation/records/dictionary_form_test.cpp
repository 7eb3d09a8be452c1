// The dictionary form of records as a whole: what is written, what is skipped, how deep it may be
// nested.
#include <cmath>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/records/coder.h"
#include "VelWhiteBoard/foundation/records/model_mapping.h"

#include "tests/support/all_kinds.h"
#include "tests/support/print_records.h"
#include "tests/support/property_lists.h"
#include "tests/support/special_numbers.h"

namespace VelWhiteBoard {
namespace {

TEST(DictionaryForm, KeysThatNameNoPropertyAreIgnored) {
  const Dictionary dictionary{{"text", "a"}, {"Text", "b"}, {"", 1}, {"colour", Array{1}}};
  AllKinds expected;
  expected.text = "a";
  EXPECT_EQ(*modelWithDictionary<AllKinds>(dictionary), expected);
  EXPECT_EQ(*modelWithJSON<AllKinds>(Value(dictionary).dump()), expected);
  EXPECT_EQ(*recordWithXML(AllKinds::ownClass(), xmlOf(dictionary)), expected);
}

TEST(DictionaryForm, ADictionaryOfNothingGivesTheInitialState) {
  EXPECT_EQ(*modelWithDictionary<AllKinds>({}), AllKinds());
  EXPECT_EQ(*modelWithJSON<AllKinds>("{}"), AllKinds());
}

TEST(DictionaryForm, NullPropertiesAreLeftOutAndNumbersAlwaysWritten) {
  EXPECT_EQ(Value(modelToJSONObject(AllKinds())).dump(),
            R"({"flag":false,"natural":0,"real":0.0,"whole":0})");
  AllKinds record;
  record.text = "";
  record.path = Path{};
  record.array = Array{};
  record.list.emplace();
  record.flag = true;
  EXPECT_EQ(
      Value(modelToJSONObject(record)).dump(),
      R"({"array":[],"flag":true,"list":[],"natural":0,"path":[],"real":0.0,"text":"","whole":0})");
}

TEST(DictionaryForm, BooleansAreWrittenAsBooleans) {
  AllKinds record;
  EXPECT_TRUE(modelToJSONObject(record).at("flag").is_boolean());
  EXPECT_TRUE(modelToJSONObject(record).at("real").is_number_float());
  EXPECT_TRUE(modelToJSONObject(record).at("whole").is_number_integer());
}

TEST(DictionaryForm, ANumberThatJSONCannotCarryIsLeftOutAndIsZeroInsideAPath) {
  for (const double number : {kNaN, -kNaN, kInfinity, -kInfinity}) {
    AllKinds record;
    record.real = number;
    record.path = Path{{number, 2, number}, {number}};
    const Dictionary dictionary = modelToJSONObject(record);
    EXPECT_EQ(dictionary.count("real"), 0U);
    EXPECT_EQ(dictionary.at("path").dump(), "[[0.0,2.0,0.0],[0.0]]");
    EXPECT_TRUE(std::isfinite(record.real) == false) << "the record itself is not touched";
  }
}

TEST(DictionaryForm, TheSignOfZeroSurvivesEveryRoad) {
  AllKinds record;
  record.real = -0.0;
  record.path = Path{{-0.0, 1, -0.0}};
  record.array = Array{-0.0};
  Coder archive;
  record.encodeWithCoder(archive);
  const std::shared_ptr<AllKinds> restored[] = {
      modelWithDictionary<AllKinds>(modelToJSONObject(record)),
      modelWithJSON<AllKinds>(modelToJSONString(record)),
      AllKinds::initWithCoder(Coder(archive.data())),
      std::static_pointer_cast<AllKinds>(
          readPropertyList(AllKinds::ownClass(), propertyListOf({record.copyWithZone()}))
              .records.at(0)),
  };
  for (const auto& each : restored) {
    EXPECT_TRUE(std::signbit(each->real));
    EXPECT_TRUE(std::signbit((*each->path)[0][0]));
    EXPECT_FALSE(std::signbit((*each->path)[0][1]));
    EXPECT_TRUE(std::signbit(each->array->at(0).get<double>()));
  }
}

TEST(DictionaryForm, AnArrayOfRecordsSkipsWhatIsNoDictionary) {
  const Array array{nullptr,     Dictionary{{"text", "a"}},        5,
                    "x",         Array{Dictionary{{"text", "b"}}}, true,
                    Dictionary{}};
  for (const auto& records :
       {modelArrayWithClass<AllKinds>(array), modelArrayWithJSON<AllKinds>(Value(array).dump())}) {
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0]->text, "a");
    EXPECT_EQ(records[1]->text, std::nullopt);
  }
  EXPECT_TRUE(modelArrayWithClass<AllKinds>({}).empty());
}

TEST(DictionaryForm, TheDepthOfNestingIsBoundedAndTheRestOfTheRecordSurvives) {
  for (const std::size_t depth : {std::size_t{1}, kMaximumValueDepth, kMaximumValueDepth + 1}) {
    std::string json(depth, '[');
    json.append(depth, ']');
    const Value value = Value::parse(json);
    const Dictionary dictionary{{"array", value}, {"text", "a"}};
    const std::shared_ptr<AllKinds> records[] = {
        modelWithDictionary<AllKinds>(dictionary),
        modelWithJSON<AllKinds>(Value(dictionary).dump()),
        std::static_pointer_cast<AllKinds>(recordWithXML(AllKinds::ownClass(), xmlOf(dictionary))),
    };
    for (const auto& record : records) {
      ASSERT_TRUE(record);
      EXPECT_EQ(record->text, "a");
      EXPECT_EQ(record->array.has_value(), depth <= kMaximumValueDepth) << depth;
      if (record->array) {
        EXPECT_EQ(Value(*record->array), value);
      }
    }
  }
}

TEST(DictionaryForm, ADictionaryNestedAMillionLevelsDeepIsNoDanger) {
  Value value = Array();
  for (int level = 0; level < 1'000'000; ++level) {
    Array outer;
    outer.push_back(std::move(value));
    value = std::move(outer);
  }
  Dictionary dictionary;
  dictionary["array"] = std::move(value);
  const auto record = modelWithDictionary<AllKinds>(dictionary);
  EXPECT_EQ(record->array, std::nullopt);
  Coder archive;
  archive.encode("array", std::move(dictionary["array"]));
  EXPECT_EQ(AllKinds::initWithCoder(archive)->array, std::nullopt);
}

}  // namespace
}  // namespace VelWhiteBoard
