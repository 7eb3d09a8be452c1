// Plays a recorded lesson into a board, as a client would receive it.
#include <cstdlib>
#include <exception>
#include <iostream>
#include <new>
#include <variant>

#include "../standard_streams.h"
#include "command_line.h"
#include "session.h"

namespace {

constexpr int kSomethingLost = 1;
constexpr int kCouldNotRun = 2;

int runCommand(int argc, char** argv) {
  const auto parsed = lesson::parseCommandLine(argc, argv);
  if (const int* status = std::get_if<int>(&parsed)) return *status;
  return lesson::runLesson(std::get<lesson::Options>(parsed)) ? EXIT_SUCCESS : kSomethingLost;
}

}  // namespace

int main(int argc, char** argv) {
  int status = kCouldNotRun;
  try {
    example::keepStandardStreams();
    status = runCommand(argc, argv);
  } catch (const std::bad_alloc&) {
    std::cerr << "lesson: no memory\n";
  } catch (const std::exception& error) {
    std::cerr << "lesson: " << error.what() << '\n';
  }
  return example::wasOutputTaken("lesson") ? status : kCouldNotRun;
}
