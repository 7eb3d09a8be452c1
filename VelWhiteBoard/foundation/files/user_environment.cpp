#include <cerrno>
#include <cstdlib>
#include <pwd.h>
#include <unistd.h>
#include <vector>

#include "VelWhiteBoard/foundation/files/standard_directories.h"

namespace VelWhiteBoard {
namespace {

// Accounts from a directory service can be long; no account needs the upper limit.
constexpr std::size_t kSmallestAccountBuffer = 1024;
constexpr std::size_t kLargestAccountBuffer = 1024 * 1024;

class ProcessEnvironment final : public UserEnvironment {
 public:
  std::optional<std::string> variable(const char* name) const override {
    const char* value = std::getenv(name);
    if (value == nullptr) return std::nullopt;
    return std::string(value);
  }

  std::optional<std::string> accountHome() const override {
    std::vector<char> buffer(kSmallestAccountBuffer);
    for (;;) {
      passwd account = {};
      passwd* found = nullptr;
      const int error = ::getpwuid_r(::getuid(), &account, buffer.data(), buffer.size(), &found);
      if (error == EINTR) continue;
      if (error == ERANGE && buffer.size() < kLargestAccountBuffer) {
        buffer.resize(buffer.size() * 2);
        continue;
      }
      if (error != 0 || found == nullptr || found->pw_dir == nullptr) return std::nullopt;
      return std::string(found->pw_dir);
    }
  }
};

}  // namespace

const UserEnvironment& UserEnvironment::process() {
  static const ProcessEnvironment& environment = *new ProcessEnvironment;
  return environment;
}

}  // namespace VelWhiteBoard
