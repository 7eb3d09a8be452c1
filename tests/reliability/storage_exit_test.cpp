// A storage that is dropped with a full queue, and a process that ends with one: everything that
// was queued must be on the disk.
#include <cstdlib>
#include <string>
#include <sys/wait.h>

#include <gtest/gtest.h>

#include "VelWhiteBoard/storage/files/board_files.h"

#include "tests/reliability/generations.h"
#include "tests/support/temporary_folder.h"

namespace VelWhiteBoard {
namespace {

constexpr int kPages = 40;
constexpr int kVectors = 100;

class TheEndWithAFullQueue : public ::testing::TestWithParam<const char*> {};

TEST_P(TheEndWithAFullQueue, LeavesEverythingOnTheDisk) {
  const TemporaryFolder parent;
  const std::string command = std::string("'" VELWB_STORAGE_EXIT_PROGRAM "' ") + GetParam() + " '" +
                              parent.path() + "' " + std::to_string(kPages) + " " +
                              std::to_string(kVectors);
  const int status = std::system(command.c_str());
  ASSERT_TRUE(WIFEXITED(status));
  ASSERT_EQ(WEXITSTATUS(status), 0);

  const std::string folder = boardFolder(parent.path());
  EXPECT_EQ(readPages(pageListFile(folder)).list.size(), static_cast<std::size_t>(kPages));
  for (int number = 1; number <= kPages + 1; ++number) {
    const std::string key = "1_" + std::to_string(number);
    const std::size_t expected = number <= kPages ? kVectors : 2;
    EXPECT_EQ(readVectors(wholeListFile(folder, key)).list.size(), expected) << key;
    EXPECT_EQ(readVectors(snapListFile(folder, key)).list.size(), expected) << key;
  }
  EXPECT_EQ(namesIn(folder, ".tmp"), std::vector<std::string>());
}

INSTANTIATE_TEST_SUITE_P(Ways, TheEndWithAFullQueue,
                         ::testing::Values("return", "exit", "forgotten", "dropped", "waited"),
                         [](const auto& way) { return std::string(way.param); });

}  // namespace
}  // namespace VelWhiteBoard
