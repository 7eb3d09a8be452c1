// A file's contents, block by block.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace board_check {

/// Why a file, or the rest of it, was not read.
struct ReadFailure {
  enum class Kind {
    kNoFile,    ///< a folder, a pipe, a link to nowhere: something else has the file's name
    kNotGiven,  ///< the system would not give it; nothing is known of its contents
    kNoMemory,  ///< one of its records is too long
  };
  Kind kind = Kind::kNotGiven;
  /// For a person; in the system's words where it was the system.
  std::string reason;
};

/// The size of a block. Large, because a parser that waits for the end of an overlong token looks
/// at all of it again with each block.
inline constexpr std::size_t kBlockSize = std::size_t{1} << 20U;

/// Hands the contents of a regular file to `consume` until that answers false. Memory is one block.
std::optional<ReadFailure> readBlocks(const std::filesystem::path& path,
                                      const std::function<bool(std::string_view block)>& consume);

}  // namespace board_check
