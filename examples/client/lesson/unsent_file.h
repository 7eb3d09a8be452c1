// Keeps what could not be sent until the program runs again.
#pragma once

#include <string>
#include <vector>

#include "lesson/outbox.h"

namespace whiteboard {

/// The messages that a file keeps, in order. A line that is not one is left out; a file that cannot
/// be read is empty. An empty path stands for no file.
std::vector<OutgoingMessage> readUnsent(const std::string& path);

/// Replaces the file by one with these messages, or removes it when there are none: one JSON object
/// a line, with `id`, `page` and `vector`, the vector's JSON text. Until it is whole, the file is
/// what it was before. Tells whether it worked. An empty path does nothing.
bool writeUnsent(const std::string& path, const std::vector<OutgoingMessage>& messages);

}  // namespace whiteboard
