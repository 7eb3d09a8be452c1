// Values that one form or another cannot carry cost themselves and nothing beside them.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/records/coder.h"
#include "VelWhiteBoard/foundation/records/model_mapping.h"
#include "VelWhiteBoard/services/resources.h"
#include "VelWhiteBoard/vectors/diagrams.h"
#include "VelWhiteBoard/vectors/media_lists.h"
#include "VelWhiteBoard/vectors/strokes.h"

#include "tests/support/all_kinds.h"
#include "tests/support/print_records.h"
#include "tests/support/property_lists.h"

namespace VelWhiteBoard {
namespace {

/// `innermost` inside `depth` arrays, or objects, inside one another.
Value nested(std::size_t depth, Value innermost = 7, bool inObjects = false) {
  Value value = std::move(innermost);
  for (std::size_t level = 0; level < depth; ++level) {
    Value outer = inObjects ? Value(Dictionary()) : Value(Array());
    if (inObjects) {
      outer["k"] = std::move(value);
    } else {
      outer.push_back(std::move(value));
    }
    value = std::move(outer);
  }
  return value;
}

/// The record through each form that others read: dictionary, text, archive and file.
template <class T>
std::vector<std::shared_ptr<T>> throughAllForms(const T& record) {
  Coder archive;
  record.encodeWithCoder(archive);
  const auto file = readPropertyList(T::ownClass(), propertyListOf({record.copyWithZone()}));
  return {std::static_pointer_cast<T>(modelWithDictionary<T>(modelToJSONObject(record))),
          std::static_pointer_cast<T>(modelWithJSON<T>(modelToJSONString(record))),
          T::initWithCoder(Coder(archive.data())), std::static_pointer_cast<T>(file.records.at(0))};
}

TEST(AwkwardValues, TheInnermostScalarsOfTheDeepestValueSurviveEveryForm) {
  for (const Value& scalar : {Value(7), Value("text"), Value(true), Value(0.5)}) {
    for (const bool inObjects : {false, true}) {
      VelWbVecDiagram diagram;
      diagram.type = "diagram";
      diagram.points = Array{1, nested(kMaximumValueDepth - 1, scalar, inObjects), 2};
      for (const auto& restored : throughAllForms(diagram)) EXPECT_EQ(*restored, diagram);
    }
  }
}

TEST(AwkwardValues, WhatARecordNestsTooDeepIsNullInTheDictionaryAndTheRestIsWritten) {
  VelWbVecDiagram diagram;
  diagram.points = Array{1, nested(kMaximumValueDepth), 2};
  const Value expected = Array{1, nested(kMaximumValueDepth - 1, nullptr), 2};
  EXPECT_EQ(modelToJSONObject(diagram).at("points"), expected);
  EXPECT_EQ(Value::parse(modelToJSONString(diagram)).at("points"), expected);
}

TEST(AwkwardValues, WhatARecordNestsTooDeepIsLeftOutOfAFileAndTheRestIsRead) {
  VelWbVecDiagram diagram;
  diagram.type = "diagram";
  diagram.points = Array{1, nested(kMaximumValueDepth), 2};
  const auto file =
      readPropertyList(VelWbVecDiagram::ownClass(), propertyListOf({diagram.copyWithZone()}));
  diagram.points = Array{1, nested(kMaximumValueDepth - 2, Array()), 2};
  ASSERT_EQ(file.records.size(), 1U);
  EXPECT_EQ(*file.records[0], diagram);
}

/// Three elements of a list, the second with a value under `key` that is nested too deep.
Array elementsWithOneDeepValue(const char* key, std::size_t depth) {
  Dictionary second{{"ID", "b"}, {"fileID", "b"}};
  second[key] = nested(depth);
  return Array{Dictionary{{"ID", "a"}, {"fileID", "a"}}, second,
               Dictionary{{"ID", "c"}, {"fileID", "c"}}};
}

TEST(AwkwardValues, ADeepValueInOneItemOfAMediaListCostsOnlyItself) {
  for (const char* key : {"unknown", "url", "owner"}) {
    for (const std::size_t depth :
         {std::size_t{255}, std::size_t{256}, std::size_t{257}, std::size_t{2000}}) {
      const Dictionary dictionary{{"type", "mediaList"},
                                  {"list", elementsWithOneDeepValue(key, depth)}};
      const std::string items = R"([{"ID":"a"},{")" + std::string(key) +
                                "\":" + std::string(depth, '[') + std::string(depth, ']') +
                                R"(,"ID":"b"},{"ID":"c"}])";
      const VectorPtr lists[] = {
          modelWithDictionary<VelWbBaseVector>(dictionary),
          modelWithJSON<VelWbBaseVector>(R"({"type":"mediaList","list":)" + items + "}"),
          std::static_pointer_cast<VelWbBaseVector>(
              recordWithXML(VelWbBaseVector::ownClass(), xmlOf(dictionary)))};
      for (const auto& each : lists) {
        const auto* list = recordCast<const VelWbVecMediaList>(each.get());
        ASSERT_TRUE(list != nullptr && list->list && list->list->size() == 3U) << key << depth;
        EXPECT_EQ(list->list->at(0)->ID, "a");
        EXPECT_EQ(list->list->at(1)->ID, "b");
        EXPECT_EQ(list->list->at(1)->url, std::nullopt);
        EXPECT_EQ(list->list->at(2)->ID, "c");
      }
    }
  }
}

TEST(AwkwardValues, ADeepValueInOneImageOfAResourceCostsOnlyItself) {
  const Dictionary dictionary{{"id", 5}, {"images", elementsWithOneDeepValue("unknown", 300)}};
  const std::shared_ptr<VelWhiteBoardResource> resources[] = {
      modelWithDictionary<VelWhiteBoardResource>(dictionary),
      modelWithJSON<VelWhiteBoardResource>(Value(dictionary).dump()),
      std::static_pointer_cast<VelWhiteBoardResource>(
          recordWithXML(VelWhiteBoardResource::ownClass(), xmlOf(dictionary)))};
  for (const auto& resource : resources) {
    EXPECT_EQ(resource->id, 5U);
    ASSERT_EQ(resource->getTotalPage(), 3);
    EXPECT_EQ(resource->images->at(1)->fileID, "b");
  }
}

TEST(AwkwardValues, AFreeFormValueInAnElementOfAListMayBeAsDeepAsAnyOther) {
  for (const std::size_t depth : {kMaximumValueDepth, kMaximumValueDepth + 1}) {
    const Dictionary dictionary{{"list", Array{Dictionary{{"array", nested(depth)}, {"text", "a"}},
                                               Dictionary{{"array", Array{1}}, {"text", "b"}}}}};
    const std::shared_ptr<AllKinds> records[] = {
        modelWithDictionary<AllKinds>(dictionary),
        modelWithJSON<AllKinds>(Value(dictionary).dump()),
        std::static_pointer_cast<AllKinds>(recordWithXML(AllKinds::ownClass(), xmlOf(dictionary)))};
    for (const auto& record : records) {
      ASSERT_TRUE(record->list && record->list->size() == 2U);
      EXPECT_EQ(record->list->at(0)->text, "a");
      EXPECT_EQ(record->list->at(0)->array.has_value(), depth == kMaximumValueDepth);
      EXPECT_EQ(record->list->at(1)->array, Array{1});
    }
  }
}

TEST(AwkwardValues, RecordsInsideRecordsWithoutEndAreNoDanger) {
  std::string text = R"({"text":"end"})";
  std::string before;
  for (int level = 0; level < 50'000; ++level) before += R"({"text":"a","list":[)";
  std::string after;
  for (int level = 0; level < 50'000; ++level) after += "]}";
  const auto fromText = modelWithJSON<AllKinds>(before + text + after);
  ASSERT_TRUE(fromText);
  EXPECT_EQ(fromText->text, "a");
  ASSERT_TRUE(fromText->list);
  EXPECT_EQ(fromText->list->at(0)->text, "a");

  Value value = Dictionary{{"text", "end"}};
  for (int level = 0; level < 50'000; ++level) {
    Value outer = Dictionary{{"text", "a"}};
    outer["list"] = Array();
    outer["list"].push_back(std::move(value));
    value = std::move(outer);
  }
  const auto record = modelWithDictionary<AllKinds>(value.get_ref<const Dictionary&>());
  EXPECT_EQ(record->text, "a");
  EXPECT_EQ(record->list->at(0)->text, "a");
}

TEST(AwkwardValues, ADeepElementOfAJSONArrayCostsOnlyItself) {
  for (const std::size_t depth : {1000U, 1023U, 1024U, 1025U, 5000U, 200'000U}) {
    const std::string deep = std::string(depth, '[') + std::string(depth, ']');
    const auto records = modelArrayWithJSON<VelWbBaseVector>(
        R"([{"type":"line","ID":"a"},{"type":"line","ID":"b","unknown":)" + deep +
        R"(},{"type":"diagram","ID":"c","points":)" + deep + "}," + deep +
        R"(,{"type":"line","ID":"d"}])");
    ASSERT_EQ(records.size(), 4U) << depth;
    EXPECT_EQ(records[0]->ID, "a");
    EXPECT_EQ(records[1]->ID, "b");
    EXPECT_EQ(records[2]->ID, "c");
    EXPECT_EQ(static_cast<const VelWbVecDiagram&>(*records[2]).points, std::nullopt);
    EXPECT_EQ(records[3]->ID, "d");
  }
  EXPECT_EQ(modelArrayWithJSON<VelWbBaseVector>(R"([{"ID":"a"}])").size(), 1U) << "as before";
}

TEST(AwkwardValues, AnArchiveThatIsUsedAgainForgetsThePropertiesThatAreAbsent) {
  VelWbVecDiagram full;
  full.type = "diagram";
  full.ID = "first";
  full.path = Path{{1, 2, 3}};
  full.points = Array{1};
  full.color = "#112233FF";
  Coder archive;
  full.encodeWithCoder(archive);
  VelWbVecDiagram bare;
  bare.ID = "second";
  bare.encodeWithCoder(archive);
  EXPECT_EQ(*VelWbVecDiagram::initWithCoder(archive), bare);
  EXPECT_EQ(*VelWbVecDiagram::initWithCoder(Coder(archive.data())), bare);
  EXPECT_EQ(archive.decode("points"), nullptr);
}

TEST(AwkwardValues, ABinaryValueIsNullInAnArchiveAndTheRestSurvives) {
  for (const Value& binary : {Value::binary({1, 2, 3}), Value::binary({}), Value::binary({1}, 5),
                              Value(Value::value_t::discarded)}) {
    VelWbVecDiagram diagram;
    diagram.type = "diagram";
    diagram.points = Array{1, binary, Dictionary{{"k", Array{binary, 2}}}};
    Coder archive;
    diagram.encodeWithCoder(archive);
    diagram.points = Array{1, nullptr, Dictionary{{"k", Array{nullptr, 2}}}};
    EXPECT_EQ(*VelWbVecDiagram::initWithCoder(Coder(archive.data())), diagram);

    Coder other;
    other.encode("a", 1);
    other.encode("b", binary);
    EXPECT_EQ(*Coder(other.data()).decode("a"), 1);
    EXPECT_EQ(*Coder(other.data()).decode("b"), nullptr);
  }
  // Another program's archive: {"a": h'01', "b": [h'', 2]}.
  const Coder foreign(std::string_view("\xA2\x61\x61\x41\x01\x61\x62\x82\x40\x02"));
  EXPECT_EQ(*foreign.decode("a"), nullptr);
  EXPECT_EQ(*foreign.decode("b"), (Array{nullptr, 2}));
}

TEST(AwkwardValues, ADeepValueIsNullInAnArchiveAndTheRestSurvives) {
  for (const std::size_t depth : {std::size_t{257}, std::size_t{1000}, std::size_t{100'000}}) {
    Coder archive;
    archive.encode("a", 1);
    archive.encode("b", nested(depth));
    archive.encode("c", 3);
    const Coder restored(archive.data());
    ASSERT_NE(restored.decode("a"), nullptr);
    EXPECT_EQ(*restored.decode("a"), 1);
    EXPECT_EQ(*restored.decode("b"), nullptr);
    EXPECT_EQ(*restored.decode("c"), 3);
  }
}

TEST(AwkwardValues, AnArchiveOfAnyNumberOfKeysComesBack) {
  for (const int count : {0, 1, 23, 24, 255, 256, 65535, 65536, 70000}) {
    Coder archive;
    for (int key = 0; key < count; ++key) archive.encode(std::to_string(key), key);
    const Coder restored(archive.data());
    EXPECT_EQ(restored.values(), archive.values()) << count;
  }
}

TEST(AwkwardValues, AnArchiveThatWasMovedFromIsEmptyAndCanBeUsedAgain) {
  Coder archive;
  archive.encode("a", 1);
  const Coder taken = std::move(archive);
  EXPECT_EQ(*taken.decode("a"), 1);
  archive = Coder();
  archive.encode("b", 2);
  archive.remove("b");
  archive.remove("b");
  EXPECT_TRUE(archive.values().empty());
}

TEST(AwkwardValues, BytesThatAreNotUTF8AreReplacedInTheDictionaryAsInTheText) {
  VelWbVecDiagram diagram;
  diagram.type = "diagram";
  diagram.ID =
      "a\xFF"
      "b\xC3";
  diagram.kind = "\xE2\x82";
  diagram.color = "whole: \xE7\x99\xBD";
  diagram.points = Array{"\x80", Dictionary{{"k\xFF", "\xED\xA0\x80"}}};
  const Dictionary form = modelToJSONObject(diagram);
  EXPECT_EQ(form.at("ID"),
            "a\xEF\xBF\xBD"
            "b\xEF\xBF\xBD");
  EXPECT_EQ(form.at("kind"), "\xEF\xBF\xBD");
  EXPECT_EQ(form.at("color"), "whole: \xE7\x99\xBD");
  EXPECT_EQ(form.at("points")[1].begin().key(), "k\xEF\xBF\xBD");
  const Value read = Value::parse(modelToJSONString(diagram));
  for (const char* key : {"ID", "kind", "color", "points"}) EXPECT_EQ(read.at(key), form.at(key));
  EXPECT_NO_THROW(static_cast<void>(Value(form).dump()));
  EXPECT_EQ(diagram.ID,
            "a\xFF"
            "b\xC3")
      << "the record itself stays";
}

TEST(AwkwardValues, AByteOrderMarkBeforeAJSONTextIsSkipped) {
  const std::string mark = "\xEF\xBB\xBF";
  const auto record = modelWithJSON<VelWbBaseVector>(mark + R"( {"type":"line","ID":"a"})");
  ASSERT_TRUE(record);
  EXPECT_EQ(record->ID, "a");
  EXPECT_EQ(modelArrayWithJSON<VelWbBaseVector>(mark + R"([{"ID":"a"},{"ID":"b"}])").size(), 2U);
  EXPECT_EQ(modelWithJSON<VelWbBaseVector>(mark + R"({"ID":"a","x":1e400})")->ID, "a");
  EXPECT_EQ(modelWithJSON<VelWbBaseVector>(mark), nullptr);
  EXPECT_EQ(modelWithJSON<VelWbBaseVector>(mark + mark + "{}"), nullptr) << "only one";
  EXPECT_EQ(modelWithJSON<VelWbBaseVector>(" " + mark + "{}"), nullptr) << "only in front";
}

}  // namespace
}  // namespace VelWhiteBoard
