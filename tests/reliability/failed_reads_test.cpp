// Files that are sound and that the system will not give: what was in them is kept, each time.
#include <cerrno>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/disk_file_system.h"

#include "tests/reliability/board_on_disk.h"
#include "tests/support/faulty_calls.h"
#include "tests/support/storage_story.h"

namespace VelWhiteBoard {
namespace {

struct Refusal {
  std::string name;
  Call call;
  int error;
};

class AReadThatFails : public ::testing::TestWithParam<Refusal> {
 protected:
  AReadThatFails() {
    const auto storage = board_.open();
    for (std::uint64_t number = 1; number <= 2; ++number) {
      storage->switchPage(page(1, number, ++time_));
      draw(*storage, old_);
    }
    saveNow(*storage);
  }

  void refuse() { calls_.inject(Fault::failingFrom(GetParam().call, 1, GetParam().error)); }

  void expectKept(const Names& all) {
    for (const std::string& name : {wholeName("1_1"), snapName("1_1")}) {
      EXPECT_EQ(missing(all, board_.kept(name)), Names()) << name;
    }
  }

  BoardOnDisk board_;
  const Names old_ = numbered("old", 1, 5);
  FaultyCalls calls_;
  DiskFileSystem disk_{calls_};
  ScopedFileSystem scope_{disk_};
  double time_ = 0;
};

TEST_P(AReadThatFails, TwiceInARowCostsNothingOfAPageThatIsShown) {
  Names all = old_;
  for (const std::string day : {"first", "second", "third"}) {
    const auto storage = board_.open();
    refuse();
    storage->switchPage(page(1, 1, ++time_));
    draw(*storage, {day});
    calls_.heal();
    saveNow(*storage);
    all.push_back(day);
    SCOPED_TRACE(day);
    expectKept(all);
  }
}

TEST_P(AReadThatFails, TwiceInARowCostsNothingOfAPageThatIsAppendedTo) {
  Names all = old_;
  for (const std::string day : {"first", "second", "third"}) {
    const auto storage = board_.open();
    storage->switchPage(page(1, 2, ++time_));
    settle(*storage);
    refuse();
    {
      const QueueHold hold(storage->saveQueue());
      storage->appendVectors({text(day, "words")}, page(1, 1));
      calls_.heal();
    }
    settle(*storage);
    all.push_back(day);
    SCOPED_TRACE(day);
    expectKept(all);
  }
}

TEST_P(AReadThatFails, TwiceInARowCostsNoVisitedPage) {
  for (std::uint64_t day = 3; day <= 5; ++day) {
    refuse();
    const auto storage = board_.open();
    calls_.heal();
    storage->switchPage(page(1, day, ++time_));
    settle(*storage);
    Names all = {"1_1", "1_2"};
    for (std::uint64_t i = 3; i <= day; ++i) all.push_back("1_" + std::to_string(i));
    EXPECT_EQ(missing(all, board_.kept(kPagesName)), Names()) << "day " << day;
  }
}

// The page is written a second time in the same session: what was set aside stays.
TEST_P(AReadThatFails, CostsNothingWhenThePageIsSavedAgainAndAgain) {
  const auto storage = board_.open();
  refuse();
  storage->switchPage(page(1, 1, ++time_));
  calls_.heal();
  Names all = old_;
  for (const std::string hour : {"nine", "ten", "eleven"}) {
    draw(*storage, {hour});
    saveNow(*storage);
    all.push_back(hour);
    expectKept(all);
  }
}

TEST_P(AReadThatFails, OfASnapshotCostsNothingWhenThePageIsSavedLater) {
  const auto storage = board_.open();
  refuse();
  static_cast<void>(storage->snapWithPage(*page(1, 1)));
  calls_.heal();
  storage->switchPage(page(1, 1, ++time_));
  draw(*storage, {"new"});
  saveNow(*storage);
  Names all = old_;
  all.emplace_back("new");
  expectKept(all);
}

// What is read in time is not set aside for a failure that is over.
TEST_P(AReadThatFails, IsForgottenOnceTheFileHasBeenRead) {
  const auto storage = board_.open();
  refuse();
  static_cast<void>(storage->snapWithPage(*page(1, 1)));
  calls_.heal();
  EXPECT_EQ(identifiersOf(storage->switchPage(page(1, 1, ++time_))), old_);
  draw(*storage, {"new"});
  saveNow(*storage);
  EXPECT_EQ(board_.setAside(snapName("1_1")), Names());
  EXPECT_EQ(board_.setAside(wholeName("1_1")), Names());
}

INSTANTIATE_TEST_SUITE_P(ForWantOf, AReadThatFails,
                         ::testing::Values(Refusal{"AHandle", Call::kOpen, EMFILE},
                                           Refusal{"AHandleOfTheSystem", Call::kOpen, ENFILE},
                                           Refusal{"Memory", Call::kOpen, ENOMEM},
                                           Refusal{"ADiskThatOpens", Call::kOpen, EIO},
                                           Refusal{"Permission", Call::kOpen, EACCES},
                                           Refusal{"ADiskThatReads", Call::kRead, EIO},
                                           Refusal{"MemoryToRead", Call::kRead, ENOMEM}),
                         [](const auto& refusal) { return refusal.param.name; });

}  // namespace
}  // namespace VelWhiteBoard
