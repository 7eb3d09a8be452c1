// What an observer of writes is told.
#include <cerrno>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/disk_file_system.h"
#include "VelWhiteBoard/storage/vector_storage.h"

#include "tests/support/faulty_calls.h"
#include "tests/support/storage_story.h"

namespace VelWhiteBoard {
namespace {

using ::testing::ElementsAre;

class AnObserverOfWrites : public ::testing::Test {
 protected:
  AnObserverOfWrites() {
    board->setWriteObserver([told = told_](const WriteReport& report) {
      std::string line = report.kind == WriteReport::Kind::kRemoved ? "removed " : "written ";
      line += report.path.substr(report.path.rfind('/') + 1);
      if (!report.result.ok()) {
        line += ": " + std::string(fileStepName(report.result.step)) + ' ' +
                std::to_string(report.result.error);
      }
      const std::lock_guard<std::mutex> hold(told->mutex);
      told->lines.push_back(line);
    });
    board.show(page(1, 1));
    board.save(line("a", 1, 2, 3));
    board.settle();
    told();
  }

  /// All that was told since the last call.
  Tale told() {
    const std::lock_guard<std::mutex> hold(told_->mutex);
    return std::exchange(told_->lines, {});
  }

  struct Told {
    std::mutex mutex;
    Tale lines;
  };
  const std::shared_ptr<Told> told_ = std::make_shared<Told>();
  FaultyCalls calls_;
  DiskFileSystem disk_{calls_};
  ScopedFileSystem scope_{disk_};
  Board board;
};

TEST_F(AnObserverOfWrites, IsToldOfEachFileThatHasBeenWritten) {
  board.write();
  board.show(page(1, 2));
  board.settle();
  EXPECT_THAT(told(), ElementsAre("written whole_1_1.plist", "written snap_1_1.plist",
                                  "written whole_1_1.plist", "written snap_1_1.plist",
                                  "written page.plist"));
}

TEST_F(AnObserverOfWrites, IsToldWhichStepHasFailedAndWhy) {
  calls_.inject(Fault::noSpace(1));
  board.write();
  board.settle();
  calls_.heal();
  const std::string error = std::to_string(ENOSPC);
  EXPECT_THAT(told(), ElementsAre("written whole_1_1.plist: write " + error,
                                  "written snap_1_1.plist: write " + error));
  EXPECT_TRUE(board->retryFailedSaves());
  board.settle();
  EXPECT_THAT(told(), ElementsAre("written whole_1_1.plist", "written snap_1_1.plist"));
}

TEST_F(AnObserverOfWrites, IsToldOfADamagedFileThatCannotBeMovedAside) {
  board.plant("whole_1_3.plist", "no list");
  board.show(page(1, 3));
  board.save(line("b", 1, 2, 3));
  board.settle();
  told();
  calls_.inject(Fault::failing(Call::kRenameToNew, 1, EACCES));
  board.write();
  board.settle();
  EXPECT_THAT(told(), ElementsAre("written whole_1_3.plist: rename " + std::to_string(EACCES),
                                  "written snap_1_3.plist"));
}

TEST_F(AnObserverOfWrites, IsToldThatTheFilesOfAClearedPageAreRemoved) {
  board.write();
  board.settle();
  told();
  board->clearPage(*page(1, 1));
  board.settle();
  EXPECT_THAT(told(), ElementsAre("removed whole_1_1.plist", "removed snap_1_1.plist"));
}

TEST_F(AnObserverOfWrites, IsToldOfWritesThatEndAfterTheStorageHasGone) {
  const auto queue = board->saveQueue();
  {
    const QueueHold hold = board.holdQueue();
    board.write();
    board.drop();
  }
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_THAT(told(), ElementsAre("written whole_1_1.plist", "written snap_1_1.plist"));
}

TEST_F(AnObserverOfWrites, ThatThrowsDoesNotMakeTheWriteFail) {
  board->setWriteObserver([](const WriteReport&) { throw 1; });
  board.write();
  EXPECT_THAT(board.wholeFile("1_1"), ElementsAre("line a (1 2 3)"));
  EXPECT_FALSE(board->retryFailedSaves());
}

TEST_F(AnObserverOfWrites, MayCallTheStorage) {
  bool hasCurrent = false;
  board->setWriteObserver(
      [&](const WriteReport&) { hasCurrent = board->currentPage() != nullptr; });
  board.write();
  board.settle();
  EXPECT_TRUE(hasCurrent);
}

TEST_F(AnObserverOfWrites, IsToldNothingOnceItHasBeenTakenAway) {
  board->setWriteObserver(nullptr);
  board.write();
  board.settle();
  EXPECT_THAT(told(), ElementsAre());
}

}  // namespace
}  // namespace VelWhiteBoard
