// A process that the system gives few handles, or little memory. What was on the disk, and what was
// drawn, is kept.
//
// VELWB_PAGES sets the number of pages, VELWB_ENTRIES how many entries the page has for which there
// is no memory.
#include <cstdint>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "tests/reliability/board_on_disk.h"
#include "tests/reliability/child_process.h"
#include "tests/support/storage_story.h"

namespace VelWhiteBoard {
namespace {

constexpr int kMostSecondsOfAMode = 120;

class AProcessWithLimits : public ::testing::Test {
 protected:
  void make(std::uint64_t pages, int entries) {
    const auto storage = board_.open();
    for (std::uint64_t number = 1; number <= pages; ++number) {
      storage->switchPage(page(1, number, static_cast<double>(number)));
      draw(*storage, numbered("old", 1, entries));
    }
    saveNow(*storage);
  }

  void run(const std::string& mode, const Names& arguments = {}) {
    Names words = {VELWB_LIMITED_PROGRAM, mode, board_.parent()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    EXPECT_EQ(ChildProcess(words).waitFor(kMostSecondsOfAMode), 0) << mode;
  }

  BoardOnDisk board_;
};

TEST_F(AProcessWithLimits, ReadsAndWritesAnyNumberOfPagesWithAFewHandles) {
  const auto pages = static_cast<std::uint64_t>(numberFromEnvironment("VELWB_PAGES", 100));
  make(pages, 3);
  for (int round = 1; round <= 2; ++round) {
    run("handles", {std::to_string(pages), "24"});
    for (std::uint64_t number = 1; number <= pages; ++number) {
      const std::string key = "1_" + std::to_string(number);
      Names expected = numbered("old", 1, 3);
      expected.insert(expected.end(), static_cast<std::size_t>(round), "new");
      ASSERT_EQ(board_.identifiers(wholeName(key)), expected) << key;
      ASSERT_EQ(board_.setAside(wholeName(key)), Names()) << key;
      ASSERT_EQ(board_.setAside(snapName(key)), Names()) << key;
    }
    EXPECT_EQ(board_.setAside(kPagesName), Names());
  }
}

// Sanitizers need handles and an address space of their own.
#ifdef VELWB_MEMORY_CAN_BE_LIMITED
TEST_F(AProcessWithLimits, LosesNothingWithoutAnyHandleTwiceInARow) {
  make(1, 5);
  Names all = numbered("old", 1, 5);
  all.emplace_back("new");
  for (int round = 1; round <= 3; ++round) {
    run("none");
    EXPECT_EQ(missing(all, board_.kept(wholeName("1_1"))), Names()) << "round " << round;
    EXPECT_EQ(missing(all, board_.kept(snapName("1_1"))), Names()) << "round " << round;
  }
}

TEST_F(AProcessWithLimits, IsAsItWasWhenThereIsNoMemoryToSwitchAPage) {
  const int entries = numberFromEnvironment("VELWB_ENTRIES", 30'000);
  make(1, entries);
  run("memory", {std::to_string(entries)});
  Names all = numbered("old", 1, entries);
  all.emplace_back("after");
  EXPECT_TRUE(board_.identifiers(wholeName("1_1")) == all);
  EXPECT_TRUE(board_.identifiers(snapName("1_1")) == all);
  EXPECT_EQ(board_.setAside(wholeName("1_1")), Names());
  EXPECT_EQ(board_.setAside(snapName("1_1")), Names());
}
#endif

}  // namespace
}  // namespace VelWhiteBoard
