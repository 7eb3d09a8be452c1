// A process that opens boards which were there before, draws one stroke on each and ends at once:
// it ends without a signal, and the strokes are on the disk.
#include <cstdlib>
#include <set>
#include <string>
#include <sys/wait.h>
#include <tuple>

#include <gtest/gtest.h>

#include "VelWhiteBoard/storage/files/board_files.h"

#include "tests/reliability/generations.h"
#include "tests/support/temporary_folder.h"

namespace VelWhiteBoard {
namespace {

/// A crash that depends on which thread runs the last save needs some processes to show. A process
/// that does not end shows at once, and busy ones make the boards large.
constexpr int kProcesses = 25;
constexpr int kBusyProcesses = 5;

class TheEndWithOldBoards : public ::testing::TestWithParam<std::tuple<const char*, int>> {
 protected:
  /// Answers what `std::system` does.
  int run(const std::string& way, const std::string& identifier) {
    const std::string command = "'" VELWB_OLD_BOARD_EXIT_PROGRAM "' " + way + " '" +
                                folder_.path() + "' " + std::to_string(boards()) + " '" +
                                identifier + "'";
    return std::system(command.c_str());
  }

  std::string way() const { return std::get<0>(GetParam()); }
  int processes() const {
    if (const char* count = std::getenv("VELWB_ENDS")) return std::atoi(count);
    return way().find("busy") == 0 ? kBusyProcesses : kProcesses;
  }
  int boards() const { return std::get<1>(GetParam()); }
  std::string board(int number) const { return boardFolder(folder_.at(std::to_string(number))); }

 private:
  const TemporaryFolder folder_;
};

TEST_P(TheEndWithOldBoards, IsNoCrashAndLeavesEveryStrokeOnTheDisk) {
  ASSERT_EQ(run("make", ""), 0);
  for (int process = 0; process < processes(); ++process) {
    const std::string identifier = "new " + std::to_string(process);
    const int status = run(way(), identifier);
    ASSERT_TRUE(WIFEXITED(status)) << "process " << process;
    ASSERT_EQ(WEXITSTATUS(status), 0) << "process " << process;
  }
  // The strokes of all processes: later ones lost nothing of the earlier ones'.
  for (int number = 0; number < boards(); ++number) {
    for (const auto& file :
         {wholeListFile(board(number), "1_1"), snapListFile(board(number), "1_1")}) {
      const std::set<std::string> found = identifiersIn(file);
      for (int process = 0; process < processes(); ++process) {
        EXPECT_EQ(found.count("new " + std::to_string(process)), 1U) << file << " " << process;
      }
      EXPECT_EQ(found.count("old 0"), 1U) << file;
      EXPECT_EQ(found.count("old 1999"), 1U) << file;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Ways, TheEndWithOldBoards,
                         ::testing::Combine(::testing::Values("return", "exit", "inside", "thread",
                                                              "busy", "busy_and_waiting"),
                                            ::testing::Values(1, 8)),
                         [](const auto& parameters) {
                           return std::string(std::get<0>(parameters.param)) + "_" +
                                  std::to_string(std::get<1>(parameters.param));
                         });

}  // namespace
}  // namespace VelWhiteBoard
