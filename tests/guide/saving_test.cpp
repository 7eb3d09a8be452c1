// What docs/client.md tells about saving: timers, and whether everything is on the disk.
#include <VelWhiteBoard/VelWhiteBoard.h>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <memory>
#include <mutex>
#include <set>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/disk_file_system.h"

#include "tests/support/faulty_calls.h"
#include "tests/support/storage_story.h"

namespace VelWhiteBoard {
namespace {

using ::testing::ElementsAre;

// [snippet: is-saved]
/// The files whose last write or removal has failed.
struct FailedFiles {
  std::mutex mutex;
  std::set<std::string> paths;
};

/// The observer shares what it uses: writes that wait when the board goes are reported, too.
std::shared_ptr<FailedFiles> watchWrites(VWBVectorStorage& board) {
  auto failed = std::make_shared<FailedFiles>();
  board.setWriteObserver([failed](const WriteReport& report) {
    const std::lock_guard<std::mutex> hold(failed->mutex);
    if (report.result.ok()) {
      failed->paths.erase(report.path);
    } else {
      failed->paths.insert(report.path);
    }
  });
  return failed;
}

/// Saves, and tells whether everything is on the disk. Waits for the disk, so not on the pen's
/// thread, and not inside the observer.
bool saveAll(VWBVectorStorage& board, FailedFiles& failed) {
  board.saveFile(true);
  board.retryFailedSaves();
  board.saveQueue()->waitUntilAllOperationsAreFinished();
  const std::lock_guard<std::mutex> hold(failed.mutex);
  return failed.paths.empty();
}
// [end]

// [snippet: timer]
/// Each change starts a timer of 21 seconds anew; when it runs out, this writes the last strokes.
void onIdle(VWBVectorStorage& board) { board.saveFile(false); }

/// The lesson ends.
void leave(VWBVectorStorage& board) {
  board.saveFile(true);
  VelWbVectorManager& clock = VelWbVectorManager::shareManager();
  clock.setIsRunning(false);
  clock.clear();
}
// [end]

class SavedFiles : public ::testing::Test {
 protected:
  FaultyCalls calls_;
  DiskFileSystem disk_{calls_};
  ScopedFileSystem scope_{disk_};
  Board board;
};

TEST_F(SavedFiles, AreNotAllThereUntilTheDiskTakesThem) {
  const std::shared_ptr<FailedFiles> failed = watchWrites(*board);
  board.show(page(1, 1));
  board.save(line("a", 0, 0, 1));
  EXPECT_TRUE(saveAll(*board, *failed));
  calls_.inject(Fault::failingFrom(Call::kWrite, 1, EIO));
  board.save(line("a", 1, 1, 2));
  EXPECT_FALSE(saveAll(*board, *failed));
  EXPECT_EQ(failed->paths.size(), 2U);
  calls_.heal();
  EXPECT_TRUE(saveAll(*board, *failed));
  EXPECT_THAT(board.snapFile("1_1"), ElementsAre("line a (0 0 1)(1 1 2)"));
}

TEST_F(SavedFiles, AreReportedWhenTheBoardHasGone) {
  const std::shared_ptr<FailedFiles> failed = watchWrites(*board);
  board.show(page(1, 1));
  board.settle();
  const auto queue = board->saveQueue();
  calls_.inject(Fault::failingFrom(Call::kWrite, 1, EIO));
  {
    const QueueHold hold = board.holdQueue();
    board.save(line("a", 0, 0, 1));
    board.write();
    board.drop();
  }
  queue->waitUntilAllOperationsAreFinished();
  calls_.heal();
  EXPECT_EQ(failed->paths.size(), 2U);
}

TEST_F(SavedFiles, ThatCouldNotBeRemovedAreRemovedByASecondClearing) {
  const std::shared_ptr<FailedFiles> failed = watchWrites(*board);
  board.show(page(1, 1));
  board.save(line("a", 0, 0, 1));
  EXPECT_TRUE(saveAll(*board, *failed));
  calls_.inject(Fault::failingFrom(Call::kRemoveAll, 1, EIO));
  board->clearPage(*page(1, 1));
  EXPECT_FALSE(saveAll(*board, *failed));
  calls_.heal();
  EXPECT_FALSE(saveAll(*board, *failed));
  board->clearPage(*page(1, 1));
  EXPECT_TRUE(saveAll(*board, *failed));
}

TEST_F(SavedFiles, StayInTheSetWhenTheBoardIsCleared) {
  const std::shared_ptr<FailedFiles> failed = watchWrites(*board);
  board.show(page(1, 1));
  board.settle();
  calls_.inject(Fault::failingFrom(Call::kWrite, 1, EIO));
  board.save(line("a", 0, 0, 1));
  EXPECT_FALSE(saveAll(*board, *failed));
  calls_.heal();
  board->clear();
  EXPECT_FALSE(saveAll(*board, *failed));
}

class IdleClient : public ::testing::Test {
 protected:
  IdleClient() {
    board->setWriteObserver([written = written_](const WriteReport&) { ++*written; });
    board.show(page(1, 1));
    board.clock().advance(std::chrono::seconds(25));
    board.save(line("a", 0, 0, 1), line("a", 1, 1, 2));
  }
  int writes() {
    board.settle();
    return *written_;
  }

  const std::shared_ptr<std::atomic<int>> written_ = std::make_shared<std::atomic<int>>(0);
  Board board;
};

TEST_F(IdleClient, SavesItsLastStrokesOnlyWithATimer) {
  EXPECT_THAT(board.snapFile("1_1"), ElementsAre("line a (0 0 1)"));
  board.clock().advance(std::chrono::hours(1));
  EXPECT_THAT(board.snapFile("1_1"), ElementsAre("line a (0 0 1)"));
  onIdle(*board);
  EXPECT_THAT(board.snapFile("1_1"), ElementsAre("line a (0 0 1)(1 1 2)"));
}

TEST_F(IdleClient, WritesItsPageAgainEveryTwentySecondsWhenItsTimerRepeats) {
  board.clock().advance(std::chrono::seconds(21));
  onIdle(*board);
  const int before = writes();
  board.clock().advance(std::chrono::seconds(19));
  onIdle(*board);
  EXPECT_EQ(writes(), before);
  board.clock().advance(std::chrono::seconds(2));
  onIdle(*board);
  EXPECT_EQ(writes(), before + 2);
}

TEST_F(IdleClient, LosesNothingWhenItLeaves) {
  leave(*board);
  EXPECT_THAT(board.snapFile("1_1"), ElementsAre("line a (0 0 1)(1 1 2)"));
}

}  // namespace
}  // namespace VelWhiteBoard
