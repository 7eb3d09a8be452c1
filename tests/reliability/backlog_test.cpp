// A disk that hangs: what waits for it must not grow with the time that it takes.
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iostream>
#include <malloc.h>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/reliability/generations.h"
#include "tests/support/storage_story.h"

namespace VelWhiteBoard {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kHeapIsMeasurable = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr bool kHeapIsMeasurable = false;
#else
constexpr bool kHeapIsMeasurable = true;
#endif
#else
constexpr bool kHeapIsMeasurable = true;
#endif

std::size_t heapInUse() {
  const auto info = ::mallinfo2();
  return info.uordblks + info.hblkhd;
}

/// How much the heap grows while `action` runs a number of times, after it has run as often before:
/// by then all is there that does not grow.
std::size_t growthOf(int times, const std::function<void()>& action) {
  for (int i = 0; i < times; ++i) action();
  const std::size_t before = heapInUse();
  for (int i = 0; i < times; ++i) action();
  const std::size_t after = heapInUse();
  return after > before ? after - before : 0;
}

/// Under a sanitizer, whose heap keeps what is freed, only what else the test says is checked.
void expectGrowthBelow(std::size_t bound, std::size_t growth) {
  if (kHeapIsMeasurable) {
    EXPECT_LT(growth, bound);
  }
}

constexpr int kTimes = 5000;
/// Far less than one save of one page takes, times `kTimes`.
constexpr std::size_t kNothingToSpeakOf = 64 * 1024;

class AHangingDisk : public ::testing::Test {
 protected:
  void SetUp() override {
    board_.show(page(1, 1, 1));
    for (int i = 0; i < 500; ++i) board_.save(text("t" + std::to_string(i), "words"));
    board_.settle();
  }

  // Only says so: the lists must not grow.
  void changeSomething() { board_->setHasNewChange(true); }

  void expectThatTheFilesHoldWhatIsInMemory(const std::string& key) {
    EXPECT_EQ(board_.snapFile(key), board_.snap(key)) << key;
    EXPECT_EQ(board_.wholeFile(key), board_.whole(key)) << key;
  }

  Board board_;
};

TEST_F(AHangingDisk, MakesForcedSavesWaitWithoutPilingUp) {
  auto hold = board_.holdQueue();
  const std::size_t growth = growthOf(kTimes, [&] {
    changeSomething();
    board_.write();
  });
  std::cout << kTimes << " forced saves: " << growth << " bytes" << std::endl;
  expectGrowthBelow(kNothingToSpeakOf, growth);
  hold.letGo();
  expectThatTheFilesHoldWhatIsInMemory("1_1");
}

TEST_F(AHangingDisk, MakesAppendedVectorsWaitWithoutPilingUp) {
  board_.append(page(1, 2), text("a", "words"));
  auto hold = board_.holdQueue();
  const std::size_t growth = growthOf(kTimes, [&] { board_->appendVectors({}, page(1, 2)); });
  std::cout << kTimes << " saves of another page: " << growth << " bytes" << std::endl;
  expectGrowthBelow(kNothingToSpeakOf, growth);
  hold.letGo();
  expectThatTheFilesHoldWhatIsInMemory("1_2");
}

TEST_F(AHangingDisk, MakesSavesWaitWithoutPilingUpBesideOtherPagesThatAreCleared) {
  board_.append(page(1, 2), text("a", "words"));
  auto hold = board_.holdQueue();
  const std::size_t growth = growthOf(kTimes, [&] {
    board_->clearPage(*page(1, 2));
    changeSomething();
    board_.write();
  });
  std::cout << kTimes << " removals, each with a save: " << growth << " bytes" << std::endl;
  // A removal waits with its two paths; of the saves sixteen do.
  expectGrowthBelow(kTimes * std::size_t{1000}, growth);
  hold.letGo();
  expectThatTheFilesHoldWhatIsInMemory("1_1");
  EXPECT_EQ(board_.snapFile("1_2"), Tale{"missing"});
}

TEST_F(AHangingDisk, MakesPageSwitchesWaitWithoutPilingUp) {
  const auto first = page(1, 1, 2);
  const auto second = page(1, 2, 2);  // in the same millisecond: the list of pages does not grow
  board_.show(second);
  auto hold = board_.holdQueue();
  const std::size_t growth = growthOf(kTimes, [&] {
    changeSomething();
    board_->switchPage(first);
    changeSomething();
    board_->switchPage(second);
  });
  std::cout << 2 * kTimes << " page switches: " << growth << " bytes" << std::endl;
  expectGrowthBelow(kNothingToSpeakOf, growth);
  hold.letGo();
  expectThatTheFilesHoldWhatIsInMemory("1_1");
  expectThatTheFilesHoldWhatIsInMemory("1_2");
  EXPECT_EQ(board_.pageFile(), tell(board_->pageArray()));
}

TEST_F(AHangingDisk, LetsGoOfWhatNewerSavesHold) {
  std::vector<std::weak_ptr<VelWbBaseVector>> drawn;
  auto hold = board_.holdQueue();
  constexpr std::size_t kRounds = 100;
  for (std::size_t round = 0; round < kRounds; ++round) {
    const auto vector = text("gone " + std::to_string(round), "words");
    drawn.emplace_back(vector);
    board_.save(vector);
    board_.write();
    board_->setWholeVectorss({});
    board_->setSnapVectorss({});
    board_->setSnapQuery({});
  }
  std::size_t alive = 0;
  for (const auto& vector : drawn) alive += vector.expired() ? 0U : 1U;
  EXPECT_LE(alive, 16U);
  EXPECT_GE(alive, 1U);
  hold.letGo();
  EXPECT_EQ(board_.wholeFile("1_1"), tell(VectorList{text("gone 99", "words")}));
}

// The order in which saves and removals of one page were asked for decides what is left.
TEST_F(AHangingDisk, EndsWithTheStateOfTheLastSaveOrRemoval) {
  auto hold = board_.holdQueue();
  for (int round = 0; round < 10; ++round) {
    for (int i = 0; i < 10; ++i) {
      board_.save(text("t" + std::to_string(round) + std::to_string(i), "words"));
      board_.write();
    }
    if (round < 9) board_->clearPage(*page(1, 1));
  }
  hold.letGo();
  EXPECT_EQ(board_.wholeFile("1_1").size(), 10U);
  expectThatTheFilesHoldWhatIsInMemory("1_1");

  auto again = board_.holdQueue();
  for (int i = 0; i < 10; ++i) {
    board_.save(text("u" + std::to_string(i), "words"));
    board_.write();
  }
  board_->clearPage(*page(1, 1));
  again.letGo();
  EXPECT_EQ(board_.wholeFile("1_1"), Tale{"missing"});
  EXPECT_EQ(board_.snapFile("1_1"), Tale{"missing"});
}

// A save that is asked for later goes to the queue that is set by then, whatever hangs on the
// other.
TEST_F(AHangingDisk, DoesNotHoldUpAnotherQueue) {
  auto hold = board_.holdQueue();
  const auto hanging = board_->saveQueue();
  for (int i = 0; i < 10; ++i) {
    board_.save(text("on the first", "words"));
    board_.write();
  }
  board_->switchPage(page(1, 2, 2));
  board_->setSaveQueue(std::make_shared<OperationQueue>());
  board_->switchPage(page(1, 1, 3));
  board_.save(text("on the second", "words"));
  board_.write();
  board_.settle();
  expectThatTheFilesHoldWhatIsInMemory("1_1");
  EXPECT_EQ(board_.pageFile(), (Tale{"1_1", "1_2", "1_1"}));
  hold.letGo();
  hanging->waitUntilAllOperationsAreFinished();
}

}  // namespace
}  // namespace VelWhiteBoard
