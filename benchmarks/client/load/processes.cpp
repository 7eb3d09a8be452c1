#include "benchmarks/client/load/processes.h"

#include <fstream>
#include <sstream>
#include <unistd.h>

namespace load {

Usage usageOf(const std::vector<std::string>& pids) {
  Usage sum;
  for (const std::string& pid : pids) {
    std::ifstream stat("/proc/" + pid + "/stat");
    std::string text;
    std::getline(stat, text);
    const std::size_t nameEnd = text.rfind(')');
    if (nameEnd == std::string::npos) continue;
    // The 3rd field comes after the name; the 14th and 15th are times, the 24th is memory.
    std::istringstream fields(text.substr(nameEnd + 1));
    std::string field;
    for (int number = 3; number <= 24 && fields >> field; ++number) {
      if (number == 14 || number == 15) {
        sum.seconds += std::stod(field) / static_cast<double>(::sysconf(_SC_CLK_TCK));
      }
      if (number == 24)
        sum.memory += std::stod(field) * static_cast<double>(::sysconf(_SC_PAGESIZE));
    }
  }
  return sum;
}

}  // namespace load
