// A temporary that somebody else has locked and never lets go: a client that is stopped, a helper
// that was forked. It holds up neither saves nor the end of the process.
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "tests/reliability/board_on_disk.h"
#include "tests/reliability/child_process.h"
#include "tests/support/storage_story.h"

namespace VelWhiteBoard {
namespace {

/// Three files are written, each of which may wait a second; this is plenty.
constexpr int kMostSeconds = 15;

/// The lock of a file, held by this process.
class HeldLock {
 public:
  explicit HeldLock(const std::string& path)
      : handle_(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644)) {
    isHeld_ = handle_ >= 0 && ::flock(handle_, LOCK_EX | LOCK_NB) == 0;
  }
  ~HeldLock() { ::close(handle_); }
  HeldLock(const HeldLock&) = delete;
  HeldLock& operator=(const HeldLock&) = delete;

  bool isHeld() const { return isHeld_; }

 private:
  int handle_;
  bool isHeld_ = false;
};

class ALockedTemporary : public ::testing::TestWithParam<std::string> {
 protected:
  ALockedTemporary() {
    const auto storage = board_.open();
    storage->switchPage(page(1, 1, 1));
    draw(*storage, {"old"});
    saveNow(*storage);
  }

  std::string temporary() const { return board_.at(GetParam() + ".tmp"); }
  static void play(const BoardOnDisk& board) {
    ChildProcess client({VELWB_LIMITED_PROGRAM, "save", board.parent()});
    EXPECT_EQ(client.waitFor(kMostSeconds), 0);
  }

  BoardOnDisk board_;
};

TEST_P(ALockedTemporary, HoldsUpNeitherSavesNorTheEndOfTheProcess) {
  const HeldLock lock(temporary());
  ASSERT_TRUE(lock.isHeld());
  play(board_);
  EXPECT_EQ(board_.identifiers(wholeName("1_1")), (Names{"old", "new"}));
  EXPECT_EQ(board_.identifiers(snapName("1_1")), (Names{"old", "new"}));
  EXPECT_EQ(board_.identifiers(kPagesName), (Names{"1_1"}));
}

TEST_P(ALockedTemporary, IsLeftToItsOwnerAndRemovedByTheFirstOpenThatFindsItUnused) {
  {
    const HeldLock lock(temporary());
    ASSERT_TRUE(lock.isHeld());
    settle(*board_.open());
    EXPECT_EQ(::access(temporary().c_str(), F_OK), 0);
  }
  settle(*board_.open());
  EXPECT_FALSE(board_.hasTemporaries());
}

TEST_P(ALockedTemporary, LeavesNoTemporaryOnceTheLockIsFree) {
  {
    const HeldLock lock(temporary());
    ASSERT_TRUE(lock.isHeld());
    play(board_);
    play(board_);
  }
  settle(*board_.open());
  EXPECT_FALSE(board_.hasTemporaries());
}

INSTANTIATE_TEST_SUITE_P(Of, ALockedTemporary,
                         ::testing::Values(wholeName("1_1"), snapName("1_1"), kPagesName),
                         [](const auto& name) {
                           return name.param.substr(0, name.param.find_first_of("_."));
                         });

}  // namespace
}  // namespace VelWhiteBoard
