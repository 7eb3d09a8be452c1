// Looks at the files of a board, changes none, and saves what can be saved.
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>

#include <CLI/CLI.hpp>

#include "inspection.h"
#include "recovery.h"
#include "report.h"

namespace {

namespace fs = std::filesystem;

constexpr int kFine = 0;
constexpr int kDamaged = 1;
constexpr int kCouldNotRun = 2;

constexpr const char* kFooter = R"(
DIR is the folder "whiteBoard" or the folder that holds it. Nothing in it is changed.

Of a readable file nothing else is said when it is, byte for byte, what the library writes:
a strict reader of property lists reads the same. A damaged file is good up to the place
where it breaks.

--recover keeps every record before that place, and before them those of a file that the
library has set aside (NAME.damaged). A snapshot that is lost or damaged is rebuilt from
its page's log. A write that did not end (NAME.tmp) stands in for a broken or missing file
when it holds more. The new board lies in the folder "whiteBoard" below OUT, which must be
missing or empty, and outside DIR.

Exit status: 0 when all files are fine, 1 when something is damaged or missing (recovered
or not), 2 when the board could not be looked at or the new one could not be written.)";

int run(const fs::path& directory, const std::string& target) {
  const board_check::BoardFiles board = board_check::inspectBoard(directory);
  board_check::printReport(board, std::cout);
  if (!target.empty()) {
    board_check::recover(board, target, std::cout);
  } else if (!board.isAllFine()) {
    std::cout << "With --recover OUT, a new board is made of what can be saved.\n";
  }
  return board.isAllFine() ? kFine : kDamaged;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    std::string directory;
    std::string target;
    CLI::App app("Tells which files of a board are readable, and saves what can be saved.",
                 "board-check");
    app.add_option("DIR", directory, "The board")->required()->type_name("");
    app.add_option("--recover", target, "Write a new board with all that can be saved")
        ->type_name("OUT");
    app.footer(kFooter);
    try {
      app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
      return app.exit(error) == 0 ? kFine : kCouldNotRun;
    }
    return run(directory, target);
  } catch (const fs::filesystem_error& error) {
    std::cerr << "board-check: " << error.path1().string() << ": " << error.code().message()
              << '\n';
  } catch (const std::exception& error) {
    std::cerr << "board-check: " << error.what() << '\n';
  }
  return kCouldNotRun;
}
