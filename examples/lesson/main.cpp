// Plays a recorded lesson into a board, as a client would receive it.
#include <cstdlib>
#include <exception>
#include <iostream>
#include <variant>

#include "cannot_run.h"
#include "command_line.h"
#include "session.h"

namespace {

constexpr int kSomethingLost = 1;
constexpr int kCouldNotRun = 2;

}  // namespace

int main(int argc, char** argv) {
  try {
    const auto parsed = lesson::parseCommandLine(argc, argv);
    if (const int* status = std::get_if<int>(&parsed)) return *status;
    return lesson::runLesson(std::get<lesson::Options>(parsed)) ? EXIT_SUCCESS : kSomethingLost;
  } catch (const lesson::CannotRun& reason) {
    std::cerr << "lesson: " << reason.what() << '\n';
  } catch (const std::exception& error) {
    std::cerr << "lesson: " << error.what() << '\n';
  }
  return kCouldNotRun;
}
