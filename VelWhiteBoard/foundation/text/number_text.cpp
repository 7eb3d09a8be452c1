#include "VelWhiteBoard/foundation/text/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>

#include "VelWhiteBoard/foundation/text/real_parsing.h"

namespace VelWhiteBoard {

namespace {

/// Between these bounds numbers are written as plain digits, as human and strict readers expect.
constexpr double kSmallestPlain = 1e-4;
constexpr double kPlainBelow = 1e16;

template <class Integer>
void appendInteger(std::string& text, Integer number) {
  char digits[24];
  const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  text.append(digits, end);
}

/// Whether a conversion took all of `text`.
bool tookAll(const std::from_chars_result& result, std::string_view text) {
  return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

template <class Number>
std::optional<Number> parseWhole(std::string_view text) {
  Number number{};
  if (!tookAll(std::from_chars(text.data(), text.data() + text.size(), number), text)) {
    return std::nullopt;
  }
  return number;
}

std::optional<Scalar> integer(std::string_view text) {
  if (const auto number = parseWhole<std::int64_t>(text)) return Scalar(*number);
  if (const auto number = parseWhole<std::uint64_t>(text)) return Scalar(*number);
  return std::nullopt;
}

bool isDigit(char character) { return character >= '0' && character <= '9'; }

/// Skips digits; returns whether there was one.
bool skipDigits(std::string_view& text) {
  std::size_t count = 0;
  while (count < text.size() && isDigit(text[count])) ++count;
  text.remove_prefix(count);
  return count > 0;
}

bool skip(std::string_view& text, std::string_view anyOf) {
  if (text.empty() || anyOf.find(text.front()) == std::string_view::npos) return false;
  text.remove_prefix(1);
  return true;
}

/// Whether a number that no double can hold is too small for one, rather than too large.
///
/// Decided by the place of its first digit that is not 0: after the point, once the exponent is
/// applied. `text` is a number, so it consists of digits, at most one point and an exponent.
bool isTooSmall(std::string_view text) {
  constexpr std::int64_t kFarBeyond = 1'000'000'000'000'000;  // no text is long enough to reach it
  const std::size_t mark = text.find_first_of("eE");
  const std::string_view digits = text.substr(0, mark);
  const std::size_t first = digits.find_first_of("123456789");
  if (first == std::string_view::npos) return true;
  const std::size_t point = std::min(digits.find('.'), digits.size());
  const auto place = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first);

  std::int64_t exponent = 0;
  if (mark != std::string_view::npos) {
    std::string_view moved = text.substr(mark + 1);
    const bool negative = moved.front() == '-';
    skip(moved, "+-");
    for (const char digit : moved) {
      if (exponent < kFarBeyond) exponent = exponent * 10 + (digit - '0');
    }
    if (negative) exponent = -exponent;
  }
  return place + exponent <= 0;
}

/// Parses the whole of `text`; `number` stays as it is when that fails. One that is too small for a
/// double may be `result_out_of_range`, as one that is too large.
#ifdef __cpp_lib_to_chars
std::errc parseReal(std::string_view text, double& number) {
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  return result.ptr == text.data() + text.size() ? result.ec : std::errc::invalid_argument;
}
#else
std::errc parseReal(std::string_view text, double& number) {
  return parseRealWithoutCharconv(text, number);
}
#endif

/// A number that is too small for a double becomes 0, as in other readers.
std::optional<double> real(std::string_view text) {
  double number = 0;
  const std::errc error = parseReal(text, number);
  if (error == std::errc()) return number;
  if (error != std::errc::result_out_of_range || !isTooSmall(text)) return std::nullopt;
  return text.front() == '-' ? -0.0 : 0.0;
}

std::string_view withoutPlus(std::string_view text) {
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  return text;
}

}  // namespace

void appendNumber(std::string& text, double number) {
  if (number == 0 && std::signbit(number)) {
    text += "-0.0";
    return;
  }
  char digits[32];
  const double size = std::fabs(number);
  const bool plain = number == 0 || (size >= kSmallestPlain && size < kPlainBelow);
  const auto end =
      plain ? std::to_chars(digits, digits + sizeof digits, number, std::chars_format::fixed).ptr
            : std::to_chars(digits, digits + sizeof digits, number, std::chars_format::scientific)
                  .ptr;
  text.append(digits, end);
}

void appendNumber(std::string& text, std::int64_t number) { appendInteger(text, number); }
void appendNumber(std::string& text, std::uint64_t number) { appendInteger(text, number); }

bool looksLikeInteger(std::string_view text) {
  return text.find_first_of(".eE") == std::string_view::npos;
}

bool isNumberInJSON(std::string_view text) {
  skip(text, "-");
  if (text.size() > 1 && text[0] == '0' && isDigit(text[1])) return false;
  if (!skipDigits(text)) return false;
  if (skip(text, ".") && !skipDigits(text)) return false;
  if (skip(text, "eE")) {
    skip(text, "+-");
    if (!skipDigits(text)) return false;
  }
  return text.empty();
}

std::optional<Scalar> numberWithJSON(std::string_view text) {
  if (!isNumberInJSON(text)) return std::nullopt;
  if (looksLikeInteger(text)) {
    if (auto number = integer(text)) return number;
  }
  if (const auto number = real(text)) return Scalar(*number);
  return std::nullopt;
}

std::optional<Scalar> integerWithPropertyList(std::string_view text) {
  text = withoutPlus(text);
  if (auto number = integer(text)) return number;
  // Too large for 64 bits: the nearest real number, which an integer property limits to its range.
  std::string_view digits = text;
  skip(digits, "-");
  if (!skipDigits(digits) || !digits.empty()) return std::nullopt;
  if (const auto number = real(text)) return Scalar(*number);
  return std::nullopt;
}

bool isRealInPropertyList(std::string_view text) {
  if (text.find_first_not_of("+-.0123456789Ee") != std::string_view::npos) return false;
  text = withoutPlus(text);
  double number = 0;
  return parseReal(text, number) != std::errc::invalid_argument;
}

std::optional<double> realWithPropertyList(std::string_view text) {
  if (text.find('(') != std::string_view::npos) return std::nullopt;  // "nan(1)"
  return real(withoutPlus(text));
}

}  // namespace VelWhiteBoard
