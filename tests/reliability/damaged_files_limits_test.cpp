// When a damaged file is not set aside: while it cannot be, when its page is cleared, and when it
// is no damaged file at all.
#include <cerrno>
#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/file_system.h"

#include "tests/reliability/damaged_board.h"

namespace VelWhiteBoard {
namespace {

TEST(ADamagedFile, IsNotReplacedWhileItCannotBeSetAside) {
  DamagedBoard board;
  board.put(snapName("1_1"), "garbage");
  board.open();
  board.show(1);
  board.draw("new");
  board.settle();
  board.calls().inject(Fault::failingFrom(Call::kRenameToNew, 1, EACCES));
  for (int i = 0; i < 3; ++i) board.save();
  EXPECT_EQ(board.setAside(), Names());
  EXPECT_EQ(board.contents(snapName("1_1")), "garbage");
  board.calls().heal();
  board.save();
  EXPECT_EQ(board.contents(snapName("1_1") + ".damaged"), "garbage");
  EXPECT_EQ(board.identifiers(snapName("1_1")), Strings{"new"});
}

TEST(ADamagedFile, IsNotReplacedWhileNobodyCanTellWhatItIs) {
  DamagedBoard board;
  board.put(snapName("1_1"), "garbage");
  board.open();
  board.show(1);
  board.draw("new");
  board.settle();
  board.calls().inject(Fault::failingFrom(Call::kStatus, 1, EIO));
  board.save();
  board.calls().heal();
  EXPECT_EQ(board.contents(snapName("1_1")), "garbage");
  board.save();
  EXPECT_EQ(board.contents(snapName("1_1") + ".damaged"), "garbage");
  EXPECT_EQ(board.identifiers(snapName("1_1")), Strings{"new"});
}

TEST(ADamagedFile, GoesWithItsPageWhenThatIsCleared) {
  DamagedBoard board;
  board.put(snapName("1_1"), "garbage");
  board.put(wholeName("1_1"), "garbage");
  board.open();
  board.show(1);
  board->clearPage(*page(1, 1));
  board.settle();
  EXPECT_EQ(board.setAside(), Names());
  EXPECT_FALSE(FileSystem::current().exists(board.at(snapName("1_1"))));
  EXPECT_FALSE(FileSystem::current().exists(board.at(wholeName("1_1"))));
  // What comes after it is a page like any other.
  board.draw("new");
  board.save();
  EXPECT_EQ(board.setAside(), Names());
  EXPECT_EQ(board.identifiers(snapName("1_1")), Strings{"new"});
}

TEST(ADamagedFile, ThatWasSetAsideStaysWhenItsPageIsCleared) {
  DamagedBoard board;
  board.put(snapName("1_1"), "garbage");
  board.open();
  board.show(1);
  board.draw("new");
  board.save();
  board->clearPage(*page(1, 1));
  board.settle();
  EXPECT_EQ(board.setAside(), Names{snapName("1_1") + ".damaged"});
}

TEST(ADamagedFile, GoesWithTheWholeBoardWhenThatIsCleared) {
  DamagedBoard board;
  board.put(snapName("1_1"), "garbage");
  board.put(snapName("1_2"), "garbage");
  board.open();
  board.show(1);
  board.draw("new");
  board.save();
  board.show(2);
  board.settle();
  board->clear();
  board.settle();
  EXPECT_EQ(board.setAside(), Names());
  board.draw("new");
  board.save();
  EXPECT_EQ(board.setAside(), Names());
  EXPECT_EQ(board.identifiers(snapName("1_2")), Strings{"new"});
}

TEST(ADamagedFile, IsNoneThatIsSoundOrMissing) {
  DamagedBoard board;
  board.open();
  for (std::uint64_t number = 1; number <= 3; ++number) {
    board.show(number);
    board.draw("new " + std::to_string(number));
  }
  board->appendVectors({line("appended", 1, 2, 3)}, page(1, 4));
  EXPECT_EQ(board->snapWithPage(*page(1, 5)).size(), 0U);
  board.save();
  EXPECT_EQ(board.setAside(), Names());
  EXPECT_EQ(board.identifiers(wholeName("1_1")), (Strings{"old 1", "new 1"}));
}

// Repaired by somebody while the board is open, and read again: then it is sound.
TEST(ADamagedFile, IsNoneAnyMoreOnceItHasBeenRead) {
  DamagedBoard board;
  const std::string sound = board.contents(snapName("1_2"));
  board.put(snapName("1_2"), "garbage");
  board.open();
  board.show(1);
  EXPECT_EQ(board->snapWithPage(*page(1, 2)).size(), 0U);
  board.put(snapName("1_2"), sound);
  EXPECT_EQ(board->snapWithPage(*page(1, 2)).size(), 1U);
  board->appendVectors({line("appended", 1, 2, 3)}, page(1, 2));
  board.settle();
  EXPECT_EQ(board.setAside(), Names());
  EXPECT_EQ(board.identifiers(snapName("1_2")), (Strings{"old 2", "appended"}));
}

}  // namespace
}  // namespace VelWhiteBoard
