// Dynamic values: which say the same, and how deep they may be nested.
#include "VelWhiteBoard/foundation/values/value.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

#include <gtest/gtest.h>

#include "tests/support/special_numbers.h"

namespace VelWhiteBoard {
namespace {

/// `depth` arrays inside one another.
Value nestedArrays(std::size_t depth) {
  Value value = Array();
  for (std::size_t level = 1; level < depth; ++level) {
    Array outer;
    outer.push_back(std::move(value));
    value = std::move(outer);
  }
  return value;
}

TEST(Value, WhichValuesSayTheSame) {
  const std::uint64_t large = 18446744073709551615U;
  const struct {
    Value left;
    Value right;
    bool same;
  } rows[] = {
      {nullptr, nullptr, true},
      {nullptr, 0, false},
      {nullptr, false, false},
      {true, true, true},
      {true, false, false},
      {true, 1, false},
      {1, 1, true},
      {1, 1U, true},
      {1, 1.0, true},
      {1U, 1.0, true},
      {1, 1.5, false},
      {-1, large, false},
      {-1, -1.0, true},
      {large, large, true},
      {large, std::int64_t{-1}, false},
      {std::int64_t{5}, std::uint64_t{5}, true},
      {0.0, -0.0, true},
      {0, -0.0, true},
      {kNaN, kNaN, true},
      {kNaN, 0.0, false},
      {kInfinity, kInfinity, true},
      {kInfinity, -kInfinity, false},
      {"a", "a", true},
      {"a", "b", false},
      {"1", 1, false},
      {"", nullptr, false},
      {Array(), Array(), true},
      {Array(), Dictionary(), false},
      {Array{1, 2}, Array{1, 2}, true},
      {Array{1, 2}, Array{2, 1}, false},
      {Array{1}, Array{1, 1}, false},
      {Array{1, kNaN}, Array{1.0, kNaN}, true},
      {Array{Array{1}}, Array{Array{1.0}}, true},
      {Dictionary{{"a", 1}}, Dictionary{{"a", 1.0}}, true},
      {Dictionary{{"a", 1}}, Dictionary{{"b", 1}}, false},
      {Dictionary{{"a", 1}}, Dictionary{{"a", 2}}, false},
      {Dictionary{{"a", 1}}, Dictionary{{"a", 1}, {"b", 1}}, false},
      {Dictionary{{"a", nullptr}}, Dictionary{}, false},
  };
  for (const auto& row : rows) {
    const std::string trace = row.left.dump() + " and " + row.right.dump();
    EXPECT_EQ(sameValue(row.left, row.right), row.same) << trace;
    EXPECT_EQ(sameValue(row.right, row.left), row.same) << trace;
    if (row.same) {
      EXPECT_EQ(hashOfValue(row.left), hashOfValue(row.right)) << trace;
    }
  }
}

TEST(Value, TheHashTellsOrdinaryValuesApart) {
  const Value values[] = {nullptr,
                          true,
                          1,
                          2,
                          "1",
                          Array{},
                          Array{1, 2},
                          Array{2, 1},
                          Array{Array{1}},
                          Dictionary{},
                          Dictionary{{"a", 1}},
                          Dictionary{{"b", 1}},
                          "a"};
  for (const Value& left : values) {
    for (const Value& right : values) {
      EXPECT_EQ(hashOfValue(left) == hashOfValue(right), &left == &right)
          << left.dump() << " and " << right.dump();
    }
  }
}

TEST(Value, TheHashOfANumberIgnoresTheSignOfZeroAndTheKindOfNaN) {
  EXPECT_EQ(hashOfNumber(0.0), hashOfNumber(-0.0));
  EXPECT_EQ(hashOfNumber(kNaN), hashOfNumber(-kNaN));
  EXPECT_EQ(hashOfNumber(kNaN), hashOfNumber(std::numeric_limits<double>::signaling_NaN()));
  EXPECT_NE(hashOfNumber(1.0), hashOfNumber(2.0));
}

TEST(Value, NestingIsTooDeepOneLevelAboveTheBound) {
  EXPECT_FALSE(nestsTooDeep(nullptr));
  EXPECT_FALSE(nestsTooDeep(5));
  EXPECT_FALSE(nestsTooDeep(nestedArrays(1)));
  EXPECT_FALSE(nestsTooDeep(nestedArrays(kMaximumValueDepth)));
  EXPECT_TRUE(nestsTooDeep(nestedArrays(kMaximumValueDepth + 1)));
  EXPECT_TRUE(nestsTooDeep(Dictionary{{"a", 1}, {"b", nestedArrays(kMaximumValueDepth)}}));
  EXPECT_FALSE(nestsTooDeep(Dictionary{{"a", 1}, {"b", nestedArrays(kMaximumValueDepth - 1)}}));
}

TEST(Value, MeasuringTheNestingCostsNoStack) { EXPECT_TRUE(nestsTooDeep(nestedArrays(1000000))); }

TEST(Value, MuchThatIsSideBySideIsNotDeep) {
  Array wide(100000, Value(Array{Array{1, 2}, Dictionary{{"a", Array{}}}}));
  EXPECT_FALSE(nestsTooDeep(Value(std::move(wide))));
}

}  // namespace
}  // namespace VelWhiteBoard
