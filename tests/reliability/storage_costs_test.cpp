// What an operation costs, counted in requests for memory: it must not depend on what else is
// pending, nor grow faster than what it is given.
#include <cstddef>
#include <functional>
#include <limits>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "tests/reliability/board_on_disk.h"
#include "tests/support/failing_memory.h"
#include "tests/support/manual_clock.h"
#include "tests/support/storage_story.h"

namespace VelWhiteBoard {
namespace {

/// How many requests for memory an action makes, and for how much together.
struct Cost {
  std::size_t requests;
  std::size_t bytes;
};

Cost costOf(const std::function<void()>& action) {
  const CountedAllocations counted;
  action();
  return {counted.count(), counted.bytes()};
}

std::string nameOf(const char* prefix, std::size_t number) {
  return prefix + std::to_string(number);
}

/// A board on whose first page something is drawn. Its queue may be made to stand still.
class DrawnBoard {
 public:
  explicit DrawnBoard(std::size_t strokes = 1) : storage_(disk_.open()) {
    storage_->switchPage(page(1, 1, 1));
    for (std::size_t i = 0; i < strokes; ++i) {
      storage_->saveVector(line(nameOf("stroke ", i), 1, 2, 3));
    }
    saveNow(*storage_);
  }
  ~DrawnBoard() {
    hold_.reset();
    settle(*storage_);
  }
  DrawnBoard(const DrawnBoard&) = delete;
  DrawnBoard& operator=(const DrawnBoard&) = delete;

  VWBVectorStorage* operator->() const { return storage_.get(); }
  VWBVectorStorage& operator*() const { return *storage_; }
  void hold() { hold_ = std::make_unique<QueueHold>(storage_->saveQueue()); }
  void letGo() { hold_.reset(); }

  /// Each of so many pages waits to be written.
  void leavePending(std::size_t pages) {
    hold();
    for (std::size_t i = 0; i < pages; ++i) {
      storage_->appendVectors({text("pending", "words")}, page(2, i));
    }
  }

 private:
  ManualClock clock_;
  ScopedClock scope_{clock_};
  BoardOnDisk disk_;
  std::shared_ptr<VWBVectorStorage> storage_;
  std::unique_ptr<QueueHold> hold_;
};

TEST(TheCostOfAPiece, IsTheSameWhateverOtherPagesHavePending) {
  const auto costWith = [](std::size_t pending) {
    DrawnBoard board;
    board.leavePending(pending);
    const auto first = line("stroke 0", 4, 5, 6);
    const auto second = line("stroke 0", 7, 8, 9);
    return costOf([&] {
      board->saveVector(first);
      board->saveVector(second);
    });
  };
  const Cost few = costWith(10);
  const Cost many = costWith(200);
  EXPECT_EQ(many.requests, few.requests);
  EXPECT_EQ(many.bytes, few.bytes);
}

TEST(TheCostOfBatches, GrowsWithTheirNumberWhileAllOfThemArePending) {
  const auto costOfPages = [](std::size_t pages) {
    DrawnBoard board;
    board.hold();
    VectorList batch;
    std::size_t bytes = 0;
    for (std::size_t number = 0; number < pages; ++number) {
      batch.clear();
      for (int piece = 0; piece < 50; ++piece) {
        batch.push_back(
            line(nameOf("stroke ", static_cast<std::size_t>(piece) / 10), piece, 2, piece));
      }
      bytes += costOf([&] { board->appendVectors(batch, page(2, number)); }).bytes;
    }
    return bytes;
  };
  // Twice as many for twice as many; four times would be a step for each pending page.
  EXPECT_LT(costOfPages(200), 3 * costOfPages(100));
}

TEST(TheCostOfAPiece, IsTheSameAfterAWriteThatFailedForWantOfMemory) {
  constexpr std::size_t kStrokes = 100;
  const auto costAfter = [](bool fails) {
    DrawnBoard board(kStrokes);
    board->setHasNewChange(true);
    board.hold();
    board->saveFile(true);
    {
      const FailingAllocations failing(fails ? 1 : std::numeric_limits<std::size_t>::max(),
                                       Requests::kOfAllThreads,
                                       std::numeric_limits<std::size_t>::max());
      board.letGo();
      settle(*board);
    }
    VectorList pieces;
    for (std::size_t i = 0; i < kStrokes; ++i) {
      pieces.push_back(line(nameOf("stroke ", i), 4, 5, 6));
    }
    return costOf([&] {
      for (const VectorPtr& piece : pieces) board->saveVector(piece);
    });
  };
  const Cost untroubled = costAfter(false);
  const Cost troubled = costAfter(true);
  EXPECT_EQ(troubled.requests, untroubled.requests);
  EXPECT_EQ(troubled.bytes, untroubled.bytes);
}

/// What so many vectors cost that are appended to a page that is not shown.
template <class Make>
Cost costOfAppending(std::size_t count, const Make& make) {
  DrawnBoard board;
  VectorList vectors;
  for (std::size_t i = 0; i < count; ++i) vectors.push_back(make(i));
  return costOf([&] { board->appendVectors(vectors, page(2, 1)); });
}

/// The same of vectors that are saved on the page that is shown.
template <class Make>
Cost costOfSaving(std::size_t count, const Make& make) {
  DrawnBoard board;
  VectorList vectors;
  for (std::size_t i = 0; i < count; ++i) vectors.push_back(make(i));
  return costOf([&] {
    for (const VectorPtr& vector : vectors) board->saveVector(vector);
  });
}

constexpr std::size_t kVectors = 2000;

template <class CostOf, class Make>
void expectInProportion(const CostOf& costOf, const Make& make) {
  EXPECT_LT(costOf(2 * kVectors, make).bytes, 3 * costOf(kVectors, make).bytes);
}

const auto kAppending = [](std::size_t count, const auto& make) {
  return costOfAppending(count, make);
};
const auto kSaving = [](std::size_t count, const auto& make) { return costOfSaving(count, make); };

TEST(TheCostOfManyVectors, OfOneIdentifierThatHaveNoPositionIsInProportion) {
  expectInProportion(kAppending,
                     [](std::size_t i) { return offset("one", static_cast<double>(i)); });
  expectInProportion(kSaving, [](std::size_t i) { return offset("one", static_cast<double>(i)); });
}

TEST(TheCostOfManyVectors, ThatAreRemovedByOneIdentifierIsInProportion) {
  const auto make = [](std::size_t i) -> VectorPtr {
    if (i % 2 == 0) return offset("one", static_cast<double>(i));
    return removal("one");
  };
  expectInProportion(kAppending, make);
  expectInProportion(kSaving, make);
  const auto makeAllFirst = [](std::size_t i) -> VectorPtr {
    if (i < kVectors / 2) return offset("one", static_cast<double>(i));
    return removal("one");
  };
  expectInProportion(kAppending, makeAllFirst);
}

TEST(TheCostOfManyVectors, OfTwoIdentifiersByTurnsIsInProportion) {
  expectInProportion(kSaving, [](std::size_t i) {
    return offset(i % 2 == 0 ? "one" : "other", static_cast<double>(i));
  });
}

TEST(TheCostOfManyVectors, ThatAreMagnifiersIsInProportion) {
  expectInProportion(kSaving, [](std::size_t i) { return magnifier(nameOf("magnifier ", i)); });
}

TEST(TheCostOfManyVectors, WithoutIdentifiersIsInProportion) {
  expectInProportion(kSaving, [](std::size_t) { return line(std::nullopt, 1, 2, 3); });
}

}  // namespace
}  // namespace VelWhiteBoard
