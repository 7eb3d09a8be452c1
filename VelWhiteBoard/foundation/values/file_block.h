/// @file
/// The blocks in which files are read and written.
#pragma once

#include <cstddef>
#include <functional>
#include <string_view>

namespace VelWhiteBoard {

/// The largest block that `FileSystem::read` passes on, and the recommended size for writing: large
/// enough that the number of calls does not matter, small enough for any thread.
inline constexpr std::size_t kFileBlockSize = 64 * 1024;

/// Takes one block of a file. When reading, returning false stops early. When writing, false means
/// that the write has failed and that the rest need not be produced.
using BlockConsumer = std::function<bool(std::string_view block)>;

}  // namespace VelWhiteBoard
