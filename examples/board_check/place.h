// A place in a text, for a person.
#pragma once

#include <cstdint>
#include <string_view>

namespace board_check {

/// Line and column, counted from 1; a column is a character.
struct Place {
  std::uint64_t line = 1;
  std::uint64_t column = 1;

  /// Moves behind a piece of UTF-8 text.
  void advance(std::string_view text);
};

}  // namespace board_check
