// What processes use, as the system tells it.
#pragma once

#include <string>
#include <vector>

namespace load {

struct Usage {
  /// Processor time since the process began, in seconds.
  double seconds = 0;
  /// Resident memory, in bytes.
  double memory = 0;
};

/// The sum of several processes; one that is gone counts nothing.
Usage usageOf(const std::vector<std::string>& pids);

}  // namespace load
