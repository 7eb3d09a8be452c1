// What an observer of changes is told.
#include <algorithm>
#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <new>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/records/model_mapping.h"
#include "VelWhiteBoard/storage/vector_storage.h"

#include "tests/support/random_arrivals.h"
#include "tests/support/storage_story.h"

namespace VelWhiteBoard {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Kind = EntryChange::Kind;

std::string tell(const EntryChange& change) {
  static const std::map<Kind, std::string> kNames = {{Kind::kAdded, "added"},
                                                     {Kind::kExtended, "extended"},
                                                     {Kind::kEdited, "edited"},
                                                     {Kind::kRaised, "raised"},
                                                     {Kind::kRemoved, "removed"},
                                                     {Kind::kCleared, "cleared"},
                                                     {Kind::kRemovedTop, "removed from the top:"}};
  std::string told = kNames.at(change.kind);
  if (change.entry) told += ' ' + change.entry->ID.value_or("none");
  if (change.kind == Kind::kExtended) told += " from " + std::to_string(change.firstNew);
  return told;
}

class AnObserverOfChanges : public ::testing::Test {
 protected:
  AnObserverOfChanges() {
    board.show(page(1, 1));
    observe();
  }

  void observe() {
    board->setChangeObserver([this](const ChangeReport& report) { reports.push_back(report); });
  }

  /// All that was told since the last call, without what was told of pages.
  Tale told() {
    Tale tale;
    for (const ChangeReport& report : std::exchange(reports, {})) {
      for (const EntryChange& change : report.changes) tale.push_back(tell(change));
    }
    return tale;
  }

  std::vector<ChangeReport> reports;
  Board board;
};

// ---- Entries of the current page

TEST_F(AnObserverOfChanges, IsToldOfANewEntryAndOfTheStorageWhoseItIs) {
  const auto stroke = line("a", 1, 2, 3);
  board.save(stroke);
  ASSERT_EQ(reports.size(), 1U);
  EXPECT_EQ(reports[0].kind, ChangeReport::Kind::kEntries);
  EXPECT_EQ(reports[0].number, 1U);
  EXPECT_EQ(reports[0].page, "1_1");
  EXPECT_TRUE(reports[0].isCurrent);
  ASSERT_EQ(reports[0].changes.size(), 1U);
  EXPECT_EQ(reports[0].changes[0].entry, stroke);
  EXPECT_THAT(told(), ElementsAre("added a"));
}

TEST_F(AnObserverOfChanges, IsToldFromWhichPositionOnAStrokeHasGrown) {
  board.save(line("a", 1, 2, 3), line("a", 4, 5, 6), line("a", 7, 8, 9));
  EXPECT_THAT(told(), ElementsAre("added a", "extended a from 1", "extended a from 2"));
  board.save(lineWith("a", {{1, 1, 10}, {2, 2, 11}}), line("a", 0, 0, 12));
  EXPECT_THAT(told(), ElementsAre("extended a from 3", "extended a from 5"));
}

TEST_F(AnObserverOfChanges, IsToldThatAPieceWithNothingNewExtendsAStrokeByNothing) {
  board.save(line("a", 1, 2, 3), line("a", 4, 5, 3));
  EXPECT_THAT(told(), ElementsAre("added a", "extended a from 1"));
  EXPECT_THAT(board.snap(), ElementsAre("line a (1 2 3)"));
}

TEST_F(AnObserverOfChanges, IsToldThatAStrokeLooksDifferentWhenItsWidthHasChanged) {
  board.save(line("a", 1, 2, 3));
  const auto wider = line("a", 4, 5, 6);
  wider->pixel = 5;
  board.save(wider);
  EXPECT_THAT(told(), ElementsAre("added a", "edited a"));
}

TEST_F(AnObserverOfChanges, IsToldThatAStrokeLooksDifferentWhenItHasBeenMoved) {
  board.save(line("a", 1, 2, 3));
  for (const int distance : {1, 2}) {
    const auto move = line("a", 4, 5, 6);
    move->offset = Array{Value(distance), Value(2)};
    board.save(move);
  }
  EXPECT_THAT(told(), ElementsAre("added a", "edited a", "edited a"));
}

TEST_F(AnObserverOfChanges, IsToldThatTheTopBoxIsEditedWhereItLies) {
  board.save(text("t", "one"), text("t", "two"));
  EXPECT_THAT(told(), ElementsAre("added t", "edited t"));
}

TEST_F(AnObserverOfChanges, IsToldThatABoxBelowOthersIsRaised) {
  board.save(text("t", "one"), text("u", "other"), text("t", "two"));
  EXPECT_THAT(told(), ElementsAre("added t", "added u", "raised t"));
}

TEST_F(AnObserverOfChanges, IsToldOfARemoval) {
  board.save(line("a", 1, 2, 3), removal("a"));
  EXPECT_THAT(told(), ElementsAre("added a", "removed a"));
}

TEST_F(AnObserverOfChanges, IsToldNothingOfARemovalOfNothing) {
  board.save(removal("a"));
  EXPECT_THAT(reports, IsEmpty());
}

TEST_F(AnObserverOfChanges, IsToldThatAClearTakesAllEntries) {
  board.save(line("a", 1, 2, 3), clearing());
  EXPECT_THAT(told(), ElementsAre("added a", "cleared"));
}

TEST_F(AnObserverOfChanges, IsToldThatACursorGoesWhenAnotherVectorComes) {
  board.save(cursor("c"), cursor("d"), text("t", "one"));
  EXPECT_THAT(told(), ElementsAre("added c", "removed from the top: c", "added d",
                                  "removed from the top: d", "added t"));
}

TEST_F(AnObserverOfChanges, IsToldThatAMagnifierReplacesTheOneBefore) {
  board->setSnapVectorss({{"1_1", {magnifier("m"), text("t", "one")}}});
  board.save(magnifier("n"));
  EXPECT_THAT(told(), ElementsAre("removed m", "added n"));
}

// ---- When nothing is told

TEST_F(AnObserverOfChanges, IsToldNothingWhileChangesAreIgnored) {
  board->setIgnoreChanges(true);
  board.save(line("a", 1, 2, 3));
  board->saveVectors({line("a", 1, 2, 3)}, page(1, 2));
  EXPECT_THAT(reports, IsEmpty());
}

TEST_F(AnObserverOfChanges, IsToldNothingOnceItHasBeenTakenAway) {
  board->setChangeObserver(nullptr);
  board.save(line("a", 1, 2, 3));
  EXPECT_THAT(reports, IsEmpty());
  observe();
  board.save(line("b", 1, 2, 3));
  ASSERT_EQ(reports.size(), 1U);
  EXPECT_EQ(reports[0].number, 1U) << "only reports are counted";
}

TEST_F(AnObserverOfChanges, IsToldNothingOfASwitchToTheCurrentPage) {
  board.show(page(1, 1));
  EXPECT_THAT(reports, IsEmpty());
}

// ---- Pages and boards

TEST_F(AnObserverOfChanges, IsToldThatAnotherPageIsCurrent) {
  board.show(page(1, 2));
  ASSERT_EQ(reports.size(), 1U);
  EXPECT_EQ(reports[0].kind, ChangeReport::Kind::kSwitched);
  EXPECT_EQ(reports[0].page, "1_2");
  EXPECT_TRUE(reports[0].isCurrent);
  EXPECT_THAT(reports[0].changes, IsEmpty());
}

TEST_F(AnObserverOfChanges, IsToldOfABatchForAnotherPageAtOnce) {
  board.append(page(1, 2), line("a", 1, 2, 3), text("t", "one"), line("a", 4, 5, 6),
               text("t", "two"), removal("a"));
  ASSERT_EQ(reports.size(), 1U);
  EXPECT_EQ(reports[0].page, "1_2");
  EXPECT_FALSE(reports[0].isCurrent);
  EXPECT_THAT(told(),
              ElementsAre("added a", "added t", "extended a from 1", "raised t", "removed a"));
}

TEST_F(AnObserverOfChanges, IsToldWhichPageHasBeenCleared) {
  board->clearPage(*page(1, 2));
  board->clearPage(*page(1, 1));
  ASSERT_EQ(reports.size(), 2U);
  EXPECT_EQ(reports[0].page, "1_2");
  EXPECT_FALSE(reports[0].isCurrent);
  EXPECT_EQ(reports[1].page, "1_1");
  EXPECT_TRUE(reports[1].isCurrent);
  EXPECT_THAT(told(), ElementsAre("cleared", "cleared"));
}

TEST_F(AnObserverOfChanges, IsToldThatTheBoardHasBeenReloadedOrCleared) {
  board->reload();
  board->clear();
  ASSERT_EQ(reports.size(), 2U);
  for (const ChangeReport& report : reports) {
    EXPECT_EQ(report.kind, ChangeReport::Kind::kReloaded);
    EXPECT_EQ(report.page, "1_1");
    EXPECT_TRUE(report.isCurrent);
  }
}

// ---- The call

TEST_F(AnObserverOfChanges, IsCalledOnTheCallingThreadBeforeTheOperationReturns) {
  std::thread::id caller;
  board->setChangeObserver([&](const ChangeReport&) { caller = std::this_thread::get_id(); });
  board.save(line("a", 1, 2, 3));
  EXPECT_EQ(caller, std::this_thread::get_id());
}

TEST_F(AnObserverOfChanges, MayCallTheStorage) {
  Tale seen;
  bool isFirst = true;
  const auto semphore = board->semphore();
  board->setChangeObserver([&](const ChangeReport& report) {
    if (!std::exchange(isFirst, false)) return;
    EXPECT_TRUE(semphore->try_acquire());
    seen = board.snap();
    semphore->release();
    board.save(text("t", "from the observer"));
    board->saveFile(true);
    EXPECT_EQ(board->entryWithID("a"), report.changes[0].entry);
  });
  board.save(line("a", 1, 2, 3));
  EXPECT_THAT(seen, ElementsAre("line a (1 2 3)"));
  EXPECT_EQ(board.snap().size(), 2U);
}

TEST_F(AnObserverOfChanges, MayTakeItselfAway) {
  board->setChangeObserver([&](const ChangeReport& report) {
    board->setChangeObserver(nullptr);
    reports.push_back(report);
  });
  board.save(line("a", 1, 2, 3), line("b", 1, 2, 3));
  EXPECT_EQ(reports.size(), 1U);
}

TEST_F(AnObserverOfChanges, ThatThrowsDoesNotMakeTheOperationFail) {
  board->setChangeObserver([](const ChangeReport&) { throw 1; });
  board.save(line("a", 1, 2, 3));
  board.show(page(1, 2));
  EXPECT_THAT(board.snap("1_1"), ElementsAre("line a (1 2 3)"));
}

TEST_F(AnObserverOfChanges, CanPutTheReportsOfSeveralThreadsInOrder) {
  constexpr int kThreads = 4;
  constexpr int kStrokes = 500;
  std::mutex mutex;
  std::map<std::uint64_t, VectorPtr> added;
  board->setChangeObserver([&](const ChangeReport& report) {
    const std::lock_guard<std::mutex> hold(mutex);
    added[report.number] = report.changes[0].entry;
  });
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      for (int i = 0; i < kStrokes; ++i) {
        board.save(line(std::to_string(thread) + ' ' + std::to_string(i), 1, 2, 3));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  VectorList inOrder;
  for (const auto& [number, entry] : added) inOrder.push_back(entry);
  EXPECT_EQ(inOrder, board.snapVectors());
  EXPECT_EQ(added.rbegin()->first, static_cast<std::uint64_t>(kThreads * kStrokes));
}

// ---- A picture that is kept up by reports alone

/// A client's own lists, changed by nothing but reports.
class Mirror {
 public:
  void take(const ChangeReport& report, const VWBVectorStorage& storage) {
    if (report.page.empty()) return;  // no page has been shown yet
    if (report.kind == ChangeReport::Kind::kReloaded) {
      pages_.clear();
      return;
    }
    const auto [found, isNew] = pages_.try_emplace(report.page);
    if (isNew || report.kind == ChangeReport::Kind::kSwitched) {
      found->second = storage.snapWithPage(*VelWbVecSwitchPage::pageFromInfo(report.page));
      for (const VectorPtr& entry : found->second) draw(entry);
      return;
    }
    for (const EntryChange& change : report.changes) apply(change, found->second);
  }

  const std::map<std::string, VectorList>& pages() const { return pages_; }

  /// Whether the positions that have been drawn of an entry are all that it has.
  bool isDrawn(const VectorPtr& entry) const {
    const auto drawn = drawn_.find(entry);
    return drawn != drawn_.end() && drawn->second == positionsOf(*entry);
  }

  std::string describe(const VectorPtr& entry) { return ::testing::PrintToString(drawn_[entry]); }

 private:
  static std::vector<std::vector<double>> positionsOf(const VelWbBaseVector& entry) {
    std::vector<std::vector<double>> positions;
    const auto* stroke = recordCast<const VelWbVecPoint>(&entry);
    if (stroke == nullptr) return positions;
    if (!stroke->path) return {{stroke->x, stroke->y, stroke->ts}};
    for (const Path::Position position : *stroke->path) {
      positions.emplace_back(position.begin(), position.end());
    }
    return positions;
  }

  void draw(const VectorPtr& entry) { drawn_[entry] = positionsOf(*entry); }

  void apply(const EntryChange& change, VectorList& list) {
    const auto first = std::find(list.begin(), list.end(), change.entry);
    switch (change.kind) {
      case Kind::kAdded:
        list.push_back(change.entry);
        return draw(change.entry);
      case Kind::kExtended: {
        const auto positions = positionsOf(*change.entry);
        auto& drawn = drawn_[change.entry];
        // Positions of a later change of the same report may have been drawn.
        ASSERT_GE(drawn.size(), change.firstNew);
        ASSERT_LE(drawn.size(), positions.size());
        drawn.insert(drawn.end(), positions.begin() + static_cast<std::ptrdiff_t>(drawn.size()),
                     positions.end());
        return;
      }
      case Kind::kEdited:
        ASSERT_NE(first, list.end());
        return draw(change.entry);
      case Kind::kRaised: {
        const auto last = std::find(list.rbegin(), list.rend(), change.entry);
        ASSERT_NE(last, list.rend());
        list.erase(std::next(last).base());
        list.push_back(change.entry);
        return draw(change.entry);
      }
      case Kind::kRemoved:
        ASSERT_NE(first, list.end());
        list.erase(first);
        return;
      case Kind::kRemovedTop:
        ASSERT_EQ(list.back(), change.entry);
        list.pop_back();
        return;
      case Kind::kCleared:
        list.clear();
        return;
    }
  }

  std::map<std::string, VectorList> pages_;
  std::map<VectorPtr, std::vector<std::vector<double>>> drawn_;
};

class ReportsOfARandomLesson : public ::testing::TestWithParam<std::uint64_t> {};

TEST_P(ReportsOfARandomLesson, AreEnoughToDrawEveryPageFrom) {
  Chances chances(GetParam());
  Board board;
  board.savesOddRecords();
  Mirror mirror;
  std::uint64_t last = 0;
  board->setChangeObserver([&](const ChangeReport& report) {
    EXPECT_EQ(report.number, ++last);
    mirror.take(report, *board);
  });
  const auto anyPage = [&] {
    return page(1, 1U + static_cast<std::uint64_t>(chances.below(3)), chances.below(1000));
  };
  const auto arrival = [&] { return modelWithDictionary<VelWbBaseVector>(randomArrival(chances)); };
  std::size_t compared = 0;
  for (int step = 0; step < 2000 && !HasFailure(); ++step) {
    const int chance = chances.below(100);
    VectorList some;
    for (int i = chances.below(6); i > 0; --i) some.push_back(arrival());
    if (chance < 60) {
      board.save(arrival());
    } else if (chance < 72) {
      board->appendVectors(some, anyPage());
    } else if (chance < 84) {
      board->saveVectors(some, anyPage());
    } else if (chance < 95) {
      board->switchPage(anyPage());
    } else if (chance < 98) {
      board->clearPage(*anyPage());
    } else {
      board->saveFile(true);
    }
    board.clock().advance(std::chrono::milliseconds(20));
    for (const auto& [key, list] : mirror.pages()) {
      EXPECT_TRUE(list == board.snapVectors(key))
          << "page " << key << " in step " << step << " is "
          << ::testing::PrintToString(board.snap(key)) << ", drawn is "
          << ::testing::PrintToString(tell(list));
      for (const VectorPtr& entry : list)
        EXPECT_TRUE(mirror.isDrawn(entry))
            << modelToJSONString(*entry) << " is drawn as " << mirror.describe(entry);
      compared += list.size();
    }
  }
  EXPECT_GT(compared, 1000U);
}

INSTANTIATE_TEST_SUITE_P(Seed, ReportsOfARandomLesson, ::testing::Values(1, 2, 3, 4, 5, 6));

}  // namespace
}  // namespace VelWhiteBoard
