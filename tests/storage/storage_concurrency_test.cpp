// Many threads at one storage: where two of them meet.
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/file_system.h"
#include "VelWhiteBoard/storage/vector_storage.h"

#include "tests/support/gate.h"
#include "tests/support/storage_story.h"
#include "tests/support/together.h"

namespace VelWhiteBoard {
namespace {

constexpr int kPages = 40;

/// A board whose pages have files and are not cached, for two threads that meet at each page.
class UncachedPages : public Board {
 public:
  UncachedPages() {
    for (int i = 0; i < kPages; ++i) {
      append(page(1, static_cast<std::uint64_t>(i)), line("old", 1, 2, 3));
      meetings_.push_back(std::make_unique<Meeting>(2));
    }
    settle();
    reopen();
  }

  void meetAt(int number) { meetings_[static_cast<std::size_t>(number)]->arrive(); }

 private:
  std::vector<std::unique_ptr<Meeting>> meetings_;
};

TEST(StorageThreads, LoseNothingWhenTwoAppendToAPageThatIsNotCached) {
  UncachedPages board;
  together(2, [&](int number) {
    for (int i = 0; i < kPages; ++i) {
      board.meetAt(i);
      board.append(page(1, static_cast<std::uint64_t>(i)), line(std::to_string(number), 1, 2, 3));
    }
  });
  for (int i = 0; i < kPages; ++i) {
    const std::string key = "1_" + std::to_string(i);
    EXPECT_THAT(board.whole(key), ::testing::UnorderedElementsAre("line old", "line 0", "line 1"));
    EXPECT_EQ(board.wholeFile(key), board.whole(key));
    EXPECT_EQ(board.snapFile(key), board.snap(key));
  }
}

TEST(StorageThreads, AppendOneBatchBehindTheOtherHoweverManyMeetAtAPage) {
  constexpr int kWriters = 4;
  constexpr std::size_t kVectors = 1000;  // so many that each batch gives way in between
  Board board;
  const auto where = page(1, 2);
  together(kWriters, [&](int number) {
    const VectorList batch(kVectors, text(std::to_string(number), "words"));
    board->appendVectors(batch, where);
  });
  const VectorList whole = board.wholeVectors("1_2");
  ASSERT_EQ(whole.size(), kWriters * kVectors);
  for (std::size_t i = 0; i < whole.size(); ++i) {
    ASSERT_EQ(whole[i], whole[i - i % kVectors]) << i;
  }
}

TEST(StorageThreads, LoseNothingWhenOneShowsThePageThatAnotherAppendsTo) {
  UncachedPages board;
  together(2, [&](int number) {
    for (int i = 0; i < kPages; ++i) {
      const auto where = page(1, static_cast<std::uint64_t>(i), i);
      board.meetAt(i);
      if (number == 0) {
        board->switchPage(where);
        board.save(line("shown", 1, 2, 3));
      } else {
        board.append(where, line("appended", 1, 2, 3));
      }
    }
  });
  std::size_t count = 0;
  for (const auto& [key, list] : board->wholeVectorss()) {
    EXPECT_EQ(tell(list).front(), "line old") << key;
    count += list.size();
  }
  EXPECT_EQ(count, 3U * kPages);
}

// Reads a saved stroke file while it is being replaced, and holds it to what was drawn: the pieces
// of four strokes came in turns, and a stroke's first piece has a position for each of its pieces.
void expectSomeInstant(const std::string& file, bool isWhole) {
  std::array<std::size_t, 4> pieces{};
  std::array<std::size_t, 4> positions{};
  std::size_t total = 0;
  for (const auto& record : recordsOfFile(VelWbBaseVector::ownClass(), file)) {
    const auto& stroke = static_cast<const VelWbVecLine&>(*record);
    const auto which = static_cast<std::size_t>(stroke.ID->front() - '0');
    if (pieces[which]++ == 0) positions[which] = stroke.path->size();
    total += isWhole ? 1 : stroke.path->size();
  }
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(positions[i], (total + 3 - i) / 4) << file << " of " << total << " pieces";
    if (isWhole) {
      EXPECT_EQ(pieces[i], positions[i]) << file;
    }
  }
}

TEST(StorageThreads, SaveEachFileAsItWasAtOneInstantWhileStrokesGrow) {
  Board board;
  board.show(page(1, 1));
  std::atomic<bool> isDrawn{false};
  together(4, [&](int number) {
    if (number == 0) {
      for (int i = 0; i < 1500; ++i) board.save(line(std::to_string(i % 4), i, 0, i + 1));
      isDrawn = true;
    } else if (number == 1) {
      while (!isDrawn) board.write();
    } else {
      const std::string file = board.at(number == 2 ? "whole_1_1.plist" : "snap_1_1.plist");
      while (!isDrawn) {
        if (FileSystem::current().exists(file)) expectSomeInstant(file, number == 2);
      }
    }
  });
  board.write();
  board.settle();
  expectSomeInstant(board.at("whole_1_1.plist"), true);
  EXPECT_EQ(board.wholeFile("1_1").size(), 1500U);
  EXPECT_EQ(board.snapFile("1_1"), board.snap("1_1"));
}

TEST(StorageThreads, WaitForTheSemaphoreBeforeTheyChangeAnything) {
  Board board;
  board.show(page(1, 1, 1));
  board.settle();
  std::vector<std::thread> threads;
  {
    const SemaphoreHold hold(board->semphore());
    const auto run = [&](auto work) { threads.emplace_back(work); };
    run([&] { board.save(line("a", 1, 2, 3)); });
    run([&] { board.append(page(1, 2), line("b", 1, 2, 3)); });
    run([&] { board.append(page(1, 1), line("c", 1, 2, 3)); });
    run([&] { board.show(page(1, 3, 2)); });
    run([&] { board->clearPage(*page(1, 1)); });
    run([&] { board->saveFile(true); });
    // Whoever does not wait has every chance to be seen here; whoever does never is.
    for (int i = 0; i < 200; ++i) {
      std::this_thread::yield();
      EXPECT_EQ(board->wholeVectorss().size(), 1U);
      EXPECT_EQ(board.whole("1_1"), Tale{});
      EXPECT_EQ(board->currentPage()->pageInfo(), "1_1");
      EXPECT_EQ(board->pageArray().size(), 1U);
    }
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(board->currentPage()->pageInfo(), "1_3");
  EXPECT_EQ(board.whole("1_2"), Tale{"line b"});
}

TEST(StorageThreads, EndWithEverythingOnDiskWhenTheStorageIsDroppedInTheMiddle) {
  Board board;
  const auto queue = board->saveQueue();
  const std::string folder = board->folder();
  {
    const QueueHold hold(queue);
    together(4, [&](int number) {
      for (std::uint64_t i = 0; i < 30; ++i) {
        board.append(page(number, i), line("a", 1, 2, 3), line("a", 4, 5, 6));
      }
    });
    board.drop();
  }
  queue->waitUntilAllOperationsAreFinished();
  board.reopen();
  for (int number = 0; number < 4; ++number) {
    for (int i = 0; i < 30; ++i) {
      const std::string key = std::to_string(number) + "_" + std::to_string(i);
      ASSERT_EQ(board.snapFile(key), Tale{"line a (1 2 3)(4 5 6)"}) << key;
      ASSERT_EQ(board.wholeFile(key).size(), 2U) << key;
    }
  }
}

TEST(StorageThreads, OfTwoStoragesShareAFolderWithoutBreakingAFile) {
  Board board;
  const auto other = VWBVectorStorage::initWithPath(board.parent());
  together(4, [&](int number) {
    for (int i = 0; i < 60; ++i) {
      VWBVectorStorage& mine = number % 2 == 0 ? *board : *other;
      mine.appendVectors({line(std::to_string(number), 1, 2, i)}, page(1, 1));
    }
  });
  other->saveQueue()->waitUntilAllOperationsAreFinished();
  // The last to write wins, with its own pieces and perhaps with some that it found at first.
  EXPECT_GE(board.wholeFile("1_1").size(), 120U);
  EXPECT_LE(board.wholeFile("1_1").size(), 240U);
}

}  // namespace
}  // namespace VelWhiteBoard
