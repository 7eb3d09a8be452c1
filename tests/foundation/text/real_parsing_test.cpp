// The parser of real numbers for standard libraries without `std::from_chars` for them. It is
// tested with every library: its results must be those of the parser that is used otherwise, bit by
// bit.
#include "VelWhiteBoard/foundation/text/real_parsing.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <system_error>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/text/number_text.h"

namespace VelWhiteBoard {
namespace {

/// A result as the error's name or the number's bits, to compare and to print.
std::string shown(std::errc error, double number) {
  if (error == std::errc::invalid_argument) return "none";
  if (error == std::errc::result_out_of_range) return "too large";
  if (error != std::errc()) return "another error";
  if (std::isnan(number)) return std::signbit(number) ? "-nan" : "nan";
  return std::to_string(std::bit_cast<std::uint64_t>(number));
}

std::string parsed(const std::string& text) {
  double number = 0;
  const std::errc error = parseRealWithoutCharconv(text, number);
  return shown(error, number);
}

/// What the C library makes of a number by JSON's grammar. It rounds to the nearest double too.
std::string parsedWithC(const std::string& text) {
  const double number = std::strtod(text.c_str(), nullptr);
  return shown(std::isinf(number) ? std::errc::result_out_of_range : std::errc(), number);
}

/// What property lists make of it: the parser of this standard library, if it has one.
std::string parsedWithPropertyList(const std::string& text) {
  if (const auto number = realWithPropertyList(text)) return shown(std::errc(), *number);
  return shown(
      isRealInPropertyList(text) ? std::errc::result_out_of_range : std::errc::invalid_argument, 0);
}

TEST(RealParsing, NumbersAreTheNearestDoubles) {
  const std::string zeros(400, '0');
  const std::string manyZeros(100000, '0');
  const struct {
    std::string text;
    double expected;
  } rows[] = {
      {"0", 0.0},
      {"-0", -0.0},
      {"00012", 12.0},
      {"12.", 12.0},
      {".5", 0.5},
      {"-.5e1", -5.0},
      {"1E+16", 1e16},
      {"1e-05", 0.00001},
      {"123456789012345678901234567890", 123456789012345678901234567890.0},
      {"9007199254740992.9999", 9007199254740992.0},
      {"9007199254740993", 9007199254740992.0},
      {"9007199254740993." + zeros, 9007199254740992.0},
      {"9007199254740993." + zeros + "1", 9007199254740994.0},
      {"9007199254740993." + manyZeros + "1", 9007199254740994.0},
      {"2.2250738585072011e-308", 2.2250738585072011e-308},  // the largest subnormal number
      {"2.2250738585072014e-308", 2.2250738585072014e-308},
      {"4.9406564584124654e-324", 5e-324},
      {"2.4703282292062328e-324", 5e-324},  // above half of the smallest
      {"2.4703282292062327e-324", 0.0},     // below it
      {"-1e-400", -0.0},
      {"1e-99999999999999999999999999", 0.0},
      {"0e99999999999999999999999999", 0.0},
      {"-0.0e-99999999999", -0.0},
      {"1" + zeros + "e-400", 1.0},
      {"1" + manyZeros + "e-100000", 1.0},
      {"0." + manyZeros + "1e100001", 1.0},
      {"1e0000000000000000000000000003", 1000.0},
      {"1.7976931348623157e308", 1.7976931348623157e308},
      {"1.7976931348623158e308", 1.7976931348623157e308},
      {"inf", std::numeric_limits<double>::infinity()},
      {"-INFinity", -std::numeric_limits<double>::infinity()},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(parsed(row.text), shown(std::errc(), row.expected)) << row.text.substr(0, 60);
  }
  EXPECT_EQ(parsed("nan"), "nan");
  EXPECT_EQ(parsed("-NaN"), "-nan");
}

TEST(RealParsing, WhatIsTooLargeIsToldApartFromWhatIsNoNumber) {
  for (const char* text :
       {"1e400", "-1e400", "1.7976931348623159e308", "1e309", "1e99999999999999999999999999"}) {
    EXPECT_EQ(parsed(text), "too large") << text;
  }
  EXPECT_EQ(parsed("1" + std::string(400, '0')), "too large");
  for (const char* text :
       {"",    "-",   "+",     "+1",     "--1",   "e5",    ".",        "-.",
        ".e1", "1e",  "1e+",   "1e+-1",  "1e5.",  "1.5.5", "1,5",      "0x10",
        "1 ",  " 1",  "1_0",   "nan(1)", "nan()", "na",    "infi",     "1f",
        "1d0", "\n1", "-inf0", "+inf",   "1e1e1", "1-1",   "\xD9\xA1", "infinit"}) {
    EXPECT_EQ(parsed(text), "none") << "'" << text << "'";
  }
  EXPECT_EQ(parsed(std::string("1\0", 2)), "none");
}

TEST(RealParsing, TheNumberStaysAsItIsWhenThereIsNone) {
  double number = 7;
  EXPECT_EQ(parseRealWithoutCharconv("1e400", number), std::errc::result_out_of_range);
  EXPECT_EQ(parseRealWithoutCharconv("x", number), std::errc::invalid_argument);
  EXPECT_EQ(number, 7);
}

TEST(RealParsing, TheShortestTextOfEveryBitPatternReadsBack) {
  std::mt19937_64 random(20240229);
  for (int round = 0; round < 100000; ++round) {
    const auto number = std::bit_cast<double>(random());
    if (!std::isfinite(number)) continue;
    std::string text;
    appendNumber(text, number);
    ASSERT_EQ(parsed(text), shown(std::errc(), number)) << text;
  }
}

/// Digits, a point and an exponent at random, often near the ends of the range.
std::string randomNumber(std::mt19937_64& random) {
  const auto below = [&random](std::uint64_t bound) { return random() % bound; };
  std::string text = below(2) == 0 ? "-" : "";
  const std::uint64_t count = 1 + below(below(10) == 0 ? 1200 : 25);
  const std::uint64_t point = below(count + 1);
  for (std::uint64_t place = 0; place < count; ++place) {
    if (place == point && place > 0) text += '.';
    text += static_cast<char>('0' + below(place == 0 ? 9 : 10) + (place == 0 ? 1 : 0));
  }
  if (below(4) == 0) return text;
  const auto exponent = static_cast<std::int64_t>(below(760)) - 380;
  return text + "e" + std::to_string(exponent - static_cast<std::int64_t>(point));
}

TEST(RealParsing, RandomNumbersAreThoseOfTheOtherParsers) {
  std::mt19937_64 random(7);
  for (int round = 0; round < 100000; ++round) {
    const std::string text = randomNumber(random);
    ASSERT_EQ(parsed(text), parsedWithC(text)) << text;
    ASSERT_EQ(parsed(text), parsedWithPropertyList(text)) << text;
  }
}

TEST(RealParsing, HalfwayBetweenTwoDoublesTheLastDigitDecides) {
  std::mt19937_64 random(11);
  for (int round = 0; round < 20000; ++round) {
    // Exactly halfway between a number of 53 bits and the next one; a zero or one further down.
    const std::uint64_t halfway = (random() >> 10U) | 1U | (std::uint64_t{1} << 53U);
    for (const char* rest : {"", ".0", ".000000000000000000000001", "e-20", "e-330"}) {
      const std::string text = std::to_string(halfway) + rest;
      ASSERT_EQ(parsed(text), parsedWithC(text)) << text;
      ASSERT_EQ(parsed(text), parsedWithPropertyList(text)) << text;
    }
  }
}

/// Strings of the characters that numbers consist of; most are no numbers.
TEST(RealParsing, TheLanguageIsThatOfTheOtherParser) {
  constexpr std::string_view kCharacters = "+-.0019eE";
  std::mt19937_64 random(13);
  int numbers = 0;
  for (int round = 0; round < 300000; ++round) {
    std::string text;
    for (std::uint64_t length = random() % 8; length > 0; --length) {
      text += kCharacters[random() % kCharacters.size()];
    }
    if (text.starts_with('+')) continue;  // property lists allow it themselves
    const std::string result = parsed(text);
    if (result != "none") ++numbers;
    ASSERT_EQ(result, parsedWithPropertyList(text)) << text;
  }
  EXPECT_GT(numbers, 1000);
}

}  // namespace
}  // namespace VelWhiteBoard
