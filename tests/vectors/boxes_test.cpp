// Boxes: which position, size and time of an update a stored box takes.
#include "VelWhiteBoard/vectors/boxes.h"

#include <cstdint>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "VelWhiteBoard/vectors/commands.h"

#include "tests/support/boxes.h"
#include "tests/support/print_records.h"
#include "tests/support/special_numbers.h"

namespace VelWhiteBoard {
namespace {

TEST(Boxes, TheInitialStateIsZeroFalseAndNull) {
  const VelWbVecVideo video;
  EXPECT_EQ(video.w, 0.0);
  EXPECT_EQ(video.h, 0.0);
  EXPECT_EQ(video.url, std::nullopt);
  EXPECT_EQ(video.rotation, 0.0);
  EXPECT_FALSE(video.undeletable);
  EXPECT_EQ(video.owner, 0);
  EXPECT_EQ(video.kind, std::nullopt);
  EXPECT_EQ(video.manualPlayTs, 0);
  EXPECT_EQ(video.autoPlayTs, 0);
  EXPECT_EQ(video.status, std::nullopt);
  EXPECT_EQ(video.duration, 0);
  EXPECT_EQ(video.title, std::nullopt);
  EXPECT_EQ(video.cover, std::nullopt);
  const VelWbVecText text;
  EXPECT_EQ(text.text, std::nullopt);
  EXPECT_EQ(text.fontSize, 0.0);
  EXPECT_EQ(text.fontName, std::nullopt);
  EXPECT_EQ(text.color, std::nullopt);
  EXPECT_EQ(text.bgColor, std::nullopt);
}

TEST(Boxes, AnUpdateOfAnotherTypeOrIdentifierChangesNotEvenTheTime) {
  using Text = std::optional<std::string>;
  const struct {
    Text type, ID, updateType, updateID;
    bool same;
  } rows[] = {{"t", "b", "t", "b", true},
              {"t", "b", "t", "c", false},
              {"t", "b", "u", "b", false},
              {"t", std::nullopt, "t", std::nullopt, false},
              {std::nullopt, "b", std::nullopt, "b", false},
              {"t", "b", "t", std::nullopt, false},
              {"t", "", "t", "", true}};
  for (const auto& row : rows) {
    auto stored = box<VelWbVecVideo>();
    stored.type = row.type;
    stored.ID = row.ID;
    const auto before = stored.copyWithZone();
    auto change = box<VelWbVecVideo>();
    change.type = row.updateType;
    change.ID = row.updateID;
    change.ts = 9;
    change.x = 5;
    change.url = "u";
    change.undeletable = true;
    change.autoPlayTs = 7;
    stored.merge(change);
    EXPECT_EQ(!stored.isEqual(*before), row.same) << stored.description();
    EXPECT_EQ(stored.ts, row.same ? 9.0 : 1.0);
  }
}

TEST(Boxes, TheTimeFollowsTheUpdateEvenWhenNothingElseChanges) {
  auto stored = box<VelWbVecSquare>();
  auto expected = box<VelWbVecSquare>();
  expected.ts = 2;
  stored.merge(update<VelWbVecSquare>());
  EXPECT_EQ(stored, expected);
  auto earlier = update<VelWbVecSquare>();
  earlier.ts = -5;
  stored.merge(earlier);
  EXPECT_EQ(stored.ts, -5.0) << "backwards too";
}

TEST(Boxes, ThePositionIsTakenWhenBothCoordinatesAreGiven) {
  const struct {
    double x, y;
    bool taken;
  } rows[] = {{-9.99, 5, true},        {5, -9.99, true},    {-10.0, 5, false},
              {5, -10.0, false},       {-10.1, -11, false}, {0, 0, true},
              {-0.5, -0.5, true},      {kNaN, 0, false},    {0, kNaN, false},
              {1e300, -9.999999, true}};
  for (const auto& row : rows) {
    auto stored = box<VelWbVecSquare>();
    auto change = update<VelWbVecSquare>();
    change.x = row.x;
    change.y = row.y;
    stored.merge(change);
    EXPECT_EQ(stored.x, row.taken ? row.x : 0.1) << row.x << " " << row.y;
    EXPECT_EQ(stored.y, row.taken ? row.y : 0.2) << row.x << " " << row.y;
    EXPECT_EQ(stored.ts, 2.0);
  }
}

TEST(Boxes, TheSizeIsTakenWhenBothSidesAreGiven) {
  const struct {
    double w, h;
    bool taken;
  } rows[] = {{5, 6, true},  {5, 0, false},     {0, 6, false},    {-1, 6, false},
              {0, 0, false}, {5e-324, 1, true}, {kNaN, 6, false}, {5, kNaN, false}};
  for (const auto& row : rows) {
    auto stored = box<VelWbVecSquare>();
    auto change = update<VelWbVecSquare>();
    change.w = row.w;
    change.h = row.h;
    stored.merge(change);
    EXPECT_EQ(stored.w, row.taken ? row.w : 0.3) << row.w << " " << row.h;
    EXPECT_EQ(stored.h, row.taken ? row.h : 0.4) << row.w << " " << row.h;
    EXPECT_EQ(stored.x, 0.1);
  }
}

TEST(Boxes, EndPathAndReferenceWidthNeverChange) {
  auto stored = box<VelWbVecText>();
  auto change = update<VelWbVecText>();
  change.end = false;
  change.ps = 999;
  change.path = Path{{9, 9, 9}, {8, 8, 8}};
  stored.merge(change);
  EXPECT_TRUE(stored.end);
  EXPECT_EQ(stored.ps, 400);
  EXPECT_EQ(*stored.path, (Path{{1, 2, 3}}));
}

TEST(Boxes, AnUpdateOfAnotherClassGivesWhatTheReceiversRulesCanRead) {
  auto stored = box<VelWbVecSquare>();
  auto file = update<VelWbVecFile>();
  file.x = 1;
  file.y = 2;
  file.w = 3;
  file.h = 4;
  file.url = "u";
  stored.merge(file);
  auto expected = box<VelWbVecSquare>();
  expected.ts = 2;
  expected.x = 1;
  expected.y = 2;
  expected.w = 3;
  expected.h = 4;
  EXPECT_EQ(stored, expected);

  auto text = box<VelWbVecText>();
  text.text = "old";
  text.merge(file);
  EXPECT_EQ(text.x, 1.0);
  EXPECT_EQ(text.w, 3.0);
  EXPECT_EQ(text.text, "old");
}

TEST(Boxes, AnUpdateWithoutASizeGivesItsPositionAndOneWithoutAPositionOnlyItsTime) {
  auto stored = box<VelWbVecFile>();
  VelWbVecPoint point;
  point.type = "t";
  point.ID = "b";
  point.x = 7;
  point.y = 8;
  point.ts = 3;
  stored.merge(point);
  EXPECT_EQ(stored.x, 7.0);
  EXPECT_EQ(stored.w, 0.3);
  EXPECT_EQ(stored.ts, 3.0);

  stored = box<VelWbVecFile>();
  VelWbVecSwitchPage page;  // it has a `w` and an `h`, but it is no box
  page.type = "t";
  page.ID = "b";
  page.ts = 4;
  page.w = 100;
  page.h = 200;
  stored.merge(page);
  auto expected = box<VelWbVecFile>();
  expected.ts = 4;
  EXPECT_EQ(stored, expected);
}

TEST(Boxes, AMutableCopyOfABoxLeavesOutTheReferenceWidth) {
  const auto source = box<VelWbVecSquare>();
  auto expected = source;
  expected.ps = 0;
  EXPECT_EQ(*source.mutableCopyWithZone(), expected);
  auto withoutPath = source;
  withoutPath.path = std::nullopt;
  EXPECT_EQ(withoutPath.mutableCopyWithZone()->path, std::nullopt);
}

}  // namespace
}  // namespace VelWhiteBoard
