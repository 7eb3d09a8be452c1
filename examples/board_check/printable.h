// Texts from files, on a terminal.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace board_check {

/// A short form without what a terminal would obey.
std::string printable(std::string_view text);

/// "1 record", "2 records"; "entry" becomes "entries".
std::string counted(std::uint64_t count, std::string_view noun);

}  // namespace board_check
