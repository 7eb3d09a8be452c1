#include "VelWhiteBoard/foundation/json/json_mending.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <utility>
#include <variant>

#include "VelWhiteBoard/foundation/text/number_text.h"

namespace VelWhiteBoard {

namespace {

/// The code unit of an escape such as "\ud83d" at the beginning of `text`; 0 unless it is a
/// surrogate.
unsigned surrogateAt(std::string_view text) {
  constexpr std::size_t kLength = 6;
  unsigned unit = 0;
  if (text.size() < kLength || !text.starts_with("\\u")) return 0;
  const auto result = std::from_chars(text.data() + 2, text.data() + kLength, unit, 16);
  return result.ptr == text.data() + kLength && unit >= 0xD800 && unit <= 0xDFFF ? unit : 0;
}

/// The replacement for the escape at the beginning of `text`, and the length of what it replaces.
/// Half a pair of surrogates, as in a truncated string, is valid by JSON's grammar but is not a
/// character.
std::pair<std::string_view, std::size_t> escapeAt(std::string_view text) {
  constexpr std::size_t kUnit = 6;
  const unsigned unit = surrogateAt(text);
  if (unit == 0) return {text.substr(0, 2), std::min<std::size_t>(2, text.size())};
  const bool isPair = unit < 0xDC00 && surrogateAt(text.substr(kUnit)) >= 0xDC00;
  if (isPair) return {text.substr(0, 2 * kUnit), 2 * kUnit};
  return {"\\ufffd", kUnit};
}

}  // namespace

std::string mendedJSON(std::string_view text) {
  constexpr std::string_view kNumberCharacters = "+-.0123456789Ee";
  std::string result;
  result.reserve(text.size());
  bool quoted = false;
  while (!text.empty()) {
    const char first = text.front();
    if (quoted && first == '\\') {
      const auto [escape, taken] = escapeAt(text);
      result += escape;
      text.remove_prefix(taken);
      continue;
    }
    std::size_t length = 1;
    if (first == '"') quoted = !quoted;
    if (!quoted && (first == '-' || (first >= '0' && first <= '9'))) {
      length = std::min(text.find_first_not_of(kNumberCharacters), text.size());
    }
    const std::string_view token = text.substr(0, length);
    text.remove_prefix(length);
    if (length == 1 || quoted || !isNumberInJSON(token)) {
      result += token;
      continue;
    }
    const auto number = numberWithJSON(token);
    if (!number) {
      result += "null";
    } else if (looksLikeInteger(token) && std::holds_alternative<double>(*number)) {
      appendNumber(result, std::get<double>(*number));
    } else {
      result += token;
    }
  }
  return result;
}

}  // namespace VelWhiteBoard
