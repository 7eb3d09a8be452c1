#include "place.h"

#include <algorithm>

namespace board_check {

void Place::advance(std::string_view text) {
  if (const std::size_t last = text.rfind('\n'); last != std::string_view::npos) {
    const std::string_view lines = text.substr(0, last + 1);
    line += static_cast<std::uint64_t>(std::count(lines.begin(), lines.end(), '\n'));
    column = 1;
    text.remove_prefix(last + 1);
  }
  // The bytes of a character after its first all begin with the bits 10.
  column += static_cast<std::uint64_t>(
      std::count_if(text.begin(), text.end(), [](char byte) { return (byte & '\xC0') != '\x80'; }));
}

}  // namespace board_check
