// Commands and the camera capture.
#include "VelWhiteBoard/vectors/commands.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/print_records.h"

namespace VelWhiteBoard {
namespace {

template <class T>
T command(const char* type) {
  T result;
  result.type = type;
  result.ts = 1.5;
  result.ID = "c";
  return result;
}

VelWbVecSwitchPage page(std::int64_t WBID, std::uint64_t curPage) {
  auto result = command<VelWbVecSwitchPage>("switchPage");
  result.WBID = WBID;
  result.curPage = curPage;
  return result;
}

TEST(Commands, TheInitialStateIsZeroFalseAndNull) {
  EXPECT_EQ(VelWbVecRemove().rmID, std::nullopt);
  EXPECT_EQ(VelWbVecClear().resource, 0);
  EXPECT_EQ(VelWbVecClear().clearPage, 0U);
  const VelWbVecSwitchPage switchPage;
  EXPECT_EQ(switchPage.WBID, 0);
  EXPECT_EQ(switchPage.resource, 0);
  EXPECT_EQ(switchPage.url, std::nullopt);
  EXPECT_EQ(switchPage.curPage, 0U);
  EXPECT_EQ(switchPage.totalPage, 0U);
  EXPECT_FALSE(switchPage.imageMode);
  EXPECT_EQ(switchPage.w, 0.0);
  EXPECT_EQ(switchPage.h, 0.0);
  EXPECT_EQ(VelWbVecOffset().direction, 0);
  EXPECT_EQ(VelWbVecOffset().value, 0.0);
  EXPECT_FALSE(VelWbCaptureInfo().isBack);
}

TEST(Commands, ThePageKeyIsBoardAndPageInDecimal) {
  const struct {
    std::int64_t WBID;
    std::uint64_t curPage;
    const char* key;
  } rows[] = {{12, 3, "12_3"},
              {-1, 0, "-1_0"},
              {0, UINT64_MAX, "0_18446744073709551615"},
              {INT64_MIN, 1, "-9223372036854775808_1"},
              {INT64_MAX, UINT64_MAX, "9223372036854775807_18446744073709551615"},
              {0, 0, "0_0"},
              {1000000, 1000000, "1000000_1000000"}};
  for (const auto& row : rows) EXPECT_EQ(page(row.WBID, row.curPage).pageInfo(), row.key);
}

TEST(Commands, NothingButBoardAndPageTakesPartInThePageKey) {
  auto other = page(12, 3);
  other.resource = 7;
  other.url = "u";
  other.totalPage = 9;
  other.imageMode = true;
  other.w = 1;
  other.h = 2;
  other.ts = 99;
  other.ID = "z";
  EXPECT_EQ(other.pageInfo(), page(12, 3).pageInfo());
  EXPECT_NE(other, page(12, 3));
}

TEST(Commands, LargePagesAndNegativeBoardsSurviveDictionaryAndText) {
  auto source = page(INT64_MIN, UINT64_MAX);
  source.resource = -1;
  source.totalPage = UINT64_MAX - 1;
  const auto fromDictionary = modelWithDictionary<VelWbBaseVector>(modelToJSONObject(source));
  EXPECT_EQ(*fromDictionary, source);
  EXPECT_EQ(*modelWithJSON<VelWbBaseVector>(modelToJSONString(source)), source);
  EXPECT_EQ(recordCast<VelWbVecSwitchPage>(fromDictionary.get())->curPage, UINT64_MAX);
}

TEST(Commands, ARemoveWithoutAnIdentifierToRemoveHasNone) {
  const auto vector = modelWithJSON<VelWbBaseVector>(R"({"type":"remove","ID":"c"})");
  const auto* remove = recordCast<VelWbVecRemove>(vector.get());
  ASSERT_NE(remove, nullptr);
  EXPECT_EQ(remove->rmID, std::nullopt);
  EXPECT_EQ(modelToJSONString(*remove), R"({"type":"remove","ts":0,"ID":"c"})");
}

TEST(Commands, TheDictionaryFormsHaveTheirKeys) {
  auto remove = command<VelWbVecRemove>("remove");
  remove.rmID = "r";
  EXPECT_EQ(modelToJSONString(remove), R"({"type":"remove","ts":1.5,"ID":"c","rmID":"r"})");
  auto clear = command<VelWbVecClear>("clear");
  clear.resource = -2;
  clear.clearPage = 3;
  EXPECT_EQ(modelToJSONString(clear),
            R"({"type":"clear","ts":1.5,"ID":"c","resource":-2,"clearPage":3})");
  auto offset = command<VelWbVecOffset>("offset");
  offset.direction = -1;
  offset.value = 0.5;
  EXPECT_EQ(modelToJSONString(offset),
            R"({"type":"offset","ts":1.5,"ID":"c","direction":-1,"value":0.5})");
  auto switchPage = page(1, 2);
  switchPage.url = "u";
  switchPage.imageMode = true;
  EXPECT_EQ(modelToJSONString(switchPage),
            R"({"type":"switchPage","ts":1.5,"ID":"c","WBID":1,"resource":0,"url":"u",)"
            R"("curPage":2,"totalPage":0,"imageMode":true,"w":0,"h":0})");
}

TEST(Commands, MutableCopiesOfTheFourCommandsLeaveNothingOut) {
  auto remove = command<VelWbVecRemove>("remove");
  remove.rmID = "r";
  EXPECT_EQ(*remove.mutableCopyWithZone(), remove);
  auto clear = command<VelWbVecClear>("clear");
  clear.resource = -2;
  clear.clearPage = 3;
  EXPECT_EQ(*clear.mutableCopyWithZone(), clear);
  auto offset = command<VelWbVecOffset>("offset");
  offset.direction = -1;
  offset.value = 0.5;
  EXPECT_EQ(*offset.mutableCopyWithZone(), offset);
  auto switchPage = page(-1, UINT64_MAX);
  switchPage.resource = 4;
  switchPage.url = "u";
  switchPage.totalPage = 5;
  switchPage.imageMode = true;
  switchPage.w = 6;
  switchPage.h = 7;
  EXPECT_EQ(*switchPage.mutableCopyWithZone(), switchPage);
}

TEST(Commands, AMutableCopyOfACaptureLeavesOutTheReferenceWidth) {
  auto capture = command<VelWbCaptureInfo>("camera");
  capture.x = 1;
  capture.y = 2;
  capture.ps = 5;
  capture.end = true;
  capture.w = 3;
  capture.h = 4;
  capture.isBack = true;
  auto expected = capture;
  expected.ps = 0;
  EXPECT_EQ(*capture.mutableCopyWithZone(), expected) << "no path stays no path";
  capture.path = Path{{1, 2, 3}};
  expected.path = capture.path;
  const auto copy = capture.mutableCopyWithZone();
  EXPECT_EQ(*copy, expected);
  copy->path->push_back({4, 5, 6});
  EXPECT_EQ(capture.path->size(), 1U);
}

TEST(Commands, ACaptureIsABoxAndMergesByTheRuleForBoxes) {
  auto capture = command<VelWbCaptureInfo>("camera");
  auto update = capture;
  update.isBack = true;
  update.x = 3;
  update.y = 4;
  update.w = 5;
  update.h = 6;
  update.ts = 9;
  capture.merge(update);
  EXPECT_EQ(capture.x, 3.0);
  EXPECT_EQ(capture.w, 5.0);
  EXPECT_EQ(capture.ts, 9.0);
  EXPECT_FALSE(capture.isBack) << "the rule for boxes knows no camera";
}

TEST(Commands, ACaptureArisesFromADictionaryOfItsType) {
  const auto vector = modelWithJSON<VelWbBaseVector>(R"({"type":"camera","isBack":1,"w":2})");
  const auto* capture = recordCast<VelWbCaptureInfo>(vector.get());
  ASSERT_NE(capture, nullptr);
  EXPECT_TRUE(capture->isBack);
  EXPECT_EQ(capture->w, 2.0);
}

}  // namespace
}  // namespace VelWhiteBoard
