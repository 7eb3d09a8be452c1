// One page of a recovered board.
#pragma once

#include <filesystem>
#include <iosfwd>
#include <string>

#include "inspection.h"

namespace board_check {

/// Writes the log and the snapshot of a page into `folder`, and tells what they are made of. The
/// rules are in docs/reliability.md. Throws CannotRecover; std::bad_alloc, which may leave a file.
void recoverPage(const std::string& key, const PageFiles& page, const std::filesystem::path& folder,
                 std::ostream& out);

/// What a list is pieced together from, where that is not simply its file; to be put behind a
/// count.
std::string originOf(const StoredList& list);

}  // namespace board_check
