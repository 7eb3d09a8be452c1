#include "VelWhiteBoard/foundation/text/real_parsing.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <optional>

#include <simdjson.h>

#include "VelWhiteBoard/foundation/values/per_thread.h"

namespace VelWhiteBoard {

namespace {

bool isDecimalDigit(char character) { return character >= '0' && character <= '9'; }

/// The digits at the beginning of `text`, which are removed from it.
std::string_view takeDigits(std::string_view& text) {
  std::size_t count = 0;
  while (count < text.size() && isDecimalDigit(text[count])) ++count;
  const std::string_view digits = text.substr(0, count);
  text.remove_prefix(count);
  return digits;
}

/// Whether `text` is `word`, which is in lower case; capitals of ASCII count as their small letter.
bool isWord(std::string_view text, std::string_view word) {
  return std::equal(text.begin(), text.end(), word.begin(), word.end(), [](char left, char right) {
    return left == right || (left >= 'A' && left <= 'Z' && left - 'A' + 'a' == right);
  });
}

/// The size of a number as written: 0.DDD... times ten to the power of `exponent`.
struct Decimal {
  /// More digits than decide between two neighbouring doubles, of which 767 are enough; if there
  /// are more, the last one kept stands for them: it is not 0.
  static constexpr std::size_t kDigits = 800;

  std::array<char, kDigits> digits;
  std::size_t count = 0;
  std::int64_t exponent = 0;

  /// Adds a digit. The first one is not 0.
  void push(char digit) {
    if (count < kDigits) {
      digits[count++] = digit;
    } else if (digit != '0') {
      digits[kDigits - 1] = '1';
    }
  }
};

/// The exponent that `text` as a whole states, "+5" say; far beyond any double if it has too many
/// digits. Absent when it is none.
std::optional<std::int64_t> exponentWithText(std::string_view text) {
  constexpr std::int64_t kFarBeyond = 1'000'000'000'000'000;  // no text has that many digits
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  const std::string_view digits = takeDigits(text);
  if (digits.empty() || !text.empty()) return std::nullopt;
  std::int64_t exponent = 0;
  for (const char digit : digits) {
    if (exponent < kFarBeyond) exponent = exponent * 10 + (digit - '0');
  }
  return negative ? -exponent : exponent;
}

/// Digits with at most one point, before or among or after them, and perhaps an exponent.
std::optional<Decimal> decimalWithText(std::string_view text) {
  const std::string_view whole = takeDigits(text);
  std::string_view fraction;
  if (text.starts_with('.')) {
    text.remove_prefix(1);
    fraction = takeDigits(text);
  }
  if (whole.empty() && fraction.empty()) return std::nullopt;
  Decimal decimal;
  if (!text.empty()) {
    if (text.front() != 'e' && text.front() != 'E') return std::nullopt;
    const auto exponent = exponentWithText(text.substr(1));
    if (!exponent) return std::nullopt;
    decimal.exponent = *exponent;
  }
  for (const char digit : whole) {
    if (decimal.count == 0 && digit == '0') continue;
    ++decimal.exponent;
    decimal.push(digit);
  }
  for (const char digit : fraction) {
    if (decimal.count == 0 && digit == '0') {
      --decimal.exponent;
    } else {
      decimal.push(digit);
    }
  }
  return decimal;
}

/// What a thread keeps between numbers.
struct NumberMemory {
  simdjson::dom::parser parser;
  std::array<char, Decimal::kDigits + 16 + simdjson::SIMDJSON_PADDING> text;
};

/// The double nearest to `decimal`, which has a digit; its exponent has at most three. Absent when
/// that is too large.
std::optional<double> nearestDouble(const Decimal& decimal) {
  // Written as "0.DDDeN", which is a real number of JSON whatever its digits are.
  NumberMemory& memory = ofThisThread<NumberMemory>();
  char* end = memory.text.data();
  *end++ = '0';
  *end++ = '.';
  end = std::copy_n(decimal.digits.begin(), decimal.count, end);
  *end++ = 'e';
  end = std::to_chars(end, end + 8, decimal.exponent).ptr;
  const auto length = static_cast<std::size_t>(end - memory.text.data());
  double number = 0;
  const auto error = memory.parser.parse(memory.text.data(), length, false).get(number);
  if (error == simdjson::MEMALLOC) throw std::bad_alloc();
  if (error != simdjson::SUCCESS) return std::nullopt;
  return number;
}

/// The same for every exponent, and for no digits at all, which are 0.
std::optional<double> sizeOf(const Decimal& decimal) {
  constexpr std::int64_t kLargest = 400;  // beyond the exponents of all doubles, in both directions
  if (decimal.count == 0 || decimal.exponent < -kLargest) return 0.0;
  if (decimal.exponent > kLargest) return std::nullopt;
  return nearestDouble(decimal);
}

}  // namespace

std::errc parseRealWithoutCharconv(std::string_view text, double& number) {
  const bool negative = text.starts_with('-');
  if (negative) text.remove_prefix(1);
  double size = 0;
  if (isWord(text, "inf") || isWord(text, "infinity")) {
    size = std::numeric_limits<double>::infinity();
  } else if (isWord(text, "nan")) {
    size = std::numeric_limits<double>::quiet_NaN();
  } else {
    const auto decimal = decimalWithText(text);
    if (!decimal) return std::errc::invalid_argument;
    const auto nearest = sizeOf(*decimal);
    if (!nearest) return std::errc::result_out_of_range;
    size = *nearest;
  }
  number = negative ? -size : size;
  return std::errc();
}

}  // namespace VelWhiteBoard
