// A page that is cleared and used again at once, while the queue has yet to remove its files.
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "tests/reliability/board_on_disk.h"
#include "tests/support/storage_story.h"

namespace VelWhiteBoard {
namespace {

enum class Queue { kIdle, kBusy };

class AClearedPage : public ::testing::TestWithParam<Queue> {
 protected:
  AClearedPage() {
    const auto storage = board_.open();
    storage->switchPage(page(1, 1, ++time_));
    draw(*storage, numbered("old", 1, 300));
    storage->switchPage(page(1, 2, ++time_));
    draw(*storage, numbered("other", 1, 300));
    saveNow(*storage);
    storage_ = board_.open();
    storage_->switchPage(page(1, 2, ++time_));
    settle(*storage_);
  }
  ~AClearedPage() override { settle(*storage_); }

  /// Clears the first page; in front of the removal the queue has nothing or much to do.
  void clear() {
    if (GetParam() == Queue::kBusy) {
      for (std::uint64_t number = 10; number < 60; ++number) {
        storage_->appendVectors({text("busy", "words")}, page(1, number));
      }
    }
    storage_->clearPage(*page(1, 1));
  }

  BoardOnDisk board_;
  std::shared_ptr<VWBVectorStorage> storage_;
  double time_ = 0;
};

TEST_P(AClearedPage, IsEmptyWhenItIsShownAtOnce) {
  for (int i = 0; i < 20; ++i) {
    clear();
    ASSERT_EQ(identifiersOf(storage_->switchPage(page(1, 1, ++time_))), Names());
    ASSERT_EQ(identifiersOf(storage_->wholeVectorss()["1_1"]), Names());
    draw(*storage_, numbered("old", 1, 300));
    storage_->switchPage(page(1, 2, ++time_));
    settle(*storage_);
  }
}

TEST_P(AClearedPage, HoldsOnlyWhatIsAppendedAtOnce) {
  for (int i = 0; i < 20; ++i) {
    clear();
    storage_->appendVectors({text("new", "words")}, page(1, 1));
    settle(*storage_);
    ASSERT_EQ(board_.identifiers(wholeName("1_1")), Names{"new"});
    ASSERT_EQ(board_.identifiers(snapName("1_1")), Names{"new"});
    storage_->appendVectors({text("newer", "words")}, page(1, 1));
    settle(*storage_);
  }
}

TEST_P(AClearedPage, HasAnEmptySnapshotAtOnce) {
  for (int i = 0; i < 20; ++i) {
    clear();
    ASSERT_EQ(identifiersOf(storage_->snapWithPage(*page(1, 1))), Names());
    storage_->appendVectors({text("new", "words")}, page(1, 1));
    settle(*storage_);
  }
}

TEST_P(AClearedPage, IsEmptyForAStorageThatOpensTheBoardAtOnce) {
  clear();
  EXPECT_EQ(identifiersOf(board_.open()->switchPage(page(1, 1, ++time_))), Names());
}

TEST_P(AClearedPage, LeavesNothingSetAside) {
  clear();
  storage_->switchPage(page(1, 1, ++time_));
  draw(*storage_, {"new"});
  saveNow(*storage_);
  storage_->clearPage(*page(1, 1));
  draw(*storage_, {"newer"});
  saveNow(*storage_);
  EXPECT_EQ(board_.setAside(wholeName("1_1")), Names());
  EXPECT_EQ(board_.setAside(snapName("1_1")), Names());
  EXPECT_EQ(board_.identifiers(wholeName("1_1")), Names{"newer"});
  EXPECT_EQ(board_.identifiers(snapName("1_1")), Names{"newer"});
}

INSTANTIATE_TEST_SUITE_P(WithAQueueThatIs, AClearedPage,
                         ::testing::Values(Queue::kIdle, Queue::kBusy), [](const auto& queue) {
                           return std::string(queue.param == Queue::kIdle ? "Idle" : "Busy");
                         });

}  // namespace
}  // namespace VelWhiteBoard
