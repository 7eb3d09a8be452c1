// A board that is opened while writes of it are still queued somewhere in the process: a read
// follows the writes of the same file, as long as their queue gets on.
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/disk_file_system.h"

#include "tests/reliability/board_on_disk.h"
#include "tests/support/faulty_calls.h"
#include "tests/support/storage_story.h"

namespace VelWhiteBoard {
namespace {

constexpr int kStrokes = 2000;

class ABoardThatIsOpenedAgain : public ::testing::Test {
 protected:
  /// Draws a lesson, queues its save, and drops the storage.
  void drawAndClose() {
    const auto storage = board_.open();
    storage->switchPage(page(1, 1, 1));
    draw(*storage, lesson_);
    storage->saveFile(true);
  }

  const Names lesson_ = numbered("old", 1, kStrokes);
  BoardOnDisk board_;
};

TEST_F(ABoardThatIsOpenedAgain, ShowsAtOnceWhatWasDrawnBeforeItWasClosed) {
  drawAndClose();
  const auto again = board_.open();
  EXPECT_EQ(tell(again->pageArray()), Tale{"1_1"});
  EXPECT_EQ(identifiersOf(again->switchPage(page(1, 1, 2))), lesson_);
  EXPECT_EQ(identifiersOf(again->wholeVectorss()["1_1"]), lesson_);
}

TEST_F(ABoardThatIsOpenedAgain, AddsToWhatWasDrawnBeforeItWasClosed) {
  drawAndClose();
  const auto again = board_.open();
  again->switchPage(page(1, 1, 2));
  draw(*again, {"new"});
  saveNow(*again);
  Names expected = lesson_;
  expected.emplace_back("new");
  EXPECT_EQ(board_.identifiers(wholeName("1_1")), expected);
  EXPECT_EQ(board_.identifiers(snapName("1_1")), expected);
  EXPECT_EQ(board_.identifiers(kPagesName), (Names{"1_1", "1_1"}));
}

TEST_F(ABoardThatIsOpenedAgain, AppendsToWhatWasDrawnBeforeItWasClosed) {
  drawAndClose();
  const auto again = board_.open();
  again->appendVectors({text("new", "words")}, page(1, 1));
  settle(*again);
  Names expected = lesson_;
  expected.emplace_back("new");
  EXPECT_EQ(board_.identifiers(wholeName("1_1")), expected);
  EXPECT_EQ(board_.identifiers(snapName("1_1")), expected);
}

TEST_F(ABoardThatIsOpenedAgain, HasASnapshotOfWhatWasDrawnBeforeItWasClosed) {
  drawAndClose();
  const auto again = VWBVectorStorage::initWithPath(board_.parent());
  EXPECT_EQ(identifiersOf(again->snapWithPage(*page(1, 1))), lesson_);
}

TEST_F(ABoardThatIsOpenedAgain, IsWholeEachOfManyTimes) {
  Names expected;
  for (int day = 1; day <= 20; ++day) {
    const auto storage = board_.open();
    ASSERT_EQ(identifiersOf(storage->switchPage(page(1, 1, day))), expected) << "day " << day;
    const Names more = numbered("day " + std::to_string(day), 1, 50);
    draw(*storage, more);
    storage->saveFile(true);
    expected.insert(expected.end(), more.begin(), more.end());
  }
}

// The one storage reads what the other still has to write.
TEST_F(ABoardThatIsOpenedAgain, IsReloadedAsItWasDrawn) {
  const auto other = board_.open();
  const auto storage = board_.open();
  storage->switchPage(page(1, 1, 1));
  draw(*storage, lesson_);
  storage->switchPage(page(1, 2, 2));
  other->reload();
  EXPECT_EQ(tell(other->pageArray()), (Tale{"1_1", "1_2"}));
  EXPECT_EQ(identifiersOf(other->switchPage(page(1, 1, 3))), lesson_);
}

// Each operation ends soon, all of them together take longer than a queue may stand still.
TEST_F(ABoardThatIsOpenedAgain, ShowsEitherFileOfAPageThatWasWrittenWithoutTheOther) {
  for (const std::uint64_t number : {1U, 2U}) {
    const bool isWhole = number == 1;
    {
      const auto storage = board_.open();
      storage->switchPage(page(1, number, 1));
      isWhole ? storage->setSnapFile(std::nullopt) : storage->setWholeFile(std::nullopt);
      draw(*storage, lesson_);
      storage->saveFile(true);
    }
    const auto again = board_.open();
    again->switchPage(page(1, number, 2));
    auto lists = isWhole ? again->wholeVectorss() : again->snapVectorss();
    EXPECT_EQ(identifiersOf(lists["1_" + std::to_string(number)]), lesson_);
  }
}

TEST_F(ABoardThatIsOpenedAgain, WaitsAsLongAsTheQueueGetsOn) {
  {
    const auto storage = board_.open();
    storage->switchPage(page(1, 1, 1));
    for (int i = 0; i < 30; ++i) {
      storage->saveQueue()->addOperationWithBlock(
          [] { std::this_thread::sleep_for(std::chrono::milliseconds(20)); });
    }
    draw(*storage, {"drawn"});
    storage->saveFile(true);
  }
  EXPECT_EQ(identifiersOf(board_.open()->switchPage(page(1, 1, 2))), Names{"drawn"});
}

// A sync takes longer than a client's operation may hold up the queue.
TEST_F(ABoardThatIsOpenedAgain, WaitsForASlowDisk) {
  FaultyCalls calls;
  DiskFileSystem disk(calls);
  const ScopedFileSystem scope(disk);
  {
    const auto storage = board_.open();
    storage->switchPage(page(1, 1, 1));
    settle(*storage);
    draw(*storage, {"drawn"});
    calls.before(Call::kSync, 1,
                 [] { std::this_thread::sleep_for(std::chrono::milliseconds(600)); });
    storage->saveFile(true);
  }
  const auto again = board_.open();
  EXPECT_EQ(identifiersOf(again->switchPage(page(1, 1, 2))), Names{"drawn"});
  draw(*again, {"new"});
  saveNow(*again);
  EXPECT_EQ(board_.identifiers(wholeName("1_1")), (Names{"drawn", "new"}));
  EXPECT_EQ(board_.setAside(wholeName("1_1")), Names{});
}

TEST_F(ABoardThatIsOpenedAgain, ShowsWhatIsOnTheDiskWhenItsQueueIsBlocked) {
  const auto storage = board_.open();
  storage->switchPage(page(1, 1, 1));
  draw(*storage, {"on the disk"});
  saveNow(*storage);
  QueueHold hold(storage->saveQueue());
  draw(*storage, {"queued"});
  storage->saveFile(true);
  const auto again = board_.open();
  EXPECT_EQ(identifiersOf(again->switchPage(page(1, 1, 2))), Names{"on the disk"});
  hold.letGo();
  settle(*storage);
}

TEST_F(ABoardThatIsOpenedAgain, ByAnOperationOfItsQueueShowsWhatTheQueueHasWrittenByThen) {
  const auto storage = board_.open();
  storage->switchPage(page(1, 1, 1));
  draw(*storage, {"before"});
  storage->saveFile(true);
  Names seen;
  storage->saveQueue()->addOperationWithBlock(
      [&] { seen = identifiersOf(board_.open()->switchPage(page(1, 1, 2))); });
  draw(*storage, {"behind"});
  storage->saveFile(true);
  settle(*storage);
  EXPECT_EQ(seen, Names{"before"});
}

// hasVectorsWithPage never waits: it tells whether there is a file.
TEST_F(ABoardThatIsOpenedAgain, DoesNotYetHaveVectorsThatAreOnlyQueued) {
  const auto storage = board_.open();
  const auto other = board_.open();
  QueueHold hold(storage->saveQueue());
  storage->switchPage(page(1, 1, 1));
  draw(*storage, {"queued"});
  storage->saveFile(true);
  EXPECT_FALSE(other->hasVectorsWithPage(*page(1, 1)));
  hold.letGo();
  settle(*storage);
  EXPECT_TRUE(other->hasVectorsWithPage(*page(1, 1)));
}

}  // namespace
}  // namespace VelWhiteBoard
