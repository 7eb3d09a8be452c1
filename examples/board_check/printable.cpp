#include "printable.h"

#include <algorithm>

namespace board_check {

namespace {

bool continuesCharacter(char byte) { return (byte & '\xC0') == '\x80'; }

}  // namespace

std::string printable(std::string_view text) {
  constexpr std::size_t kLongest = 100;
  std::size_t size = std::min(text.size(), kLongest);
  while (size > 0 && size < text.size() && continuesCharacter(text[size])) --size;
  std::string shown(text.substr(0, size));
  for (std::size_t i = 0; i < size; ++i) {
    const bool isControl = (shown[i] >= '\0' && shown[i] < ' ') || shown[i] == '\x7F';
    // U+0080 to U+009F are controls as well; the first byte of each is C2.
    const bool isLateControl =
        shown[i] == '\xC2' && i + 1 < size && (shown[i + 1] & '\xE0') == '\x80';
    if (isControl || isLateControl) shown[i] = '?';
    if (isLateControl) shown[i + 1] = '?';
  }
  return size < text.size() ? shown + "..." : shown;
}

std::string counted(std::uint64_t count, std::string_view noun) {
  std::string text = std::to_string(count) + ' ';
  if (count == 1) return text += noun;
  if (noun.ends_with('y')) {
    text += noun.substr(0, noun.size() - 1);
    return text += "ies";
  }
  text += noun;
  return text += 's';
}

}  // namespace board_check
