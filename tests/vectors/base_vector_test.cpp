// What every vector can do: copies, equality, hash, description; the tree of classes and their
// keys.
#include "VelWhiteBoard/vectors/base_vector.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/commands.h"
#include "VelWhiteBoard/vectors/diagrams.h"
#include "VelWhiteBoard/vectors/media_lists.h"
#include "VelWhiteBoard/vectors/strokes.h"

#include "tests/support/print_records.h"
#include "tests/support/special_numbers.h"

namespace VelWhiteBoard {
namespace {

TEST(BaseVector, TheInitialStateIsNullAndZero) {
  const VelWbBaseVector vector;
  EXPECT_EQ(vector.type, std::nullopt);
  EXPECT_EQ(vector.ts, 0.0);
  EXPECT_EQ(vector.ID, std::nullopt);
}

TEST(BaseVector, TheDictionaryFormLeavesNullsOutAndAlwaysHasTheNumber) {
  VelWbBaseVector vector;
  EXPECT_EQ(Value(modelToJSONObject(vector)), Value::parse(R"({"ts":0.0})"));
  vector.type = "micPhone";
  vector.ID = "";
  EXPECT_EQ(Value(modelToJSONObject(vector)),
            Value::parse(R"({"type":"micPhone","ts":0.0,"ID":""})"));
}

TEST(BaseVector, AMutableCopyHasTheThreeFields) {
  VelWbBaseVector vector;
  vector.type = "t";
  vector.ts = -1.5;
  vector.ID = "i";
  EXPECT_EQ(*vector.mutableCopyWithZone(), vector);
  EXPECT_EQ(*VelWbBaseVector().mutableCopyWithZone(), VelWbBaseVector());
}

TEST(BaseVector, AFullCopySharesTheElementsOfAListAndNothingElse) {
  VelWbVecMediaList list;
  list.list = {{std::make_shared<VelWbVecMediaItem>()}};
  const auto copy = list.copyWithZone();
  EXPECT_EQ(copy->list->at(0), list.list->at(0));
  copy->list->push_back(nullptr);
  EXPECT_EQ(list.list->size(), 1U);

  VelWbVecLine line;
  line.path = Path{{1, 2, 3}};
  line.offset = Array{1};
  const auto lineCopy = line.copyWithZone();
  lineCopy->path->push_back({4, 5, 6});
  lineCopy->offset->push_back(2);
  EXPECT_EQ(line.path->size(), 1U);
  EXPECT_EQ(line.offset->size(), 1U);
}

TEST(BaseVector, EqualityNeedsEveryPropertyAndTwoNullsAreEqual) {
  VelWbBaseVector left;
  VelWbBaseVector right;
  EXPECT_EQ(left, right);
  EXPECT_TRUE(left.isEqual(left));
  left.type = "";
  EXPECT_NE(left, right) << "an empty string is no null";
  right.type = "";
  EXPECT_EQ(left, right);
  left.ts = 1;
  EXPECT_FALSE(left.isEqual(right));
  right.ts = 1;
  left.ID = "a";
  right.ID = "b";
  EXPECT_NE(left, right);
}

TEST(BaseVector, ARecordEqualsItsCopyWhateverItsNumbers) {
  VelWbVecLine line;
  line.ts = kNaN;
  line.x = -0.0;
  line.path = Path{{kNaN, -0.0}};
  line.offset = Array{kNaN, -0.0, Dictionary{{"a", kNaN}}};
  EXPECT_TRUE(line.isEqual(line));
  EXPECT_EQ(*line.copyWithZone(), line);
  EXPECT_EQ(line.copyWithZone()->hash(), line.hash());
}

TEST(BaseVector, EqualRecordsHaveEqualHashes) {
  VelWbVecLine left;
  VelWbVecLine right;
  left.x = 0.0;
  right.x = -0.0;
  left.path = Path{{0.0, 1}};
  right.path = Path{{-0.0, 1}};
  left.offset = Array{1, 0.0};
  right.offset = Array{1.0, -0.0};
  ASSERT_EQ(left, right);
  EXPECT_EQ(left.hash(), right.hash());
}

TEST(BaseVector, TheHashTellsOrdinaryRecordsApart) {
  VelWbBaseVector vector;
  const std::uint64_t initial = vector.hash();
  vector.ts = 1;
  const std::uint64_t later = vector.hash();
  EXPECT_NE(initial, later);
  vector.type = "line";
  EXPECT_NE(vector.hash(), later);
}

TEST(BaseVector, TheHashIsTheExclusiveOrOverAllProperties) {
  // So what one property adds does not depend on the others.
  VelWbBaseVector nothing;
  VelWbBaseVector timed;
  timed.ts = 5;
  VelWbBaseVector named;
  named.ID = "a";
  VelWbBaseVector both;
  both.ts = 5;
  both.ID = "a";
  EXPECT_EQ(both.hash(), timed.hash() ^ named.hash() ^ nothing.hash());
}

TEST(BaseVector, TheDescriptionListsTheClassAndAllPropertiesByName) {
  VelWbVecText text;
  text.type = "text";
  text.ts = 1.5;
  text.text = "say \"hi\"\n";
  text.path = Path{{1, 2, kNaN}, {}};
  const std::string description = text.description();
  EXPECT_THAT(description, ::testing::HasSubstr("ID = null;"));
  for (const char* part :
       {"VelWbVecText", "type", "ts", "1.5", "ID", "x", "y", "ps", "end", "path", "w", "h",
        "say \\\"hi\\\"\\n", "fontSize", "fontName", "color", "bgColor", "[[1, 2, nan], []]"}) {
    EXPECT_THAT(description, ::testing::HasSubstr(part));
  }
  VelWbVecMediaList list;
  list.list = {{std::make_shared<VelWbVecMediaItem>(), nullptr}};
  list.list->front()->title = "T";
  EXPECT_THAT(list.description(), ::testing::HasSubstr("VelWbVecMediaItem"));
  EXPECT_THAT(list.description(), ::testing::HasSubstr("\"T\""));
}

TEST(BaseVector, RecordsAreCastByTheirClass) {
  VelWbVecCircle circle;
  VelWbVecOffset offset;
  VelWbBaseVector* vector = &circle;
  EXPECT_EQ(recordCast<VelWbVecCircle>(vector), &circle);
  EXPECT_EQ(recordCast<VelWbVecDiagram>(vector), &circle);
  EXPECT_EQ(recordCast<VelWbVecSquare>(*vector), &circle);
  EXPECT_EQ(recordCast<const VelWbVecPoint>(vector), &circle);
  EXPECT_EQ(recordCast<VelWbVecFile>(vector), nullptr);
  EXPECT_EQ(recordCast<VelWbVecPoint>(offset), nullptr);
  EXPECT_EQ(recordCast<VelWbVecCircle>(static_cast<VelWbBaseVector*>(nullptr)), nullptr);
}

TEST(BaseVector, EachClassHasItsNameItsBaseAndItsKeysInTheOrderOfTheirDeclaration) {
  const std::string base = "type ts ID";
  const std::string point = base + " x y ps end path";
  const std::string box = point + " w h";
  const std::string file = box + " url rotation undeletable";
  const std::string diagram = box + " kind points color pixel";
  const struct {
    const RecordClass& own;
    const char* name;
    const char* base;
    std::string keys;
  } rows[] = {
      {VelWbBaseVector::ownClass(), "VelWbBaseVector", "", base},
      {VelWbVecPoint::ownClass(), "VelWbVecPoint", "VelWbBaseVector", point},
      {VelWbVecLine::ownClass(), "VelWbVecLine", "VelWbVecPoint",
       point + " color widthIndex pixel offset"},
      {VelWbVecSquare::ownClass(), "VelWbVecSquare", "VelWbVecPoint", box},
      {VelWbVecFile::ownClass(), "VelWbVecFile", "VelWbVecSquare", file},
      {VelWbVecVideo::ownClass(), "VelWbVecVideo", "VelWbVecFile",
       file + " owner kind manualPlayTs autoPlayTs status duration title cover"},
      {VelWbVecText::ownClass(), "VelWbVecText", "VelWbVecSquare",
       box + " text fontSize fontName color bgColor"},
      {VelWbVecDiagram::ownClass(), "VelWbVecDiagram", "VelWbVecSquare", diagram},
      {VelWbVecCircle::ownClass(), "VelWbVecCircle", "VelWbVecDiagram",
       diagram + " radiusX radiusY"},
      {VelWbCaptureInfo::ownClass(), "VelWbCaptureInfo", "VelWbVecSquare", box + " isBack"},
      {VelWbVecRemove::ownClass(), "VelWbVecRemove", "VelWbBaseVector", base + " rmID"},
      {VelWbVecClear::ownClass(), "VelWbVecClear", "VelWbBaseVector", base + " resource clearPage"},
      {VelWbVecSwitchPage::ownClass(), "VelWbVecSwitchPage", "VelWbBaseVector",
       base + " WBID resource url curPage totalPage imageMode w h"},
      {VelWbVecOffset::ownClass(), "VelWbVecOffset", "VelWbBaseVector", base + " direction value"},
      {VelWbVecMediaList::ownClass(), "VelWbVecMediaList", "VelWbBaseVector", base + " owner list"},
      {VelWbVecMediaItem::ownClass(), "VelWbVecMediaItem", "",
       "ID owner url duration category title cover"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.own.name, row.name);
    EXPECT_EQ(row.own.base == nullptr ? "" : row.own.base->name, row.base) << row.name;
    EXPECT_EQ(row.own.create()->recordClass(), row.own) << row.name;
    std::string keys;
    for (const Property& property : row.own.properties) {
      keys += keys.empty() ? "" : " ";
      keys += property.name;
    }
    EXPECT_EQ(keys, row.keys) << row.name;
  }
}

}  // namespace
}  // namespace VelWhiteBoard
