// A new board with all that can be saved of a damaged one.
#pragma once

#include <filesystem>
#include <iosfwd>
#include <stdexcept>

#include "inspection.h"

namespace board_check {

/// The new board cannot be written.
class CannotRecover : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Writes a board below `target`, which must be missing or empty and lie outside the old board, and
/// tells what each page is made of. The board gets its name when it is whole: after a failure there
/// is none.
///
/// @return false when there was no memory for some page, which is told, and left out.
bool recover(const BoardFiles& board, const std::filesystem::path& target, std::ostream& out);

}  // namespace board_check
