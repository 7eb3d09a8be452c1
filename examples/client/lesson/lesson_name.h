// The names of lessons.
#pragma once

#include <string_view>

namespace whiteboard {

/// Whether a lesson may have this name: 1 to 64 letters and digits of ASCII, `-` and `_`.
bool isLessonName(std::string_view name);

}  // namespace whiteboard
