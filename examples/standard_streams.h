// The standard streams of the example programs.
#pragma once

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <iostream>
#include <unistd.h>

namespace example {

/// To be called first in `main`. A closed standard stream leaves its number to the next file that
/// is opened, and what is meant for the stream would go into that file. Such a stream is opened
/// here, the wrong way round, so that each use of it fails.
inline void keepStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(stream, F_GETFD) != -1 || errno != EBADF) continue;
    // The lowest free number is this one. Without it the stream stays closed.
    static_cast<void>(::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY));
  }
}

/// To be called last in `main`: whether all output has been taken. If not, `program` says so.
inline bool wasOutputTaken(const char* program) {
  if (std::cout.flush() && std::fflush(stdout) == 0) return true;
  std::cerr << program << ": cannot write to standard output\n";
  return false;
}

}  // namespace example
