#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <sys/types.h>

namespace VelWhiteBoard {

/// A process that plays lessons into a board (crash_player.cpp), and what it announces.
class PlayerProcess {
 public:
  /// Starts it. `steps` is how many it plays before it ends by itself; empty for no end.
  PlayerProcess(const std::string& directory, std::uint32_t seed, const std::string& steps = "");
  ~PlayerProcess();
  PlayerProcess(const PlayerProcess&) = delete;
  PlayerProcess& operator=(const PlayerProcess&) = delete;

  bool isRunning() const { return process_ > 0; }
  /// How many lines it has announced so far, and which.
  std::size_t lines() const { return lines_; }
  const std::string& output() const { return text_; }

  /// Reads until the process has announced so much, then for so long; false when it ended before.
  bool readUntil(std::size_t lines, std::chrono::microseconds andThen);

  /// Kills the process, and reads what it still had said.
  void kill();

  /// Waits for the end of the process; its exit status.
  int finish();

 private:
  /// Waits for output, at most so long; false at its end.
  bool read(std::chrono::milliseconds atMost);

  pid_t process_ = -1;
  int output_ = -1;
  std::size_t lines_ = 0;
  std::string text_;
};

}  // namespace VelWhiteBoard
