// The page that a page key names: the exact inverse of `pageInfo()`.
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "VelWhiteBoard/vectors/commands.h"

#include "tests/support/print_records.h"
#include "tests/support/random_records.h"

namespace VelWhiteBoard {
namespace {

std::shared_ptr<VelWbVecSwitchPage> read(std::string_view info) {
  return VelWbVecSwitchPage::pageFromInfo(info);
}

VelWbVecSwitchPage pageWith(std::int64_t WBID, std::uint64_t curPage) {
  VelWbVecSwitchPage result;
  result.WBID = WBID;
  result.curPage = curPage;
  return result;
}

TEST(PageFromInfo, GivesTheBoardAndThePageOfTheKey) {
  const auto found = read("12_3");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->WBID, 12);
  EXPECT_EQ(found->curPage, 3U);
}

TEST(PageFromInfo, IsANewSwitchPageWithNothingElseSet) {
  const auto expected = VelWbVecSwitchPage::initWithType("switchPage");
  expected->WBID = 12;
  expected->curPage = 3;
  const auto found = read("12_3");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(*found, *expected);
  EXPECT_NE(read("12_3"), found) << "each call gives a page of its own";
}

TEST(PageFromInfo, TakesTheEndsOfBothRanges) {
  for (const std::int64_t WBID : {std::int64_t{0}, std::int64_t{-1}, INT64_MIN, INT64_MAX}) {
    for (const std::uint64_t curPage : {std::uint64_t{0}, std::uint64_t{1}, UINT64_MAX}) {
      const std::string key = pageWith(WBID, curPage).pageInfo();
      const auto found = read(key);
      ASSERT_NE(found, nullptr) << key;
      EXPECT_EQ(found->WBID, WBID) << key;
      EXPECT_EQ(found->curPage, curPage) << key;
    }
  }
}

TEST(PageFromInfo, RefusesWhatLiesBeyondTheRanges) {
  for (const char* key :
       {"9223372036854775808_1", "-9223372036854775809_1", "1_18446744073709551616", "1_-1",
        "99999999999999999999999999_1", "1_99999999999999999999999999", "18446744073709551628_3"}) {
    EXPECT_EQ(read(key), nullptr) << key;
  }
}

TEST(PageFromInfo, RefusesANumberThatIsWrittenInAnotherWay) {
  for (const char* key :
       {"012_3", "12_03", "00_0", "0_00", "-0_1", "1_-0", "-01_3", "+12_3", "12_+3", "0x12_3",
        "12_0x3", "1e1_3", "12.0_3", "12_3.0", "--1_3", "- 1_3", "1,000_3", "a_b", "nan_1"}) {
    EXPECT_EQ(read(key), nullptr) << key;
  }
}

TEST(PageFromInfo, RefusesSpacesWhereverTheyStand) {
  for (const char* key : {" 12_3", "12 _3", "12_ 3", "12_3 ", "\t12_3", "12_3\n", "12_3\r\n"}) {
    EXPECT_EQ(read(key), nullptr) << key;
  }
}

TEST(PageFromInfo, RefusesAKeyWithAPartTooFewOrTooMany) {
  for (const char* key : {"", "_", "12", "12_", "_3", "-_3", "12__3", "12_3_", "_12_3", "12_3_4",
                          "12-3", "12_3.plist"}) {
    EXPECT_EQ(read(key), nullptr) << key;
  }
}

TEST(PageFromInfo, RefusesCharactersThatOnlyLookLikeDigitsAndNullCharacters) {
  EXPECT_EQ(read(std::string_view("12_3\0", 5)), nullptr);
  EXPECT_EQ(read(std::string_view("12\0_3", 5)), nullptr);
  EXPECT_EQ(read(std::string_view("\0", 1)), nullptr);
  EXPECT_EQ(read("\xEF\xBC\x91_3"), nullptr) << "a full-width digit";
  EXPECT_EQ(read("\xE2\x88\x92"
                 "1_3"),
            nullptr)
      << "a minus sign that is no hyphen";
  EXPECT_EQ(read("\xFF_\xFE"), nullptr);
  EXPECT_EQ(read(std::string_view()), nullptr);
}

TEST(PageFromInfo, ReadsTheViewOnlyAndNotWhatFollowsIt) {
  const auto found = read(std::string_view("12_345", 4));
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->curPage, 3U);
}

TEST(PageFromInfo, RefusesALongTextOfDigits) {
  EXPECT_EQ(read(std::string(1'000'000, '0') + "1_3"), nullptr);
  EXPECT_EQ(read("1_" + std::string(1'000'000, '9')), nullptr);
}

TEST(PageFromInfo, InvertsThePageKeyOfAnyPage) {
  SCOPED_TRACE("VELWB_TEST_SEED=" + std::to_string(testSeed()));
  std::mt19937_64 engine(testSeed());
  for (int round = 0; round < 10000; ++round) {
    // Numbers of every length: 64 random bits alone would nearly always have the full one.
    const auto WBID = std::bit_cast<std::int64_t>(engine()) >> engine() % 64;
    const std::uint64_t curPage = engine() >> engine() % 64;
    const std::string key = pageWith(WBID, curPage).pageInfo();
    const auto found = read(key);
    ASSERT_NE(found, nullptr) << key;
    ASSERT_EQ(found->WBID, WBID);
    ASSERT_EQ(found->curPage, curPage);
  }
}

TEST(PageFromInfo, TakesNoTextThatIsNotThePageKeyOfItsResult) {
  SCOPED_TRACE("VELWB_TEST_SEED=" + std::to_string(testSeed()));
  std::mt19937_64 engine(testSeed());
  constexpr std::string_view kSigns = "0123456789--__+ ";
  int taken = 0;
  int refused = 0;
  for (int round = 0; round < 100000; ++round) {
    std::string text;
    for (std::size_t length = engine() % 7; length > 0; --length) {
      text += kSigns[engine() % kSigns.size()];
    }
    const auto found = read(text);
    if (found != nullptr) {
      ASSERT_EQ(found->pageInfo(), text);
    }
    ++(found != nullptr ? taken : refused);
  }
  EXPECT_GT(taken, 0);
  EXPECT_GT(refused, 0);
}

}  // namespace
}  // namespace VelWhiteBoard
