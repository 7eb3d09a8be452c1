// The properties of a storage.
#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/storage/vector_storage.h"

#include "tests/support/manual_clock.h"
#include "tests/support/storage_story.h"

namespace VelWhiteBoard {
namespace {

using std::chrono::seconds;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// ---- Properties

TEST(StorageProperties, AnswerWhatWasSet) {
  const Board board;
  const auto date = std::chrono::system_clock::time_point(seconds(5));
  const auto queue = std::make_shared<OperationQueue>();
  const auto semaphore = std::make_shared<Semaphore>(1);
  const VectorPtr entry = line("a", 1, 2, 3);
  const auto visited = page(3, 4);
  board->setIgnoreChanges(true);
  board->setHasNewChange(true);
  const std::string folder = board.at("f");
  board->setFolder(folder);
  board->setPageFile("p");
  board->setWholeFile("w");
  board->setSnapFile("s");
  board->setPageArray({visited});
  board->setWholeVectorss({{"k", {entry, entry}}});
  board->setSnapVectorss({{"k", {entry}}, {"l", {}}});
  board->setSnapQuery({{"a", entry}});
  board->setPageCacheList({"x", "y", "x"});
  board->setLastSaveDate(date);
  board->setSaveQueue(queue);
  board->setSemphore(semaphore);
  EXPECT_TRUE(board->ignoreChanges());
  EXPECT_TRUE(board->hasNewChange());
  EXPECT_EQ(board->folder(), folder);
  EXPECT_EQ(board->pageFile(), "p");
  EXPECT_EQ(board->wholeFile(), "w");
  EXPECT_EQ(board->snapFile(), "s");
  EXPECT_THAT(board->pageArray(), ElementsAre(visited));
  EXPECT_EQ(board->wholeVectorss(), (VWBVectorStorage::ListsByPage{{"k", {entry, entry}}}));
  EXPECT_EQ(board->snapVectorss(), (VWBVectorStorage::ListsByPage{{"k", {entry}}, {"l", {}}}));
  EXPECT_EQ(board->snapQuery().at("a"), entry);
  EXPECT_THAT(board->pageCacheList(), ElementsAre("x", "y", "x"));
  EXPECT_EQ(board->lastSaveDate(), date);
  EXPECT_EQ(board->saveQueue(), queue);
  EXPECT_EQ(board->semphore(), semaphore);
}

TEST(StorageProperties, SetTheFilePathsBackToNone) {
  const Board board;
  board->setWholeFile("w");
  board->setSnapFile("");
  EXPECT_EQ(board->snapFile(), "");
  board->setWholeFile(std::nullopt);
  board->setSnapFile(std::nullopt);
  EXPECT_EQ(board->wholeFile(), std::nullopt);
  EXPECT_EQ(board->snapFile(), std::nullopt);
}

TEST(StorageProperties, IgnoreANullQueueAndANullSemaphore) {
  const Board board;
  const auto queue = board->saveQueue();
  const auto semaphore = board->semphore();
  board->setSaveQueue(nullptr);
  board->setSemphore(nullptr);
  EXPECT_EQ(board->saveQueue(), queue);
  EXPECT_EQ(board->semphore(), semaphore);
}

/// Looks, whenever it is asked for the time, whether a semaphore is free.
class WatchingClock final : public ManualClock {
 public:
  explicit WatchingClock(std::shared_ptr<Semaphore> semaphore) : semaphore_(std::move(semaphore)) {}
  bool wasHeld() const { return wasHeld_; }

  std::chrono::system_clock::time_point wallTime() const override {
    const bool isFree = semaphore_->try_acquire();
    if (isFree) semaphore_->release();
    wasHeld_ = wasHeld_ || !isFree;
    return ManualClock::wallTime();
  }

 private:
  const std::shared_ptr<Semaphore> semaphore_;
  mutable bool wasHeld_ = false;
};

TEST(StorageProperties, HaveASemaphoreThatIsHeldWhileAVectorIsSaved) {
  for (const bool isOfTheClient : {false, true}) {
    const Board board;
    const auto semaphore = isOfTheClient ? std::make_shared<Semaphore>(1) : board->semphore();
    if (isOfTheClient) board->setSemphore(semaphore);
    WatchingClock clock(semaphore);
    const ScopedClock scope(clock);
    board->saveVector(line(std::nullopt, 1, 2, 3));
    EXPECT_TRUE(clock.wasHeld()) << isOfTheClient;
  }
}

TEST(StorageProperties, TakeNullRecordsInsideContainersWithoutHarm) {
  Board board;
  board.show(page(1, 1));
  board->setPageArray({nullptr, page(2, 2), nullptr});
  board->setWholeVectorss({{"1_1", {nullptr, line("a", 1, 2, 3)}}});
  board->setSnapVectorss({{"1_1", {nullptr, line("a", 1, 2, 3), nullptr}}});
  board->setSnapQuery({{"a", nullptr}});
  board.save(line("a", 4, 5, 6), removal("a"), text("a", "t"));
  board.append(page(2, 2), line("b", 1, 2, 3));
  board.show(page(3, 3, 9));
  board.settle();
  EXPECT_EQ(board.wholeFile("1_1").size(), 4U);
}

TEST(StorageProperties, OfContainersAreCopiesOfOneInstant) {
  Board board;
  board.show(page(1, 1));
  board.save(line("a", 1, 2, 3));
  const auto lists = board->snapVectorss();
  auto query = board->snapQuery();
  query.clear();
  board.save(line("b", 1, 2, 3));
  EXPECT_EQ(lists.at("1_1").size(), 1U);
  EXPECT_EQ(board->snapQuery().size(), 2U);
}

TEST(StorageProperties, SetAreUsedByWhatComesAfter) {
  Board board;
  board.show(page(1, 1));
  const auto entry = line("a", 1, 2, 3);
  board->setSnapVectorss({{"1_1", {entry}}});
  board->setWholeVectorss({{"1_1", {entry}}});
  board->setSnapQuery({{"a", entry}});
  board.save(line("a", 4, 5, 6));
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 2 3)(4 5 6)"));
  EXPECT_THAT(board.whole(), ElementsAre("line a (1 2 3)(4 5 6)", "line a"));
}

TEST(StorageProperties, MoveTheWritesToTheQueueThatWasSet) {
  Board board;
  const auto old = board->saveQueue();
  const QueueHold hold(old);
  board->setSaveQueue(std::make_shared<OperationQueue>());
  board.show(page(1, 1));
  EXPECT_TRUE(board.has("page.plist"));
}

TEST(StorageProperties, LeaveNothingNewToAQueueThatWasReplaced) {
  Board board;
  board.show(page(1, 1));
  board.settle();
  const std::shared_ptr<OperationQueue> replaced = board->saveQueue();
  QueueHold hold(replaced);
  // As many as make later saves take the place of those that wait.
  for (int i = 0; i < 5; ++i) {
    board.save(line("a", i, 0, i + 1));
    board.write();
  }
  board->setSaveQueue(std::make_shared<OperationQueue>());
  board.save(line("b", 1, 2, 3));
  board.show(page(1, 2, 1));
  EXPECT_EQ(board.wholeFile("1_1").size(), 6U);
  EXPECT_THAT(board.pageFile(), ElementsAre("1_1", "1_2"));
  // The folder is looked at when the board goes; the old queue must have let go of it by then.
  hold.letGo();
  replaced->waitUntilAllOperationsAreFinished();
}

TEST(StorageProperties, CanAllBeUsedByAThreadThatHoldsTheSemaphore) {
  Board board;
  board.show(page(1, 1));
  board.save(line("a", 1, 2, 3));
  const SemaphoreHold hold(board->semphore());
  board->setIgnoreChanges(board->ignoreChanges());
  board->setHasNewChange(board->hasNewChange());
  board->setFolder(board->folder());
  board->setPageFile(board->pageFile());
  board->setWholeFile(board->wholeFile());
  board->setSnapFile(board->snapFile());
  board->setPageArray(board->pageArray());
  board->setWholeVectorss(board->wholeVectorss());
  board->setSnapVectorss(board->snapVectorss());
  board->setSnapQuery(board->snapQuery());
  board->setPageCacheList(board->pageCacheList());
  board->setLastSaveDate(board->lastSaveDate());
  board->setSaveQueue(board->saveQueue());
  EXPECT_EQ(board->currentPage()->pageInfo(), "1_1");
  EXPECT_EQ(board->latestPage()->pageInfo(), "1_1");
  EXPECT_TRUE(board->hasVectorsWithPage(*page(1, 1)));
  EXPECT_FALSE(board->hasVectorsWithPage(*page(2, 2)));
  EXPECT_FALSE(board->ignoreVector(*line("a", 1, 2, 3)));
  EXPECT_THAT(tell(board->snapWithPage(*page(1, 1))), ElementsAre("line a (1 2 3)"));
  EXPECT_THAT(board->snapWithPage(*page(2, 2)), IsEmpty());
  board->reload();
  EXPECT_THAT(board->snapVectorss(), IsEmpty());
}

}  // namespace
}  // namespace VelWhiteBoard
