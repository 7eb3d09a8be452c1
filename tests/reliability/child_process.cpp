#include "tests/reliability/child_process.h"

#include <chrono>
#include <csignal>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>

extern char** environ;

namespace VelWhiteBoard {

ChildProcess::ChildProcess(std::vector<std::string> words) {
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  if (::posix_spawn(&process_, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0) {
    process_ = -1;
  }
}

ChildProcess::~ChildProcess() {
  if (process_ <= 0) return;
  ::kill(process_, SIGKILL);
  ::waitpid(process_, nullptr, 0);
}

std::optional<int> ChildProcess::waitFor(int seconds) {
  constexpr int kSignalled = 128;
  constexpr int kNotStarted = 127;
  if (process_ <= 0) return kNotStarted;
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
  int status = 0;
  while (::waitpid(process_, &status, WNOHANG) == 0) {
    if (std::chrono::steady_clock::now() > end) return std::nullopt;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  process_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : kSignalled + WTERMSIG(status);
}

}  // namespace VelWhiteBoard
