// Looks at the files of a board, changes none, and saves what can be saved.
#include <exception>
#include <filesystem>
#include <iostream>
#include <new>
#include <optional>
#include <string>

#include <CLI/CLI.hpp>

#include "../standard_streams.h"
#include "inspection.h"
#include "recovery.h"
#include "report.h"

namespace {

namespace fs = std::filesystem;

constexpr int kFine = 0;
constexpr int kDamaged = 1;
constexpr int kCouldNotRun = 2;
constexpr int kNotRead = 3;

constexpr const char* kFooter = R"(
DIR is the folder "whiteBoard" or the folder that holds it. Nothing in it is changed.

Of a readable file nothing else is said when it is, byte for byte, what the library writes:
a strict reader of property lists reads the same. A damaged file is good up to the place
where it breaks, and again from the next record on that can be read. A file that the system
did not give is "not read"; nothing is known of its contents. A page whose log and snapshot
are of different times is "out of step".

--recover keeps every record that can be read, and before them those of the files that the
library has set aside (NAME.damaged, NAME.damaged-2, ...). A snapshot that is lost, damaged
or behind is rebuilt from its page's log; what only the snapshot knows of is added to the
log. A write that did not end (NAME.tmp) stands in for a broken or missing file when it
holds more and something else of its page is there. The new board lies in the folder
"whiteBoard" below OUT, which must be missing or empty, and outside DIR.

Exit status: 0 when all files are fine; 1 when something is damaged, missing or out of step
(recovered or not); 2 when the board could not be looked at, or the new one or the report
could not be written; 3 when a file was not read, or a page left out for want of memory.)";

int run(const fs::path& directory, const std::optional<std::string>& target) {
  const board_check::BoardFiles board = board_check::inspectBoard(directory);
  board_check::printReport(board, std::cout);
  bool isEverythingSaved = true;
  if (target) {
    isEverythingSaved = board_check::recover(board, *target, std::cout);
  } else if (!board.isAllFine()) {
    std::cout << "With --recover OUT, a new board is made of what can be saved.\n";
  }
  if (!board.wasAllGiven() || !isEverythingSaved) return kNotRead;
  return board.isAllFine() ? kFine : kDamaged;
}

std::string requireName(const std::string& text) {
  return text.empty() ? "its name is empty" : std::string();
}

int runCommand(int argc, char** argv) {
  std::string directory;
  std::optional<std::string> target;
  CLI::App app("Tells which files of a board are readable, and saves what can be saved.",
               "board-check");
  app.add_option("DIR", directory, "The board")->required()->check(requireName)->type_name("");
  app.add_option("--recover", target, "Write a new board with all that can be saved")
      ->check(requireName)
      ->type_name("OUT");
  app.set_version_flag("--version", "board-check " VELWHITEBOARD_VERSION_STRING);
  app.footer(kFooter);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kFine : kCouldNotRun;
  }
  return run(directory, target);
}

}  // namespace

int main(int argc, char** argv) {
  int status = kCouldNotRun;
  try {
    example::keepStandardStreams();
    status = runCommand(argc, argv);
  } catch (const fs::filesystem_error& error) {
    std::cerr << "board-check: " << error.path1().string() << ": " << error.code().message()
              << '\n';
  } catch (const std::bad_alloc&) {
    std::cerr << "board-check: no memory\n";
  } catch (const std::exception& error) {
    std::cerr << "board-check: " << error.what() << '\n';
  }
  return example::wasOutputTaken("board-check") ? status : kCouldNotRun;
}
