// Numbers as text: shortest, exact, and the grammars of JSON and of property lists.
#include "VelWhiteBoard/foundation/text/number_text.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "tests/support/special_numbers.h"

namespace VelWhiteBoard {
namespace {

template <class Number>
std::string textOf(Number number) {
  std::string text = ">";
  appendNumber(text, number);
  return text.substr(1);
}

/// A scalar as a word and its number, for tables.
std::string shown(const std::optional<Scalar>& scalar) {
  if (!scalar) return "none";
  if (const auto* number = std::get_if<std::int64_t>(&*scalar)) {
    return "int " + std::to_string(*number);
  }
  if (const auto* number = std::get_if<std::uint64_t>(&*scalar)) {
    return "uint " + std::to_string(*number);
  }
  if (const auto* number = std::get_if<double>(&*scalar)) return "real " + textOf(*number);
  return "no number";
}

TEST(NumberText, RealNumbersHaveTheirShortestText) {
  const struct {
    double number;
    const char* text;
  } rows[] = {
      {0.0, "0"},
      {-0.0, "-0.0"},
      {10.0, "10"},
      {-10.0, "-10"},
      {100000.0, "100000"},
      {0.1, "0.1"},
      {-0.25, "-0.25"},
      {1.0 / 3.0, "0.3333333333333333"},
      {0.1 + 0.2, "0.30000000000000004"},
      {1700000000.123456, "1700000000.123456"},
      {0.0001, "0.0001"},
      {0.00012, "0.00012"},
      {0.00009, "9e-05"},
      {1e15, "1000000000000000"},
      {9007199254740993.0, "9007199254740992"},
      {1e16, "1e+16"},
      {1.5e300, "1.5e+300"},
      {5e-324, "5e-324"},
      {1.7976931348623157e308, "1.7976931348623157e+308"},
      {2.2250738585072014e-308, "2.2250738585072014e-308"},
  };
  for (const auto& row : rows) EXPECT_EQ(textOf(row.number), row.text);
}

TEST(NumberText, IntegersAreWrittenToTheLastDigit) {
  EXPECT_EQ(textOf(std::int64_t{0}), "0");
  EXPECT_EQ(textOf(std::int64_t{-42}), "-42");
  EXPECT_EQ(textOf(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
  EXPECT_EQ(textOf(std::numeric_limits<std::int64_t>::max()), "9223372036854775807");
  EXPECT_EQ(textOf(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
}

TEST(NumberText, EveryRealNumberReadsBackToTheSameBits) {
  std::mt19937_64 random(20240229);
  for (int round = 0; round < 200000; ++round) {
    const auto number = std::bit_cast<double>(random());
    if (!std::isfinite(number)) continue;
    const std::string text = textOf(number);
    char* end = nullptr;
    const double parsed = std::strtod(text.c_str(), &end);
    ASSERT_EQ(end, text.data() + text.size()) << text;
    ASSERT_EQ(std::bit_cast<std::uint64_t>(parsed), std::bit_cast<std::uint64_t>(number)) << text;
    const auto list = realWithPropertyList(text);
    ASSERT_TRUE(list && *list == number) << text;
    const auto json = numberWithJSON(text);
    ASSERT_TRUE(json) << text;
  }
}

TEST(NumberText, WhatIsANumberInJSON) {
  const struct {
    std::string_view text;
    const char* expected;
  } rows[] = {
      {"0", "int 0"},
      {"-0", "int 0"},
      {"12", "int 12"},
      {"-12", "int -12"},
      {"9223372036854775807", "int 9223372036854775807"},
      {"-9223372036854775808", "int -9223372036854775808"},
      {"9223372036854775808", "uint 9223372036854775808"},
      {"18446744073709551615", "uint 18446744073709551615"},
      {"18446744073709551616", "real 1.8446744073709552e+19"},
      {"-9223372036854775809", "real -9.223372036854776e+18"},
      {"1.5", "real 1.5"},
      {"-0.0", "real -0.0"},
      {"1e3", "real 1000"},
      {"1E3", "real 1000"},
      {"1E+3", "real 1000"},
      {"1e-3", "real 0.001"},
      {"0.5e1", "real 5"},
      {"0e5", "real 0"},
      {"1.7976931348623157e308", "real 1.7976931348623157e+308"},
      {"1e-400", "real 0"},
      {"-1e-400", "real -0.0"},
      {"1e400", "none"},
      {"-1e400", "none"},
      {"", "none"},
      {" ", "none"},
      {" 12 ", "none"},
      {"12 ", "none"},
      {" 12", "none"},
      {"+5", "none"},
      {"0x10", "none"},
      {"01", "none"},
      {"-01", "none"},
      {"00", "none"},
      {"1.", "none"},
      {".5", "none"},
      {"-.5", "none"},
      {"-", "none"},
      {"1e", "none"},
      {"1e+", "none"},
      {"1.e5", "none"},
      {"e5", "none"},
      {"1,5", "none"},
      {"1_000", "none"},
      {"1.5.5", "none"},
      {"12abc", "none"},
      {"--1", "none"},
      {"inf", "none"},
      {"nan", "none"},
      {"NaN", "none"},
      {"Infinity", "none"},
      {"-inf", "none"},
      {"true", "none"},
      {std::string_view("1\0", 2), "none"},
      {"\xD9\xA1", "none"},  // a digit, but no ASCII one
  };
  for (const auto& row : rows) {
    EXPECT_EQ(shown(numberWithJSON(row.text)), row.expected) << "'" << row.text << "'";
  }
}

TEST(NumberText, WhetherANumberFitsADoubleIsToldByItsSizeAndNotByItsSpelling) {
  const std::string zeros(400, '0');
  const struct {
    std::string text;
    const char* expected;
  } rows[] = {
      {"1" + zeros, "none"},                        // 1e400
      {"1" + zeros + "e-10", "none"},               // 1e390
      {"1" + zeros + ".5", "none"},                 //
      {"1" + zeros + "e-400", "real 1"},            //
      {"0." + zeros + "1", "real 0"},               // 1e-401
      {"0." + zeros + "1e5", "real 0"},             // 1e-396
      {"-0." + zeros + "1e+5", "real -0.0"},        //
      {"0." + zeros + "1e401", "real 1"},           //
      {"0e99999999999", "real 0"},                  // zero, whatever the exponent
      {"-0.0e99999999999", "real -0.0"},            //
      {"0.0e-99999999999", "real 0"},               //
      {"1e99999999999999999999999999", "none"},     //
      {"1e-99999999999999999999999999", "real 0"},  //
      {"1e00000000000000000000000003", "real 1000"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(shown(numberWithJSON(row.text)), row.expected) << row.text;
  }
}

TEST(NumberText, WhatIsAnIntegerInAPropertyList) {
  const struct {
    std::string_view text;
    const char* expected;
  } rows[] = {
      {"0", "int 0"},
      {"12", "int 12"},
      {"+12", "int 12"},
      {"-12", "int -12"},
      {"-9223372036854775808", "int -9223372036854775808"},
      {"18446744073709551615", "uint 18446744073709551615"},
      {"18446744073709551616", "real 1.8446744073709552e+19"},
      {"", "none"},
      {"+", "none"},
      {"-", "none"},
      {"+-5", "none"},
      {"++5", "none"},
      {"1.5", "none"},
      {"1e3", "none"},
      {"12abc", "none"},
      {"abc", "none"},
      {"1 2", "none"},
      {"nan", "none"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(shown(integerWithPropertyList(row.text)), row.expected) << "'" << row.text << "'";
  }
}

TEST(NumberText, WhatIsARealNumberInAPropertyList) {
  const struct {
    std::string_view text;
    std::optional<double> expected;
  } rows[] = {
      {"0", 0.0},
      {"-0.0", -0.0},
      {"12", 12.0},
      {"+1.5", 1.5},
      {"1e3", 1000.0},
      {"1E+16", 1e16},
      {"inf", kInfinity},
      {"-inf", -kInfinity},
      {"+infinity", kInfinity},
      {"1e-400", 0.0},
      {"", std::nullopt},
      {"+", std::nullopt},
      {"+-1", std::nullopt},
      {"12abc", std::nullopt},
      {"1,5", std::nullopt},
      {"0x10", std::nullopt},
      {"1 2", std::nullopt},
      {"nan(1)", std::nullopt},
      {"e", std::nullopt},
  };
  for (const auto& row : rows) {
    const auto number = realWithPropertyList(row.text);
    EXPECT_EQ(number, row.expected) << "'" << row.text << "'";
    if (number && row.expected) {
      EXPECT_EQ(std::signbit(*number), std::signbit(*row.expected)) << "'" << row.text << "'";
    }
  }
  const auto nan = realWithPropertyList("nan");
  EXPECT_TRUE(nan && std::isnan(*nan));
}

}  // namespace
}  // namespace VelWhiteBoard
