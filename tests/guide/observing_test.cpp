// What docs/client.md tells about observers: a mirror of the page, undoing, and whether all is
// saved.
#include <VelWhiteBoard/VelWhiteBoard.h>
#include <algorithm>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
  /// No other participant's identifiers may begin with `userID` and an underscore.
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
  std::string own_;  // how this participant's identifiers begin
  std::vector<std::string> drawn_;
  std::vector<std::string> undone_;
};
// [end]

class MirrorOfTheGuide : public ::testing::TestWithParam<std::uint64_t> {};

TEST_P(MirrorOfTheGuide, IsThePageAfterEveryStepOfARandomLesson) {
  Chances chances(GetParam());
  Board board;
  board.savesOddRecords();
  Mirror mirror;
  watchPage(*board, mirror);
  const auto anyPage = [&] {
    return page(1, 1 + static_cast<std::uint64_t>(chances.below(3)), chances.below(1000));
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
  ASSERT_NE(board->entryWithID("u1_2"), nullptr);
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

TEST(AnEditOfABox, IsUndoneByTheTextFromBefore) {
  Board board;
  board.show(page(1, 1));
  const auto turned = image("i", "a.png");
  turned->x = 0.1;
  board.save(turned);
  const std::string before = modelToJSONString(*board->entryWithID("i"));
  const auto edited = image("i", "b.png");
  edited->x = 0.3;
  edited->rotation = 90;
  board.save(edited);
  EXPECT_EQ(recordPointerCast<VelWbVecFile>(board->entryWithID("i"))->rotation, 0);
  EXPECT_NE(modelToJSONString(*board->entryWithID("i")), before);
  board.save(modelWithJSON<VelWbBaseVector>(before));
  EXPECT_EQ(modelToJSONString(*board->entryWithID("i")), before);
}

}  // namespace
}  // namespace VelWhiteBoard
