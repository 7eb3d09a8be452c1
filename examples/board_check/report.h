#pragma once

#include <iosfwd>

#include "inspection.h"

namespace board_check {

/// Writes what was found, one file after the other.
void printReport(const BoardFiles& board, std::ostream& out);

}  // namespace board_check
