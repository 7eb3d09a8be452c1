// Media lists and their items.
#include "VelWhiteBoard/vectors/media_lists.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/print_records.h"

namespace VelWhiteBoard {
namespace {

using Items = std::vector<std::shared_ptr<VelWbVecMediaItem>>;

std::shared_ptr<VelWbVecMediaItem> item(const char* ID) {
  auto result = std::make_shared<VelWbVecMediaItem>();
  result->ID = ID;
  return result;
}

VelWbVecMediaItem fullItem() {
  VelWbVecMediaItem result;
  result.ID = "i";
  result.owner = 1;
  result.url = "u";
  result.duration = 2;
  result.category = 3;
  result.title = "t";
  result.cover = "c";
  return result;
}

TEST(MediaLists, TheInitialStateIsZeroAndNull) {
  EXPECT_EQ(VelWbVecMediaList().owner, 0);
  EXPECT_EQ(VelWbVecMediaList().list, std::nullopt);
  const VelWbVecMediaItem media;
  EXPECT_EQ(media.ID, std::nullopt);
  EXPECT_EQ(media.owner, 0);
  EXPECT_EQ(media.url, std::nullopt);
  EXPECT_EQ(media.duration, 0);
  EXPECT_EQ(media.category, 0);
  EXPECT_EQ(media.title, std::nullopt);
  EXPECT_EQ(media.cover, std::nullopt);
}

TEST(MediaLists, ADictionaryOfItemDictionariesDecodesToItemsWithTheirFields) {
  const char* json = R"({"type":"mediaList","ts":5,"ID":"m","owner":9,"list":[
    {"ID":"a","owner":1,"url":"u","duration":2,"category":3,"title":"t","cover":"c"},
    {"ID":"b","type":"line","w":5}]})";
  for (const VectorPtr& vector :
       {modelWithJSON<VelWbBaseVector>(json),
        modelWithDictionary<VelWbBaseVector>(Value::parse(json).get<Dictionary>())}) {
    const auto* list = recordCast<VelWbVecMediaList>(vector.get());
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->owner, 9);
    ASSERT_TRUE(list->list);
    ASSERT_EQ(list->list->size(), 2U);
    auto expected = fullItem();
    expected.ID = "a";
    EXPECT_EQ(*list->list->at(0), expected);
    EXPECT_EQ(*list->list->at(1), *item("b")) << "an item is never decoded as a vector";
    EXPECT_EQ(list->list->at(1)->cover, std::nullopt);
  }
}

TEST(MediaLists, WhatIsNoDictionaryInAListIsSkippedAndANullListIsNone) {
  const auto list = [](const char* json) {
    const VectorPtr vector = modelWithJSON<VelWbBaseVector>(json);
    return recordCast<VelWbVecMediaList>(vector.get())->list;
  };
  EXPECT_EQ(list(R"({"type":"mediaList","list":[1,null,"a",[],{"ID":"a"}]})")->size(), 1U);
  EXPECT_EQ(list(R"({"type":"mediaList","list":[]})"), Items{});
  EXPECT_EQ(list(R"({"type":"mediaList","list":null})"), std::nullopt);
  EXPECT_EQ(list(R"({"type":"mediaList"})"), std::nullopt);
}

TEST(MediaLists, AnEncodedListDecodesToAnEqualOne) {
  VelWbVecMediaList list;
  list.type = "mediaList";
  list.ts = 0.1;
  list.owner = INT64_MIN;
  list.list = Items{std::make_shared<VelWbVecMediaItem>(fullItem()), item("b")};
  EXPECT_EQ(modelToJSONString(list),
            R"({"type":"mediaList","ts":0.1,"owner":-9223372036854775808,"list":[)"
            R"({"ID":"i","owner":1,"url":"u","duration":2,"category":3,"title":"t","cover":"c"},)"
            R"({"ID":"b","owner":0,"duration":0,"category":0}]})");
  EXPECT_EQ(*modelWithDictionary<VelWbBaseVector>(modelToJSONObject(list)), list);
  EXPECT_EQ(*modelWithJSON<VelWbBaseVector>(modelToJSONString(list)), list);
}

TEST(MediaLists, NullPointersAmongTheItemsAreLeftOutOfTheDictionary) {
  VelWbVecMediaList list;
  list.list = Items{nullptr, item("a"), nullptr};
  EXPECT_EQ(modelToJSONObject(list).at("list").size(), 1U);
  EXPECT_EQ(modelToJSONString(list),
            R"({"ts":0,"owner":0,"list":[{"ID":"a","owner":0,"duration":0,"category":0}]})");
}

TEST(MediaLists, TheElementsOfTheListAreMediaItems) {
  const auto classes = VelWbVecMediaList::modelContainerPropertyGenericClass();
  EXPECT_THAT(classes,
              ::testing::ElementsAre(::testing::Pair("list", &VelWbVecMediaItem::ownClass())));
}

TEST(MediaLists, MergingReplacesTheItemsWholesaleAndNothingElse) {
  VelWbVecMediaList list;
  list.type = "mediaList";
  list.ID = "m";
  list.owner = 1;
  list.list = Items{item("a"), item("b")};
  VelWbVecMediaList other;
  other.type = "another";
  other.ts = 9;
  other.owner = 2;
  other.list = Items{item("c")};
  list.merge(other);
  EXPECT_EQ(list.type, "mediaList");
  EXPECT_EQ(list.ts, 0.0);
  EXPECT_EQ(list.owner, 1);
  EXPECT_EQ(list.list, other.list) << "the very items are shared";
  other.list->push_back(item("d"));
  EXPECT_EQ(list.list->size(), 1U) << "the array is the receiver's own";
}

TEST(MediaLists, MergingWithAnAbsentListKeepsTheItemsAndWithAnEmptyOneEmptiesThem) {
  VelWbVecMediaList list;
  list.list = Items{item("a")};
  const Items before = *list.list;
  list.merge(VelWbVecMediaList());
  EXPECT_EQ(list.list, before);
  VelWbVecMediaList empty;
  empty.list.emplace();
  list.merge(empty);
  EXPECT_EQ(list.list, Items{});
}

TEST(MediaLists, AListMergedWithItselfStaysAsItIs) {
  VelWbVecMediaList list;
  list.list = Items{item("a"), item("b")};
  const Items before = *list.list;
  list.merge(list);
  EXPECT_EQ(list.list, before);
}

TEST(MediaLists, AMutableCopyLeavesOutTheOwnerAndSharesTheItems) {
  VelWbVecMediaList list;
  list.type = "mediaList";
  list.ts = 1;
  list.ID = "m";
  list.owner = 9;
  EXPECT_EQ(list.mutableCopyWithZone()->list, std::nullopt);
  list.list = Items{item("a"), item("b")};
  const auto copy = list.mutableCopyWithZone();
  EXPECT_EQ(copy->owner, 0);
  EXPECT_EQ(copy->type, "mediaList");
  EXPECT_EQ(copy->ts, 1.0);
  EXPECT_EQ(copy->ID, "m");
  EXPECT_EQ(copy->list, list.list) << "the very same objects";
  copy->list->pop_back();
  EXPECT_EQ(list.list->size(), 2U);
}

TEST(MediaLists, ListsAreEqualWhenTheirItemsAre) {
  VelWbVecMediaList left;
  VelWbVecMediaList right;
  left.list = Items{item("a"), nullptr};
  right.list = Items{item("a"), nullptr};
  EXPECT_EQ(left, right);
  EXPECT_EQ(left.hash(), right.hash());
  right.list->at(0)->category = 1;
  EXPECT_NE(left, right);
  right.list = Items{nullptr, item("a")};
  EXPECT_NE(left, right);
  right.list = std::nullopt;
  EXPECT_NE(left, right);
  left.list = Items{};
  EXPECT_NE(left, right) << "an empty list is no absent one";
}

TEST(MediaItems, ItemsThatDifferInAnyOnePropertyAreNotEqual) {
  const VelWbVecMediaItem same = fullItem();
  EXPECT_EQ(same, fullItem());
  EXPECT_EQ(same.hash(), fullItem().hash());
  const auto change = [](auto member, auto value) {
    VelWbVecMediaItem changed = fullItem();
    changed.*member = value;
    return changed;
  };
  EXPECT_NE(change(&VelWbVecMediaItem::ID, "x"), same);
  EXPECT_NE(change(&VelWbVecMediaItem::owner, 9), same);
  EXPECT_NE(change(&VelWbVecMediaItem::url, "x"), same);
  EXPECT_NE(change(&VelWbVecMediaItem::duration, 9), same);
  EXPECT_NE(change(&VelWbVecMediaItem::category, 9), same);
  EXPECT_NE(change(&VelWbVecMediaItem::title, std::nullopt), same);
  EXPECT_NE(change(&VelWbVecMediaItem::cover, ""), same);
}

TEST(MediaItems, BothCopiesHaveEveryProperty) {
  const VelWbVecMediaItem source = fullItem();
  EXPECT_EQ(*source.copyWithZone(), source);
  EXPECT_EQ(*source.mutableCopyWithZone(), source);
  EXPECT_EQ(*VelWbVecMediaItem().mutableCopyWithZone(), VelWbVecMediaItem());
  source.mutableCopyWithZone()->title = "changed";
  EXPECT_EQ(source, fullItem());
}

TEST(MediaItems, AnItemComesBackFromAnArchiveAndFromItsDictionary) {
  const VelWbVecMediaItem source = fullItem();
  Coder archive;
  source.encodeWithCoder(archive);
  EXPECT_EQ(*VelWbVecMediaItem::initWithCoder(Coder(archive.data())), source);
  const std::shared_ptr<VelWbVecMediaItem> decoded =
      modelWithDictionary<VelWbVecMediaItem>(modelToJSONObject(source));
  EXPECT_EQ(*decoded, source);
  EXPECT_EQ(*modelWithJSON<VelWbVecMediaItem>(R"({"ID":"a","type":"line"})"), *item("a"));
  EXPECT_EQ(modelArrayWithJSON<VelWbVecMediaItem>(R"([{"ID":"a"},1,{"ID":"b"}])").size(), 2U);
}

TEST(MediaItems, TheDescriptionListsPropertiesAndValues) {
  const std::string description = fullItem().description();
  for (const char* part : {"VelWbVecMediaItem", "ID", "owner", "url", "duration", "category",
                           "title", "cover", "\"u\""}) {
    EXPECT_THAT(description, ::testing::HasSubstr(part));
  }
}

}  // namespace
}  // namespace VelWhiteBoard
