#pragma once

#include <string>
#include <string_view>

#include "VelWhiteBoard/foundation/files/file_system.h"

namespace VelWhiteBoard {

/// Replaces a file by contents that lie in memory.
inline FileResult writeAll(FileSystem& files, const std::string& path, std::string_view contents) {
  return files.writeAtomically(path,
                               [contents](const BlockConsumer& write) { return write(contents); });
}

}  // namespace VelWhiteBoard
