// A page's present state, from its log.
#pragma once

#include <filesystem>

#include "VelWhiteBoard/vectors/base_vector.h"

namespace board_check {

/// Plays a log into a storage, since only a storage knows how vectors become a page. Memory is that
/// of the page, not of the log. Throws std::bad_alloc, and CannotRecover when the log is not sound.
VelWhiteBoard::VectorList replay(const std::filesystem::path& log);

}  // namespace board_check
