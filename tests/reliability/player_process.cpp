#include "tests/reliability/player_process.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <poll.h>
#include <spawn.h>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace VelWhiteBoard {

PlayerProcess::PlayerProcess(const std::string& directory, std::uint32_t seed,
                             const std::string& steps) {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) std::abort();
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  ::posix_spawn_file_actions_addclose(&actions, ends[0]);
  ::posix_spawn_file_actions_addclose(&actions, ends[1]);
  std::vector<std::string> words = {VELWB_CRASH_PLAYER, directory, VELWB_LESSON,
                                    std::to_string(seed)};
  if (!steps.empty()) words.push_back(steps);
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  if (::posix_spawn(&process_, words[0].c_str(), &actions, nullptr, arguments.data(), environ)) {
    process_ = -1;
  }
  ::posix_spawn_file_actions_destroy(&actions);
  ::close(ends[1]);
  output_ = ends[0];
}

PlayerProcess::~PlayerProcess() {
  kill();
  ::close(output_);
}

bool PlayerProcess::readUntil(std::size_t lines, std::chrono::microseconds andThen) {
  while (lines_ < lines) {
    if (!read(std::chrono::seconds(60))) return false;
  }
  const auto end = std::chrono::steady_clock::now() + andThen;
  while (std::chrono::steady_clock::now() < end) {
    if (!read(std::chrono::milliseconds(0))) return false;
  }
  return true;
}

void PlayerProcess::kill() {
  if (!isRunning()) return;
  ::kill(process_, SIGKILL);
  finish();
}

int PlayerProcess::finish() {
  while (read(std::chrono::seconds(60))) {
  }
  int status = -1;
  ::waitpid(process_, &status, 0);
  process_ = -1;
  return status;
}

bool PlayerProcess::read(std::chrono::milliseconds atMost) {
  pollfd waiting{output_, POLLIN, 0};
  if (::poll(&waiting, 1, static_cast<int>(atMost.count())) <= 0) return true;
  std::array<char, 65536> block;
  const ssize_t size = ::read(output_, block.data(), block.size());
  if (size <= 0) return false;
  const std::string_view piece(block.data(), static_cast<std::size_t>(size));
  lines_ += static_cast<std::size_t>(std::count(piece.begin(), piece.end(), '\n'));
  text_ += piece;
  return true;
}

}  // namespace VelWhiteBoard
