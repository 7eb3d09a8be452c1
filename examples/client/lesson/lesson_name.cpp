#include "lesson/lesson_name.h"

#include <cstddef>

namespace whiteboard {

bool isLessonName(std::string_view name) {
  constexpr std::size_t kLongest = 64;
  constexpr std::string_view kAllowed =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
  return !name.empty() && name.size() <= kLongest &&
         name.find_first_not_of(kAllowed) == std::string_view::npos;
}

}  // namespace whiteboard
