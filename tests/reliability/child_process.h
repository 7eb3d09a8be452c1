#pragma once

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace VelWhiteBoard {

/// A program that a test starts, and that cannot outlive the test.
class ChildProcess {
 public:
  /// The program's path and its arguments.
  explicit ChildProcess(std::vector<std::string> words);
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  /// Its number; -1 when it was not started.
  pid_t id() const { return process_; }
  /// Waits for its end, at most so many seconds. Answers its exit code, 128 and the number when a
  /// signal ended it; nothing when it still runs.
  std::optional<int> waitFor(int seconds);

 private:
  pid_t process_ = -1;
};

}  // namespace VelWhiteBoard
