// Files, media items and texts on the board: which of their own fields an update gives.
#include <cstdint>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/commands.h"

#include "tests/support/boxes.h"
#include "tests/support/print_records.h"
#include "tests/support/special_numbers.h"

namespace VelWhiteBoard {
namespace {

TEST(BoxContents, AFileTakesANonEmptyAddressAndAlwaysWhetherItMayBeDeleted) {
  auto stored = box<VelWbVecFile>();
  stored.url = "old";
  stored.undeletable = true;
  stored.rotation = 30;
  auto change = update<VelWbVecFile>();
  change.url = "";
  change.rotation = 90;
  stored.merge(change);
  EXPECT_EQ(stored.url, "old");
  EXPECT_FALSE(stored.undeletable);
  EXPECT_EQ(stored.rotation, 30.0) << "merging never turns a box";
  change.url = std::nullopt;
  change.undeletable = true;
  stored.merge(change);
  EXPECT_EQ(stored.url, "old");
  EXPECT_TRUE(stored.undeletable);
  change.url = "new";
  stored.merge(change);
  EXPECT_EQ(stored.url, "new");
}

TEST(BoxContents, AFileTakesNothingOfItsOwnFromAPlainBox) {
  auto stored = box<VelWbVecFile>();
  stored.url = "old";
  stored.undeletable = true;
  stored.merge(update<VelWbVecSquare>());
  EXPECT_EQ(stored.url, "old");
  EXPECT_TRUE(stored.undeletable);
  EXPECT_EQ(stored.ts, 2.0);
}

TEST(BoxContents, AMediaItemReadsAFileUpdateByTheRuleForFiles) {
  auto stored = box<VelWbVecVideo>();
  stored.autoPlayTs = 5;
  auto change = update<VelWbVecFile>();
  change.url = "new";
  change.undeletable = true;
  stored.merge(change);
  EXPECT_EQ(stored.url, "new");
  EXPECT_TRUE(stored.undeletable);
  EXPECT_EQ(stored.autoPlayTs, 5);
}

/// A stored media item with a value in every field.
VelWbVecVideo media() {
  auto stored = box<VelWbVecVideo>();
  stored.url = "url";
  stored.rotation = 10;
  stored.undeletable = true;
  stored.owner = 11;
  stored.kind = "video";
  stored.manualPlayTs = 12;
  stored.autoPlayTs = 13;
  stored.status = "status";
  stored.duration = 14;
  stored.title = "title";
  stored.cover = "cover";
  return stored;
}

TEST(BoxContents, AMediaUpdateThatCarriesNothingResetsOnlyWhatIsTakenAlways) {
  auto stored = media();
  auto change = update<VelWbVecVideo>();
  change.manualPlayTs = -1;
  stored.merge(change);
  auto expected = media();
  expected.ts = 2;
  expected.undeletable = false;
  expected.autoPlayTs = 0;
  EXPECT_EQ(stored, expected);
}

TEST(BoxContents, AMediaUpdateOfEmptyStringsEmptiesKindAndCoverOnly) {
  auto stored = media();
  auto change = update<VelWbVecVideo>();
  change.url = change.title = change.status = change.kind = change.cover = "";
  stored.merge(change);
  EXPECT_EQ(stored.url, "url");
  EXPECT_EQ(stored.title, "title");
  EXPECT_EQ(stored.status, "status");
  EXPECT_EQ(stored.kind, "");
  EXPECT_EQ(stored.cover, "");
}

TEST(BoxContents, AMediaUpdateGivesEverythingButDurationAndRotation) {
  auto stored = media();
  auto change = update<VelWbVecVideo>();
  change.url = "url2";
  change.title = "title2";
  change.owner = 1;
  change.manualPlayTs = 0;
  change.autoPlayTs = -9;
  change.status = "status2";
  change.kind = "audio";
  change.cover = "cover2";
  change.duration = 99;
  change.rotation = 99;
  change.undeletable = true;
  stored.merge(change);
  auto expected = media();
  expected.ts = 2;
  expected.url = "url2";
  expected.title = "title2";
  expected.owner = 1;
  expected.manualPlayTs = 0;
  expected.autoPlayTs = -9;
  expected.status = "status2";
  expected.kind = "audio";
  expected.cover = "cover2";
  EXPECT_EQ(stored, expected);
}

TEST(BoxContents, AnOwnerBelowOneAndANegativePlaybackTimeAreNotGiven) {
  for (const std::int64_t number : {std::int64_t{0}, std::int64_t{-1}, INT64_MIN}) {
    auto stored = media();
    auto change = update<VelWbVecVideo>();
    change.owner = number;
    change.manualPlayTs = number;
    stored.merge(change);
    EXPECT_EQ(stored.owner, 11) << number;
    EXPECT_EQ(stored.manualPlayTs, number == 0 ? 0 : 12) << number;
  }
}

/// A stored text with a value in every field.
VelWbVecText textBox() {
  auto stored = box<VelWbVecText>();
  stored.text = "text";
  stored.fontSize = 20;
  stored.fontName = "font";
  stored.color = "#112233FF";
  stored.bgColor = "#445566FF";
  return stored;
}

TEST(BoxContents, ATextUpdateThatCarriesNothingChangesOnlyTheTime) {
  auto stored = textBox();
  stored.merge(update<VelWbVecText>());
  auto expected = textBox();
  expected.ts = 2;
  EXPECT_EQ(stored, expected);
}

TEST(BoxContents, ATextUpdateOfEmptyStringsEmptiesTheBackgroundOnly) {
  auto stored = textBox();
  auto change = update<VelWbVecText>();
  change.text = change.fontName = change.color = change.bgColor = "";
  stored.merge(change);
  auto expected = textBox();
  expected.ts = 2;
  expected.bgColor = "";
  EXPECT_EQ(stored, expected);
}

TEST(BoxContents, ATextUpdateGivesAllItsFieldsButTheReferenceWidth) {
  auto stored = textBox();
  auto change = update<VelWbVecText>();
  change.ps = 999;
  change.text = "text2";
  change.fontSize = 0.5;
  change.fontName = "font2";
  change.color = "#000000FF";
  change.bgColor = "#FFFFFFFF";
  stored.merge(change);
  EXPECT_EQ(stored.ps, 400);
  EXPECT_EQ(stored.text, "text2");
  EXPECT_EQ(stored.fontSize, 0.5);
  EXPECT_EQ(stored.fontName, "font2");
  EXPECT_EQ(stored.color, "#000000FF");
  EXPECT_EQ(stored.bgColor, "#FFFFFFFF");
}

TEST(BoxContents, AFontSizeOfZeroOrLessIsNotGiven) {
  for (const double size : {0.0, -0.0, -1.0, kNaN}) {
    auto stored = textBox();
    auto change = update<VelWbVecText>();
    change.fontSize = size;
    stored.merge(change);
    EXPECT_EQ(stored.fontSize, 20.0) << size;
  }
}

TEST(BoxContents, ABoxMergedWithItselfStaysAsItIs) {
  auto video = media();
  video.merge(video);
  EXPECT_EQ(video, media());
  auto text = textBox();
  text.merge(text);
  EXPECT_EQ(text, textBox());
  VelWbVecSquare nameless;
  nameless.ts = 5;
  nameless.merge(nameless);
  EXPECT_EQ(nameless.ts, 5.0);
}

TEST(BoxContents, MergingThroughTheBaseUsesTheRuleOfTheObject) {
  auto text = textBox();
  auto change = update<VelWbVecText>();
  change.text = "new";
  static_cast<VelWbVecSquare&>(text).merge(change);
  EXPECT_EQ(text.text, "new");
}

TEST(BoxContents, AMutableCopyOfAFileLeavesOutTheReferenceWidth) {
  auto source = box<VelWbVecFile>();
  source.url = "u";
  source.rotation = 5;
  source.undeletable = true;
  auto expected = source;
  expected.ps = 0;
  EXPECT_EQ(*source.mutableCopyWithZone(), expected);
}

TEST(BoxContents, AMutableCopyOfAMediaItemLeavesOutReferenceWidthPathAndUndeletable) {
  auto expected = media();
  expected.ps = 0;
  expected.path = std::nullopt;
  expected.undeletable = false;
  EXPECT_EQ(*media().mutableCopyWithZone(), expected);
}

TEST(BoxContents, AMutableCopyOfATextLeavesNothingOut) {
  EXPECT_EQ(*textBox().mutableCopyWithZone(), textBox());
}

TEST(BoxContents, AMutableCopyIsItsOwnRecord) {
  const auto source = textBox();
  const auto copy = source.mutableCopyWithZone();
  copy->path->push_back({4, 5, 6});
  copy->text = "changed";
  EXPECT_EQ(source, textBox());
}

TEST(BoxContents, TheDictionaryFormHasTheKeysOfTheClass) {
  EXPECT_EQ(Value(modelToJSONObject(VelWbVecFile())),
            Value::parse(R"({"ts":0.0,"x":0.0,"y":0.0,"ps":0,"end":false,"w":0.0,"h":0.0,
                             "rotation":0.0,"undeletable":false})"));
  EXPECT_EQ(modelToJSONObject(media()).at("undeletable"), true);
}

}  // namespace
}  // namespace VelWhiteBoard
