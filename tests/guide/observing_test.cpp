// What docs/client.md tells about observers: a mirror of the page, undoing, and whether all is
// saved.
#include <VelWhiteBoard/VelWhiteBoard.h>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <iterator>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/disk_file_system.h"

#include "tests/support/faulty_calls.h"
#include "tests/support/random_arrivals.h"
#include "tests/support/storage_story.h"

namespace VelWhiteBoard {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// [snippet: mirror]
/// The entries of the page that is shown, kept by what the board reports.
class Mirror {
 public:
  /// For the change observer, when one thread makes all calls that change the board.
  void take(const ChangeReport& report, const VWBVectorStorage& board) {
    if (report.kind == ChangeReport::Kind::kSwitched) {
      entries_ = board.snapWithPage(*board.currentPage());  // draw all of it
    } else if (report.kind == ChangeReport::Kind::kReloaded) {
      entries_.clear();
    } else if (report.isCurrent) {
      for (const EntryChange& change : report.changes) apply(change);
    }
  }
  const VectorList& entries() const { return entries_; }

 private:
  void apply(const EntryChange& change) {
    switch (change.kind) {
      case EntryChange::Kind::kAdded:  // draw it on top
        entries_.push_back(change.entry);
        break;
      case EntryChange::Kind::kExtended:  // draw its path from position firstNew - 1 on
      case EntryChange::Kind::kEdited:    // draw where it was and where it is
        break;
      case EntryChange::Kind::kRaised: {  // draw where it was and where it is
        const auto last = std::find(entries_.rbegin(), entries_.rend(), change.entry);
        std::rotate(std::prev(last.base()), last.base(), entries_.end());
        break;
      }
      case EntryChange::Kind::kRemoved:  // draw where it was
        entries_.erase(std::find(entries_.begin(), entries_.end(), change.entry));
        break;
      case EntryChange::Kind::kRemovedTop:  // the same
        entries_.pop_back();
        break;
      case EntryChange::Kind::kCleared:
        entries_.clear();
        break;
    }
  }

  VectorList entries_;
};

/// The mirror must stay as long as the board has the observer.
void watchPage(VWBVectorStorage& board, Mirror& mirror) {
  board.setChangeObserver([&](const ChangeReport& report) { mirror.take(report, board); });
}
// [end]

// [snippet: undo]
/// Takes back, newest first, what this participant has drawn on the page that is shown. It makes
/// vectors to send; they take effect when they come back, as all others do.
class Undo {
 public:
  explicit Undo(const std::string& userID) : own_(userID + '_') {}

  /// For the change observer.
  void take(const ChangeReport& report, const VWBVectorStorage& board) {
    if (report.kind != ChangeReport::Kind::kEntries) drawn_.clear(), undone_.clear();
    if (!report.isCurrent) return;
    for (const auto& [kind, entry, firstNew] : report.changes) {
      if (kind != EntryChange::Kind::kAdded || board.ignoreVector(*entry)) continue;
      if (entry->ID && entry->ID->starts_with(own_)) drawn_.push_back(*entry->ID);
    }
  }
  /// The vector that takes the newest entry off the page; null when there is none. Not while the
  /// pen is down: the rest of the stroke would begin it anew.
  VectorPtr undo(const VWBVectorStorage& board) {
    while (!drawn_.empty()) {
      const std::string ID = drawn_.back();
      drawn_.pop_back();
      const VectorPtr entry = board.entryWithID(ID);
      if (!entry) continue;  // somebody else has removed it
      undone_.push_back(modelToJSONString(*entry));
      auto remove = recordPointerCast<VelWbVecRemove>(
          VWBToolManager::genVectorWithType(VelWBVectorTypeRemove));
      remove->rmID = ID;
      return remove;
    }
    return nullptr;
  }
  /// The vector that brings back what was undone last, on top of the page.
  VectorPtr redo() {
    if (undone_.empty()) return nullptr;
    const std::string entry = undone_.back();
    undone_.pop_back();
    return modelWithJSON<VelWbBaseVector>(entry);
  }

 private:
  std::string own_;  // how the participant's identifiers begin
  std::vector<std::string> drawn_;
  std::vector<std::string> undone_;
};
// [end]

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

class MirrorOfTheGuide : public ::testing::TestWithParam<std::uint64_t> {};

TEST_P(MirrorOfTheGuide, IsThePageAfterEveryStepOfARandomLesson) {
  Chances chances(GetParam());
  Board board;
  board.savesOddRecords();
  Mirror mirror;
  watchPage(*board, mirror);
  const auto anyPage = [&] {
    return page(1, static_cast<std::uint64_t>(1 + chances.below(3)), chances.below(1000));
  };
  const auto arrival = [&] { return modelWithDictionary<VelWbBaseVector>(randomArrival(chances)); };
  board->switchPage(anyPage());
  std::size_t longest = 0;
  for (int step = 0; step < 600 && !HasFailure(); ++step) {
    switch (chances.below(8)) {
      case 0:
        board->switchPage(anyPage());
        break;
      case 1:
        board->appendVectors({arrival(), arrival()}, anyPage());
        break;
      case 2:
        board->saveVectors({arrival(), arrival()}, anyPage());
        break;
      case 3:
        if (chances.oneIn(10)) board->clearPage(*anyPage());
        break;
      default:
        board.save(arrival());
    }
    EXPECT_EQ(mirror.entries(), board->snapWithPage(*board->currentPage())) << "step " << step;
    longest = std::max(longest, mirror.entries().size());
  }
  EXPECT_GT(longest, 2U);
}

INSTANTIATE_TEST_SUITE_P(Seed, MirrorOfTheGuide, ::testing::Values(1, 2, 3, 4, 5, 6));

TEST(AMirror, IsEmptyWhenTheBoardIsReloadedOrCleared) {
  Board board;
  Mirror mirror;
  watchPage(*board, mirror);
  board.show(page(1, 1));
  board.save(line("a", 0, 0, 1));
  EXPECT_EQ(mirror.entries().size(), 1U);
  board->reload();
  EXPECT_THAT(mirror.entries(), IsEmpty());
  board.save(line("b", 0, 0, 1));
  EXPECT_EQ(mirror.entries(), board->snapWithPage(*page(1, 1)));
  board->clear();
  EXPECT_THAT(mirror.entries(), IsEmpty());
}

TEST(UndoOfTheGuide, TakesOwnEntriesBackAndBringsThemAgain) {
  Board board;
  Undo undo("u1");
  board->setChangeObserver([&](const ChangeReport& report) { undo.take(report, *board); });
  board.show(page(1, 1));
  board.save(line("u1_1", 0, 0, 1), line("u2_5", 0, 0, 1), line("u1_2", 0, 0, 2),
             line("u1_2", 1, 1, 3), cursor("u1_3"));
  const VectorPtr before = board->entryWithID("u1_2")->mutableCopyWithZone();
  board.save(undo.undo(*board));
  EXPECT_THAT(board.snap(), ElementsAre("line u1_1 (0 0 1)", "line u2_5 (0 0 1)"));
  board.save(undo.redo());
  EXPECT_EQ(*board->entryWithID("u1_2"), *before);
  EXPECT_EQ(undo.redo(), nullptr);
  board.save(undo.undo(*board), undo.undo(*board));
  EXPECT_THAT(board.snap(), ElementsAre("line u2_5 (0 0 1)"));
  EXPECT_EQ(undo.undo(*board), nullptr);
}

TEST(UndoOfTheGuide, IsForThePageThatIsShown) {
  Board board;
  Undo undo("u1");
  board->setChangeObserver([&](const ChangeReport& report) { undo.take(report, *board); });
  board.show(page(1, 1));
  board.save(line("u1_1", 0, 0, 1));
  board.show(page(1, 2, 5));
  EXPECT_EQ(undo.undo(*board), nullptr);
}

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
  calls_.inject(Fault::failingFrom(Call::kWrite, 1, 5));
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
  calls_.inject(Fault::failingFrom(Call::kWrite, 1, 5));
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
