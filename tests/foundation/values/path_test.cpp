// The positions of a stroke as a value: exact, cheap to copy, cheap to extend.
#include "VelWhiteBoard/foundation/values/path.h"

#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/special_numbers.h"

namespace VelWhiteBoard {
namespace {

using Rows = std::vector<std::vector<double>>;

Rows rowsOf(const Path& path) {
  Rows rows;
  for (const auto position : path) rows.emplace_back(position.begin(), position.end());
  return rows;
}

Path pathOf(const Rows& rows) {
  Path path;
  for (const auto& row : rows) path.push_back(Path::Position(row));
  return path;
}

/// `count` positions of three numbers, each telling its index.
Path longPath(std::size_t count) {
  Path path;
  for (std::size_t index = 0; index < count; ++index) {
    const auto number = static_cast<double>(index);
    path.push_back({number, -number, number + 0.5});
  }
  return path;
}

::testing::AssertionResult holdsLongPath(const Path& path, std::size_t count) {
  if (path.size() != count) {
    return ::testing::AssertionFailure() << path.size() << " positions instead of " << count;
  }
  for (std::size_t index = 0; index < count; ++index) {
    const auto number = static_cast<double>(index);
    const Path::Position position = path[index];
    if (position.size() != 3 || position[0] != number || position[1] != -number ||
        position[2] != number + 0.5) {
      return ::testing::AssertionFailure() << "position " << index << " is another";
    }
  }
  return ::testing::AssertionSuccess();
}

TEST(Path, ANewPathIsEmpty) {
  const Path path;
  EXPECT_TRUE(path.empty());
  EXPECT_EQ(path.size(), 0U);
  EXPECT_TRUE(path.begin() == path.end());
  EXPECT_EQ(path, Path{});
}

TEST(Path, PositionsComeBackInTheOrderInWhichTheyWereAdded) {
  Path path{{10, 20, 5}, {11, 21, 6}};
  path.push_back({12, 22, 7});
  ASSERT_EQ(path.size(), 3U);
  EXPECT_FALSE(path.empty());
  EXPECT_EQ(path[1].size(), 3U);
  EXPECT_EQ(path[1][2], 6.0);
  EXPECT_EQ(path.back()[0], 12.0);
  EXPECT_EQ(rowsOf(path), (Rows{{10, 20, 5}, {11, 21, 6}, {12, 22, 7}}));
}

TEST(Path, PositionsOfAnyLengthAreKeptExactly) {
  const Rows tables[] = {
      {{}},
      {{1}},
      {{1, 2}},
      {{1, 2, 3, 4}},
      {{1, 2, 3, 4, 5, 6, 7}},
      {{}, {}, {}},
      {{}, {1}, {1, 2}, {1, 2, 3}, {1, 2, 3, 4}, {1, 2, 3, 4, 5, 6, 7}},
      {{1, 2, 3}, {4, 5, 6}, {7, 8}, {9, 10, 11}, {}, {12, 13, 14}},
      {{1, 2}, {3, 4, 5}, {6, 7, 8}, {9}},
  };
  for (const Rows& rows : tables) {
    SCOPED_TRACE(::testing::PrintToString(rows));
    EXPECT_EQ(rowsOf(pathOf(rows)), rows);
    EXPECT_EQ(pathOf(rows), pathOf(rows));
  }
  EXPECT_EQ(rowsOf(Path{{}, {1, 2}}), (Rows{{}, {1, 2}}));
}

TEST(Path, ALongPathKeepsEveryPosition) {
  for (const std::size_t count : {1U, 7U, 8U, 9U, 1023U, 1024U, 1025U, 2048U, 2049U, 5000U}) {
    SCOPED_TRACE(count);
    EXPECT_TRUE(holdsLongPath(longPath(count), count));
  }
}

TEST(Path, OneUnevenPositionInALongPathLeavesTheOthersAsTheyAre) {
  constexpr std::size_t kCount = 3000;
  Rows rows = rowsOf(longPath(kCount));
  Path path = longPath(kCount);
  for (const std::vector<double>& uneven : Rows{{}, {1}, {1, 2}, {1, 2, 3, 4, 5, 6, 7}}) {
    path.push_back(Path::Position(uneven));
    rows.push_back(uneven);
  }
  path.push_back({1, 2, 3});
  rows.push_back({1, 2, 3});
  EXPECT_EQ(rowsOf(path), rows);
}

TEST(Path, NumbersAreKeptToTheLastBit) {
  const Path path{{-0.0, kNaN, kInfinity}, {5e-324, 1.7976931348623157e308, -kInfinity}, {-0.0}};
  EXPECT_TRUE(std::signbit(path[0][0]));
  EXPECT_TRUE(std::isnan(path[0][1]));
  EXPECT_EQ(path[0][2], kInfinity);
  EXPECT_EQ(path[1][0], 5e-324);
  EXPECT_EQ(path[1][2], -kInfinity);
  EXPECT_TRUE(std::signbit(path[2][0]));
}

TEST(Path, ACopySharesThePositionsInsteadOfCopyingThem) {
  // An only position stands in the path itself.
  for (const std::size_t count : {2U, 10U, 1024U, 3500U}) {
    const Path path = longPath(count);
    const Path copy = path;  // NOLINT(performance-unnecessary-copy-initialization): the point
    for (std::size_t index = 0; index < count; ++index) {
      ASSERT_EQ(copy[index].data(), path[index].data()) << "position " << index << " of " << count;
    }
  }
  const Path uneven{{1, 2}, {3, 4, 5}};
  const Path copy = uneven;  // NOLINT(performance-unnecessary-copy-initialization): the point
  EXPECT_EQ(copy[1].data(), uneven[1].data());
}

TEST(Path, OfOnePositionIsAValueLikeAnyOther) {
  Path path{{1, 2, 3}};
  const Path copy = path;  // NOLINT(performance-unnecessary-copy-initialization): the point
  EXPECT_EQ(copy, path);
  EXPECT_NE(copy, (Path{{1, 2, 4}}));
  EXPECT_NE(copy, Path());
  EXPECT_NE(copy, (Path{{1, 2}}));

  path.push_back(path[0]);
  EXPECT_EQ(path, (Path{{1, 2, 3}, {1, 2, 3}}));
  EXPECT_EQ(copy, (Path{{1, 2, 3}}));

  Path moved = std::move(path);
  Path single = copy;
  moved.swap(single);
  EXPECT_EQ(moved, copy);
  EXPECT_EQ(single, (Path{{1, 2, 3}, {1, 2, 3}}));
  Path taken = std::move(moved);
  EXPECT_EQ(taken, copy);

  taken.push_back({4, 5});
  EXPECT_EQ(taken, (Path{{1, 2, 3}, {4, 5}}));
}

TEST(Path, WhatIsAddedAfterACopyIsSeenOnlyByThePathItWasAddedTo) {
  for (const std::size_t count : {0U, 1U, 3U, 8U, 1000U, 1023U, 1024U, 1025U, 2048U, 3000U}) {
    SCOPED_TRACE(count);
    Path path = longPath(count);
    Path copy = path;
    path.push_back({1, 1, 1});
    path.push_back({2, 2, 2});
    EXPECT_TRUE(holdsLongPath(copy, count));
    copy.push_back({9, 9, 9});
    ASSERT_EQ(path.size(), count + 2);
    ASSERT_EQ(copy.size(), count + 1);
    EXPECT_EQ(path[count][0], 1.0);
    EXPECT_EQ(path[count + 1][0], 2.0);
    EXPECT_EQ(copy[count][0], 9.0);
  }
}

TEST(Path, OldPositionsStayWhereTheyAreWhenAPathGoesOnAfterACopy) {
  Path path = longPath(3000);
  const Path copy = path;
  for (int step = 0; step < 3000; ++step) path.push_back({0, 0, 0});
  for (std::size_t index = 0; index < 2048; ++index) {
    ASSERT_EQ(path[index].data(), copy[index].data()) << index;
  }
  EXPECT_TRUE(holdsLongPath(copy, 3000));
}

TEST(Path, ManyCopiesTakenWhileAPathGrowsEachKeepTheirOwnState) {
  Path path;
  std::vector<Path> copies;
  for (std::size_t count = 0; count < 2500; ++count) {
    if (count % 97 == 0) copies.push_back(path);
    const auto number = static_cast<double>(count);
    path.push_back({number, -number, number + 0.5});
  }
  for (std::size_t index = 0; index < copies.size(); ++index) {
    EXPECT_TRUE(holdsLongPath(copies[index], index * 97));
  }
  EXPECT_TRUE(holdsLongPath(path, 2500));
}

TEST(Path, ACopyThatOutlivesItsSourceKeepsThePositions) {
  Path copy;
  {
    const Path path = longPath(2000);
    copy = path;
  }
  EXPECT_TRUE(holdsLongPath(copy, 2000));
}

TEST(Path, ACopyMayBecomeUnevenWithoutItsSourceNoticing) {
  const Path path = longPath(1500);
  Path copy = path;
  copy.push_back({1, 2});
  EXPECT_TRUE(holdsLongPath(path, 1500));
  Path other = copy;
  other.push_back({3});
  EXPECT_EQ(copy.size(), 1501U);
  EXPECT_EQ(other.size(), 1502U);
  EXPECT_EQ(rowsOf(copy).back(), (std::vector<double>{1, 2}));
  EXPECT_EQ(rowsOf(other).back(), (std::vector<double>{3}));
}

TEST(Path, APositionOfThePathItselfCanBeAddedToIt) {
  // The view points into memory that may move while it is being added.
  const Rows starts[] = {{{1, 2, 3}}, {{1, 2}}, {{1, 2, 3, 4}}, {{}}, {{1, 2, 3}, {4, 5}}};
  for (const Rows& start : starts) {
    SCOPED_TRACE(::testing::PrintToString(start));
    Path path = pathOf(start);
    Rows rows = start;
    for (int step = 0; step < 3000; ++step) {
      path.push_back(path[0]);
      rows.push_back(rows[0]);
    }
    EXPECT_EQ(rowsOf(path), rows);
  }
}

TEST(Path, AMovedFromPathIsEmptyAndCanBeUsedAgain) {
  Path path = longPath(1500);
  const Path taken = std::move(path);
  EXPECT_TRUE(holdsLongPath(taken, 1500));
  EXPECT_EQ(path.size(), 0U);  // NOLINT(bugprone-use-after-move): the point
  path.push_back({0, -0.0, 0.5});
  EXPECT_TRUE(holdsLongPath(path, 1));
  path = longPath(3);
  EXPECT_TRUE(holdsLongPath(path, 3));
}

TEST(Path, AssigningAPathToItselfChangesNothing) {
  Path path = longPath(1200);
  Path& same = path;
  path = same;
  EXPECT_TRUE(holdsLongPath(path, 1200));
  path = std::move(same);
  EXPECT_TRUE(holdsLongPath(path, 1200));
}

TEST(Path, SwappedPathsHaveTakenEachOthersPositions) {
  Path left = longPath(1100);
  Path right{{1, 2}};
  left.swap(right);
  EXPECT_EQ(left, (Path{{1, 2}}));
  EXPECT_TRUE(holdsLongPath(right, 1100));
}

TEST(Path, RoomThatWasReservedHoldsNoPositions) {
  for (const std::size_t room : {0U, 1U, 5U, 1024U, 100000U}) {
    Path path;
    path.reserve(room);
    EXPECT_TRUE(path.empty());
    const Path copy = path;
    path.push_back({0, -0.0, 0.5});
    EXPECT_TRUE(holdsLongPath(path, 1));
    EXPECT_TRUE(copy.empty());
    path.reserve(room);
    EXPECT_TRUE(holdsLongPath(path, 1));
  }
}

TEST(Path, PathsAreEqualWhenAllPositionsAre) {
  const struct {
    Path left;
    Path right;
    bool equal;
  } rows[] = {
      {{}, {}, true},
      {{{1, 2, 3}}, {{1, 2, 3}}, true},
      {{{1, 2, 3}}, {{1, 2, 4}}, false},
      {{{1, 2, 3}}, {{1, 2}}, false},
      {{{1, 2, 3}}, {}, false},
      {{{1, 2}, {3}}, {{1}, {2, 3}}, false},
      {{{}}, {}, false},
      {{{}}, {{}}, true},
      {{{0.0, 2, 3}}, {{-0.0, 2, 3}}, true},
      {{{kNaN, 2, 3}}, {{kNaN, 2, 3}}, true},
      {{{kNaN, 2, 3}}, {{2, kNaN, 3}}, false},
      {{{kInfinity}}, {{-kInfinity}}, false},
      {{{1, 2, 3}, {4, 5, 6}}, {{4, 5, 6}, {1, 2, 3}}, false},
  };
  for (const auto& row : rows) {
    const auto trace = ::testing::PrintToString(rowsOf(row.left)) + " and " +
                       ::testing::PrintToString(rowsOf(row.right));
    EXPECT_EQ(row.left == row.right, row.equal) << trace;
    EXPECT_EQ(row.right == row.left, row.equal) << trace;
    EXPECT_EQ(row.left != row.right, !row.equal) << trace;
  }
}

TEST(Path, HowAPathCameToBeDoesNotMatterForEquality) {
  Path grown{{1, 2, 3}, {4, 5, 6}};
  Path uneven{{1, 2, 3}};
  uneven.push_back({4, 5, 6});
  EXPECT_EQ(grown, uneven);

  Path copy = grown;
  copy.push_back({7, 8, 9});
  grown.push_back({7, 8, 9});
  EXPECT_EQ(grown, copy);
  EXPECT_EQ(longPath(2500), longPath(2500));
}

}  // namespace
}  // namespace VelWhiteBoard
