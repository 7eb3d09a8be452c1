/// @file
/// The pieces in which files are read and written.
#pragma once

#include <cstddef>
#include <functional>
#include <string_view>

namespace VelWhiteBoard {

/// The largest piece that `FileSystem::read` hands over, and the size in which to write. Large
/// enough that the number of calls does not matter, small enough for any thread.
inline constexpr std::size_t kFileBlockSize = 64 * 1024;

/// Takes one piece of a file. On reading, false stops early. On writing, a false answer means that
/// the write has failed already and that the rest need not be produced.
using BlockConsumer = std::function<bool(std::string_view block)>;

}  // namespace VelWhiteBoard
