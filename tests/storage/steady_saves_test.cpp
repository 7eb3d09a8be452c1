// Timed saves go on, whatever somebody does to the wall clock.
#include <chrono>
#include <filesystem>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "VelWhiteBoard/storage/vector_storage.h"

#include "tests/support/manual_clock.h"
#include "tests/support/storage_story.h"
#include "tests/support/temporary_folder.h"

namespace VelWhiteBoard {
namespace {

using std::chrono::hours;
using std::chrono::seconds;

class TimedSaves : public ::testing::Test {
 protected:
  TimedSaves() {
    pass(seconds(0));
    storage_ = VWBVectorStorage::initWithPath(parent_.path());
    storage_->setIgnoreChanges(false);
    storage_->switchPage(page(1, 1));
  }
  ~TimedSaves() override { settle(); }

  /// Time passes on both clocks.
  void pass(seconds time) {
    wall_ += time;
    media_ += time;
    clock_.setWallTime(wall_);
    clock_.setMediaTime(static_cast<double>(media_.count()));
  }
  /// Somebody sets the wall clock.
  void set(seconds by) {
    wall_ += by;
    pass(seconds(0));
  }
  void settle() { storage_->saveQueue()->waitUntilAllOperationsAreFinished(); }
  /// How many vectors the page's log holds on the disk.
  std::size_t written() {
    settle();
    const std::string file = *storage_->wholeFile();
    if (!std::filesystem::exists(file)) return 0;
    return recordsOfFile(VelWbBaseVector::ownClass(), file).size();
  }
  void draw() { storage_->saveVector(text(std::to_string(++drawn_), "words")); }

  TemporaryFolder parent_{TemporaryFolder::Volume::kMemory};
  ManualClock clock_;
  ScopedClock scope_{clock_};
  seconds wall_{1'700'000'000};
  seconds media_{1'000};
  std::shared_ptr<VWBVectorStorage> storage_;
  int drawn_ = 0;
};

TEST_F(TimedSaves, GoOnWhenTheWallClockIsSetBackAnHour) {
  draw();
  pass(seconds(21));
  draw();
  EXPECT_EQ(written(), 2U);
  set(-hours(1));
  pass(seconds(10));
  draw();
  EXPECT_EQ(written(), 2U);
  pass(seconds(11));
  draw();
  EXPECT_EQ(written(), 4U);
  pass(seconds(21));
  draw();
  EXPECT_EQ(written(), 5U);
}

TEST_F(TimedSaves, GoOnWhenTheWallClockIsSetBackBeforeTheFirst) {
  set(-hours(1));
  pass(seconds(21));
  draw();
  EXPECT_EQ(written(), 1U);
}

TEST_F(TimedSaves, GoOnWhenTheWallClockIsSetBackAgainAndAgain) {
  for (std::size_t i = 1; i <= 5; ++i) {
    set(-hours(1));
    pass(seconds(21));
    draw();
    EXPECT_EQ(written(), i);
  }
}

TEST_F(TimedSaves, MayComeEarlierWhenTheWallClockIsSetForward) {
  draw();
  EXPECT_EQ(written(), 0U);
  set(hours(1));
  draw();
  EXPECT_EQ(written(), 2U);
}

TEST_F(TimedSaves, ByTheSteadyClockKeepTheTwentySeconds) {
  set(-hours(1));
  pass(seconds(20));
  draw();
  EXPECT_EQ(written(), 0U) << "exactly 20 seconds are not more than 20";
  pass(seconds(1));
  draw();
  EXPECT_EQ(written(), 2U);
}

TEST_F(TimedSaves, ByTheSteadyClockCountFromTheDateThatWasSet) {
  storage_->setLastSaveDate(storage_->lastSaveDate() - seconds(15));
  set(-hours(1));
  pass(seconds(5));
  draw();
  EXPECT_EQ(written(), 0U);
  pass(seconds(1));
  draw();
  EXPECT_EQ(written(), 2U);
}

TEST_F(TimedSaves, ComeAtOnceWhenTheDateOfTheLastOneIsSetToLongAgo) {
  storage_->setLastSaveDate(std::chrono::system_clock::time_point());
  draw();
  EXPECT_EQ(written(), 1U);
}

}  // namespace
}  // namespace VelWhiteBoard
