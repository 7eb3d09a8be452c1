// Every single request for memory of every operation fails once, and from then on until the
// operation is over. Each time the operation has its whole effect or, when it throws, none; the
// next call works; and nothing that was on the disk or had been accepted is gone.
#include <cstddef>
#include <functional>
#include <iostream>
#include <limits>
#include <memory>
#include <new>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/storage/lists/snap_list.h"

#include "tests/reliability/starved_board.h"
#include "tests/support/failing_memory.h"
#include "tests/support/manual_clock.h"

namespace VelWhiteBoard {
namespace {

using Step = std::function<void(StarvedBoard& board)>;

struct Operation {
  std::string name;
  Step prepare;
  Step run;
  /// Pages that it may cost.
  Names cleared = {};
};

std::ostream& operator<<(std::ostream& out, const Operation& operation) {
  return out << operation.name;
}

constexpr std::size_t kForEver = std::numeric_limits<std::size_t>::max();

/// How requests fail.
struct Shortage {
  std::size_t times;
  Requests requests;
};

/// How one state would have to be changed to get the other.
Value differences(const Value& expected, const Value& state) {
  return Value::diff(expected, state);
}
const Value kNone = Array();

/// What the operation makes of the board when there is memory.
Value stateAfter(const Operation& operation, bool runs) {
  StarvedBoard board;
  operation.prepare(board);
  if (runs) operation.run(board);
  return board.state();
}

/// Runs the operation with the request number `first` failing. Answers whether one failed.
bool endure(const Operation& operation, std::size_t first, const Shortage& shortage,
            const Value& before, const Value& after) {
  StarvedBoard board;
  operation.prepare(board);
  bool threw = false;
  bool failed = false;
  {
    const FailingAllocations failing(first, shortage.requests, shortage.times);
    try {
      operation.run(board);
    } catch (const std::bad_alloc&) {
      threw = true;
    }
    failed = failing.hasFailed();
  }
  if (threw) {
    EXPECT_EQ(differences(before, board.state()), kNone) << "what threw has had an effect";
    operation.run(board);
    EXPECT_EQ(differences(after, board.state()), kNone) << "the next call";
  } else {
    EXPECT_EQ(differences(after, board.state()), kNone) << "what did not throw lacks an effect";
  }
  board.expectNothingLost(operation.cleared);
  return failed;
}

void endureAll(const Operation& operation, const Shortage& shortage) {
  const Value before = stateAfter(operation, false);
  const Value after = stateAfter(operation, true);
  std::size_t first = 1;
  for (bool failed = true; failed; ++first) {
    SCOPED_TRACE(operation.name + ", request " + std::to_string(first));
    failed = endure(operation, first, shortage, before, after);
    if (::testing::Test::HasFailure()) return;
  }
  std::cout << operation.name << ": " << first - 2 << " requests\n";
}

class AnOperation : public ::testing::TestWithParam<Operation> {
 protected:
  ManualClock clock_;
  ScopedClock scope_{clock_};
};

TEST_P(AnOperation, ForWhichOneRequestFailsHasItsWholeEffectOrNone) {
  endureAll(GetParam(), {1, Requests::kOfThisThread});
}

TEST_P(AnOperation, WithoutMemoryFromSomePointOnHasItsWholeEffectOrNone) {
  endureAll(GetParam(), {kForEver, Requests::kOfThisThread});
}

TEST_P(AnOperation, ForWhichOneRequestOfTheCLibraryFailsHasItsWholeEffectOrNone) {
  endureAll(GetParam(), {1, Requests::kOfCLibraryToo});
}

// ---- The operations.

Step save() {
  return [](StarvedBoard& board) {
    for (const VectorPtr& vector : board.hands()) board->saveVector(vector);
  };
}

Step appendTo() {
  return [](StarvedBoard& board) { board->appendVectors(board.hands(), board.page()); };
}

Step switchTo() {
  return [](StarvedBoard& board) { board->switchPage(board.page()); };
}

/// The first page is shown, and these vectors are at hand.
template <class... Vectors>
Step onPage(const Vectors&... make) {
  return [make...](StarvedBoard& board) {
    board.show(1);
    (board.hand(make()), ...);
  };
}

/// The first page is shown; these vectors are to be appended to another.
template <class... Vectors>
Step besidePage(std::uint64_t other, const Vectors&... make) {
  return [other, make...](StarvedBoard& board) {
    board.show(1);
    board.handPage(other);
    (board.hand(make()), ...);
  };
}

/// The same while a save of the first page waits.
template <class... Vectors>
Step whileASaveWaits(const Vectors&... make) {
  return [make...](StarvedBoard& board) {
    board.show(1);
    board->saveVector(line("old stroke", 9, 9, 9));
    board.holdQueue();
    board->saveFile(true);
    (board.hand(make()), ...);
  };
}

const auto kStroke = [] { return line("new stroke", 1, 2, 3); };
const auto kPiece = [] { return line("old stroke", 7, 8, 99); };
const auto kNameless = [] { return line(std::nullopt, 1, 2, 3); };
const auto kBox = [] { return box("old box", 0.5, 0.6, 0.7, 0.8); };
const auto kTail = [] { return image("old image", "another url"); };
const auto kOffset = [] { return offset("old offset", 2); };
const auto kWords = [] { return text("new text", "words that are too long for a short string"); };
const auto kRemoval = [] { return removal("old text"); };
const auto kClearing = [] { return clearing(); };
const auto kMagnifier = [] { return magnifier("new magnifier"); };
const auto kCursor = [] { return cursor(); };

std::vector<Operation> saves() {
  return {
      {"SaveOfANewStroke", onPage(kStroke), save()},
      {"SaveOfAPiece", onPage(kPiece), save()},
      {"SaveOfANamelessStroke", onPage(kNameless), save()},
      {"SaveOfABoxThatMoves", onPage(kBox), save()},
      {"SaveOfTheLastBox", onPage(kTail), save()},
      {"SaveOfWhatIsNoBox", onPage(kOffset), save()},
      {"SaveOfARemoval", onPage(kRemoval), save()},
      {"SaveOfAClearing", onPage(kClearing), save()},
      {"SaveOfAMagnifier", onPage(kMagnifier), save()},
      {"SaveOfACursor", onPage(kCursor), save()},
      {"SaveWithoutAPage", [](StarvedBoard& board) { board.hand(kStroke()); }, save()},
      {"SaveOfAPieceWhileASaveWaits", whileASaveWaits(kPiece), save()},
      {"SaveOfABoxWhileASaveWaits", whileASaveWaits(kBox), save()},
      {"SaveThatIsDue",
       [](StarvedBoard& board) {
         board.show(1);
         board->setLastSaveDate({});
         board.hand(kPiece());
       },
       save()},
  };
}

std::vector<Operation> appends() {
  return {
      {"AppendOfAStroke", besidePage(2, kStroke), appendTo()},
      {"AppendOfAPiece", besidePage(2, kPiece), appendTo()},
      {"AppendOfABox", besidePage(2, kBox), appendTo()},
      {"AppendOfARemoval", besidePage(2, kRemoval), appendTo()},
      {"AppendOfAClearing", besidePage(2, kClearing), appendTo()},
      {"AppendOfMany", besidePage(2, kStroke, kPiece, kBox, kRemoval, kWords), appendTo()},
      {"AppendOfNothing", besidePage(2), appendTo()},
      {"AppendToANewPage", besidePage(9, kStroke, kBox), appendTo()},
      {"AppendToTheCurrentPage", besidePage(1, kPiece), appendTo()},
      {"AppendToACachedPage",
       [](StarvedBoard& board) {
         board.show(2);
         board.show(1);
         board.handPage(2);
         board.hand(kPiece());
         board.hand(kBox());
       },
       appendTo()},
  };
}

std::vector<Operation> pages() {
  const auto drawn = [](std::uint64_t from, std::uint64_t to) {
    return [from, to](StarvedBoard& board) {
      board.show(from);
      board->saveVector(kStroke());
      board.handPage(to);
    };
  };
  const auto clearPage = [](StarvedBoard& board) { board->clearPage(*board.page()); };
  const auto snap = [](StarvedBoard& board) {
    const std::size_t entries = board->snapWithPage(*board.page()).size();
    EXPECT_EQ(entries, 6U);
  };
  return {
      {"SwitchToTheFirstPage", [](StarvedBoard& board) { board.handPage(1); }, switchTo()},
      {"SwitchToAnOldPage", drawn(1, 2), switchTo()},
      {"SwitchToANewPage", drawn(1, 9), switchTo()},
      {"SwitchToTheSamePage", drawn(1, 1), switchTo()},
      {"SwitchToACachedPage",
       [drawn](StarvedBoard& board) {
         board.show(2);
         drawn(1, 2)(board);
       },
       switchTo()},
      {"SwitchThatIsNotRecorded",
       [drawn](StarvedBoard& board) {
         drawn(1, 2)(board);
         board->setIgnoreChanges(true);
       },
       switchTo()},
      {"UseOfAnOldPage",
       [drawn](StarvedBoard& board) {
         drawn(1, 2)(board);
         board->switchPage(board.page());
       },
       [](StarvedBoard& board) { static_cast<void>(board->wholeVectorss()); }},
      {"SnapshotOfAFile", drawn(1, 2), snap},
      {"SnapshotOfTheCache",
       [](StarvedBoard& board) {
         board.show(1);
         board.handPage(1);
       },
       snap},
      {"ClearingOfTheCurrentPage", drawn(1, 1), clearPage, {"1_1"}},
      {"ClearingOfAnotherPage", drawn(1, 2), clearPage, {"1_2"}},
  };
}

std::vector<Operation> files() {
  const auto onPageOne = [](StarvedBoard& board) {
    board.show(1);
    board->saveVector(kPiece());
  };
  const auto saveFile = [](StarvedBoard& board) { board->saveFile(true); };
  return {
      {"SaveOfTheFiles", onPageOne, saveFile},
      {"SaveOfTheFilesWhileOneWaits", whileASaveWaits(), saveFile},
      {"Reload",
       [](StarvedBoard& board) {
         board.show(1);
         board.show(2);
       },
       [](StarvedBoard& board) { board->reload(); },
       {"1_2"}},  // the next save of the current page replaces its files
      {"Opening", [](StarvedBoard&) {}, [](StarvedBoard& board) { board.open(); }},
      {"Getters", onPageOne,
       [](StarvedBoard& board) {
         EXPECT_EQ(board->wholeVectorss().at("1_1").size(), 9U);
         EXPECT_EQ(board->snapVectorss().at("1_1").size(), 5U);
         EXPECT_EQ(board->snapQuery().size(), 6U);
         EXPECT_EQ(board->pageArray().size(), 4U);
         EXPECT_EQ(board->currentPage()->pageInfo(), "1_1");
         EXPECT_EQ(board->latestPage()->pageInfo(), "1_1");
         EXPECT_TRUE(board->hasVectorsWithPage(*page(1, 1)));
         EXPECT_TRUE(board->hasVectorsWithPage(*page(1, 2)));
         EXPECT_TRUE(board->folder().ends_with("whiteBoard"));
         EXPECT_TRUE(board->pageFile().ends_with("page.plist"));
         EXPECT_TRUE(board->wholeFile()->ends_with("whole_1_1.plist"));
         EXPECT_TRUE(board->snapFile()->ends_with("snap_1_1.plist"));
       }},
  };
}

const auto kName = [](const auto& operation) { return operation.param.name; };

INSTANTIATE_TEST_SUITE_P(OfSaving, AnOperation, ::testing::ValuesIn(saves()), kName);
INSTANTIATE_TEST_SUITE_P(OfAppending, AnOperation, ::testing::ValuesIn(appends()), kName);
INSTANTIATE_TEST_SUITE_P(OfPages, AnOperation, ::testing::ValuesIn(pages()), kName);
INSTANTIATE_TEST_SUITE_P(OfFiles, AnOperation, ::testing::ValuesIn(files()), kName);

// ---- What the queue does.

class TheQueue : public ::testing::Test {
 protected:
  /// Everything that is ever queued, on a queue that stands still.
  static void queueAll(StarvedBoard& board) {
    board.show(1);
    board.holdQueue();
    board->saveVector(kPiece());
    board->saveFile(true);
    board->saveVector(kBox());  // after it was captured
    board.handPage(2);
    board->appendVectors({kStroke(), kBox()}, board.page());
    board->clearPage(*page(1, 3));
    board.show(2);
    board->saveVector(kWords());
    board.show(1);
  }

  /// Lets the queue go with the request number `first` failing, whichever thread makes it.
  static bool endure(std::size_t first, std::size_t times, const Value& state) {
    StarvedBoard board;
    queueAll(board);
    bool failed = false;
    {
      const FailingAllocations failing(first, Requests::kOfAllThreads, times);
      board.letGoOfQueue();
      settle(*board);
      failed = failing.hasFailed();
    }
    EXPECT_EQ(differences(state, board.state()), kNone);
    for (const std::string key : {"1_1", "1_2"}) {
      EXPECT_FALSE(board.disk().kept(wholeName(key)).empty()) << key;
      EXPECT_FALSE(board.disk().identifiers(snapName(key)).empty()) << key;
    }
    board.expectNothingLost({"1_3"});
    return failed;
  }

  static void endureAll(std::size_t times) {
    StarvedBoard untroubled;
    queueAll(untroubled);
    const Value state = untroubled.state();
    std::size_t first = 1;
    for (bool failed = true; failed; ++first) {
      SCOPED_TRACE("request " + std::to_string(first));
      failed = endure(first, times, state);
      if (HasFailure()) return;
    }
    std::cout << first - 2 << " requests\n";
  }

  ManualClock clock_;
  ScopedClock scope_{clock_};
};

TEST_F(TheQueue, ForWhichOneRequestFailsLosesNothing) { endureAll(1); }

TEST_F(TheQueue, WithoutMemoryFromSomePointOnLosesNothing) { endureAll(kForEver); }

// The page's log is decoded in the background; whatever fails there, the list is whole.
TEST(ALog, WhoseDecodingFailsIsWhole) {
  ManualClock clock;
  const ScopedClock scope(clock);
  std::size_t first = 1;
  for (bool failed = true; failed; ++first) {
    SCOPED_TRACE("request " + std::to_string(first));
    StarvedBoard board;
    bool isShown = false;
    {
      const FailingAllocations failing(first, Requests::kOfAllThreads, 20);
      try {
        board.show(1);
        isShown = true;
        settle(*board);
      } catch (const std::bad_alloc&) {
      }
      failed = failing.hasFailed();
    }
    if (!isShown) board.show(1);
    EXPECT_EQ(board->wholeVectorss()["1_1"].size(), 8U);
    board->saveVector(kStroke());
    board.expectNothingLost({});
    if (::testing::Test::HasFailure()) return;
  }
}

// What `clear` may leave half done: the state is forgotten as a whole, or not yet.
TEST(AClearedBoard, HasNothingToSaveWhereverMemoryRanOut) {
  ManualClock clock;
  const ScopedClock scope(clock);
  std::size_t first = 1;
  for (bool failed = true; failed; ++first) {
    SCOPED_TRACE("request " + std::to_string(first));
    StarvedBoard board;
    board.show(1);
    board->saveVector(kStroke());
    {
      const FailingAllocations failing(first, Requests::kOfThisThread, kForEver);
      try {
        board->clear();
      } catch (const std::bad_alloc&) {
      }
      failed = failing.hasFailed();
    }
    EXPECT_EQ(board->hasNewChange(), !board->snapVectorss().empty());
    if (::testing::Test::HasFailure()) return;
  }
}

// The index of a page that had no memory is built when there is some again, and not before.
TEST(ASnapList, WhoseIndexCannotBeBuiltSaysSo) {
  SnapList snap;
  snap.push_back(kStroke());
  snap.rollBack(SharedVectorList(snap.list()));
  {
    const FailingAllocations failing(1, Requests::kOfThisThread, kForEver);
    EXPECT_THROW(snap.ensureIndex(), std::bad_alloc);
  }
  snap.ensureIndex();
  EXPECT_EQ(snap.findFirst(*snap.back()->ID), 0U);
}

// ---- The files, when reads fail for want of memory and the client goes on all the same.

TEST(ABoardWithoutMemory, LosesNothingTwiceInARow) {
  ManualClock clock;
  const ScopedClock scope(clock);
  std::size_t first = 1;
  for (bool failed = true; failed; ++first) {
    SCOPED_TRACE("request " + std::to_string(first));
    StarvedBoard board;
    for (int day = 1; day <= 2; ++day) {
      {
        const FailingAllocations failing(first, Requests::kOfThisThread, kForEver);
        try {
          board.open();
          board.show(1);
        } catch (const std::bad_alloc&) {
        }
        failed = failing.hasFailed();
      }
      board->setIgnoreChanges(false);
      if (!board->currentPage()) board.show(1);
      draw(*board, {"day " + std::to_string(day)});
      saveNow(*board);
    }
    Names expected = {"day 1", "day 2"};
    EXPECT_EQ(missing(expected, board.disk().kept(wholeName("1_1"))), Names());
    board.expectNothingLost({});
    if (::testing::Test::HasFailure()) return;
  }
}

}  // namespace
}  // namespace VelWhiteBoard
