// What a path asks of memory: in proportion to what is added to it, however many copies there are.
#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/values/path.h"

#include "tests/support/failing_memory.h"

namespace VelWhiteBoard {
namespace {

using Rows = std::vector<std::vector<double>>;

/// Patterns of positions, repeated as often as needed.
const Rows kPatterns[] = {
    {{1, 2, 3}},
    {{1, 2}},
    {{1, 2, 3, 4}},
    {{1}},
    {{}},
    {{1, 2, 3}, {1, 2}},
    {{1, 2}, {1, 2, 3}, {1, 2, 3, 4}},
    {{1, 2, 3, 4}, {}, {1, 2, 3}},
    {{}, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}},
};

std::size_t bytesOf(const Rows& pattern, std::size_t positions) {
  std::size_t bytes = 0;
  for (std::size_t index = 0; index < positions; ++index) {
    bytes += sizeof(double) * (pattern[index % pattern.size()].size() + 1);
  }
  return bytes;
}

void grow(Path& path, const Rows& pattern, std::size_t positions) {
  while (path.size() < positions) {
    path.push_back(Path::Position(pattern[path.size() % pattern.size()]));
  }
}

TEST(PathMemory, GrowingWithACopyTakenAtEveryPositionAsksForNoMoreThanThePositionsTake) {
  constexpr std::size_t kPositions = 40000;
  for (const Rows& pattern : kPatterns) {
    SCOPED_TRACE(::testing::PrintToString(pattern));
    const CountedAllocations requests;
    Path path;
    Path copy;
    for (std::size_t size = 1; size <= kPositions; ++size) {
      grow(path, pattern, size);
      copy = path;
    }
    EXPECT_LT(requests.bytes(), 4 * bytesOf(pattern, kPositions));
    EXPECT_LT(requests.count(), kPositions / 50);
  }
}

TEST(PathMemory, CopiesThatAreAllKeptShareThePositions) {
  constexpr std::size_t kPositions = 5000;
  for (const Rows& pattern : kPatterns) {
    SCOPED_TRACE(::testing::PrintToString(pattern));
    std::vector<Path> copies;
    copies.reserve(kPositions);
    Path path;
    const CountedAllocations requests;
    for (std::size_t size = 1; size <= kPositions; ++size) {
      grow(path, pattern, size);
      copies.push_back(path);
    }
    EXPECT_LT(requests.bytes(), 4 * bytesOf(pattern, kPositions));
  }
}

TEST(PathMemory, ACopyAsksForNone) {
  for (const Rows& pattern : kPatterns) {
    for (const std::size_t size : {1U, 2U, 9U, 1024U, 5000U}) {
      Path path;
      grow(path, pattern, size);
      const CountedAllocations requests;
      Path copy = path;
      Path other;
      other = copy;
      const Path moved = std::move(other);
      copy.swap(path);
      EXPECT_EQ(requests.count(), 0U) << ::testing::PrintToString(pattern) << ' ' << size;
    }
  }
}

TEST(PathMemory, ASinglePositionOfThreeNumbersAsksForNone) {
  const CountedAllocations requests;
  const Path path{{1, 2, 3}};
  EXPECT_EQ(requests.count(), 0U);
}

TEST(PathMemory, LongPositionsAreAddedInLinearMemory) {
  const std::vector<double> wide(1000, 1.0);
  const CountedAllocations requests;
  Path path;
  Path copy;
  for (int index = 0; index < 3000; ++index) {
    path.push_back(Path::Position(wide));
    copy = path;
  }
  EXPECT_LT(requests.bytes(), 4 * 3000 * wide.size() * sizeof(double));
}

TEST(PathMemory, PositionsThatFillTheirRoomExactlyAreKept) {
  // The room for numbers runs out at another place than the room for positions.
  for (std::size_t first = 0; first < 6; ++first) {
    for (std::size_t then = 0; then < 6; ++then) {
      for (std::size_t change = 0; change < 40; ++change) {
        Path path;
        Rows rows;
        for (std::size_t index = 0; index < 80; ++index) {
          const std::vector<double> row(index < change ? first : then, static_cast<double>(index));
          path.push_back(Path::Position(row));
          rows.push_back(row);
        }
        for (std::size_t index = 0; index < rows.size(); ++index) {
          ASSERT_EQ(std::vector<double>(path[index].begin(), path[index].end()), rows[index])
              << first << " numbers, then " << then << " from " << change << " on";
        }
      }
    }
  }
}

TEST(PathMemory, APositionForWhichThereIsNoneLeavesThePathAsItWas) {
  for (const Rows& pattern : kPatterns) {
    for (const std::size_t size : {0U, 1U, 8U, 9U, 1023U, 1024U, 1025U, 2048U}) {
      SCOPED_TRACE(::testing::PrintToString(pattern) + " " + std::to_string(size));
      Path before;
      grow(before, pattern, size);
      for (const std::vector<double>& next : Rows{{7, 7, 7}, {7, 7}, {7, 7, 7, 7}}) {
        Path after;
        grow(after, pattern, size);
        after.push_back(Path::Position(next));
        const auto grown = [&] {
          Path path;
          grow(path, pattern, size);
          return path;
        };
        const auto add = [&](Path& path) { path.push_back(Path::Position(next)); };
        const auto check = [&](const Path& path, bool threw) {
          EXPECT_EQ(path, threw ? before : after);
        };
        failEachAllocation(grown, add, check);
        failEachAllocation([&] { return before; }, add, check);
      }
    }
  }
}

}  // namespace
}  // namespace VelWhiteBoard
