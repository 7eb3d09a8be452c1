// Arrivals that wait to be taken.
#pragma once

#include <algorithm>
#include <cstddef>
#include <deque>
#include <iterator>
#include <vector>

#include "lesson/bus.h"

namespace whiteboard {

/// Moves the oldest arrivals out, at most `atMost`.
inline std::vector<Arrival> takeFront(std::deque<Arrival>& arrivals, std::size_t atMost) {
  const auto count = static_cast<std::ptrdiff_t>(std::min(atMost, arrivals.size()));
  std::vector<Arrival> taken(std::make_move_iterator(arrivals.begin()),
                             std::make_move_iterator(arrivals.begin() + count));
  arrivals.erase(arrivals.begin(), arrivals.begin() + count);
  return taken;
}

}  // namespace whiteboard
