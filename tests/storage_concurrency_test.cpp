// Many threads at one storage.
#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/file_system.h"
#include "VelWhiteBoard/services/vector_manager.h"
#include "VelWhiteBoard/storage/vector_storage.h"

#include "tests/support/gate.h"
#include "tests/support/storage_story.h"
#include "tests/support/together.h"

namespace VelWhiteBoard {
namespace {

constexpr int kThreads = 8;

// A small generator of a thread's own.
class Dice {
 public:
  explicit Dice(int thread) : state_(static_cast<std::uint64_t>(thread) * 2'654'435'761U + 1) {}
  int below(int limit) {
    state_ = state_ * 6'364'136'223'846'793'005U + 1'442'695'040'888'963'407U;
    return static_cast<int>((state_ >> 33U) % static_cast<std::uint64_t>(limit));
  }

 private:
  std::uint64_t state_;
};

std::shared_ptr<VelWbVecSwitchPage> sharedPage(Dice& dice) {
  return page(1, static_cast<std::uint64_t>(dice.below(4)), dice.below(1000), dice.below(2));
}

// What only asks. Reads no vector's contents: those belong to the storage while others save.
void ask(const Board& board, Dice& dice) {
  const auto where = sharedPage(dice);
  board->snapWithPage(*where);
  board->hasVectorsWithPage(*where);
  board->ignoreVector(*where);
  board->snapVectorss();
  board->wholeVectorss();
  board->snapQuery();
  board->pageCacheList();
  board->pageArray();
  if (const auto latest = board->latestPage()) {
    EXPECT_EQ(latest->WBID, 1);
  }
  if (const auto current = board->currentPage()) {
    EXPECT_EQ(current->WBID, 1);
  }
  board->wholeFile();
  board->snapFile();
  board->folder();
  board->pageFile();
  board->hasNewChange();
  board->ignoreChanges();
  board->lastSaveDate();
  board->semphore();
}

void useTheManager(Dice& dice) {
  VelWbVectorManager& manager = VelWbVectorManager::shareManager();
  manager.genID();
  manager.genTs();
  switch (dice.below(4)) {
    case 0:
      manager.setCourseCreateTs(1, 2, 3);
      break;
    case 1:
      manager.clear();
      break;
    case 2:
      manager.setIsRunning(dice.below(2) == 0);
      break;
    default:
      manager.setUserID("u" + std::to_string(dice.below(3)));
  }
}

void useTheQueue(const Board& board, Dice& dice) {
  board->saveQueue()->addOperationWithBlock([] {});
  if (dice.below(10) == 0) board.settle();
}

// What one thread saves: vectors with identifiers of its own, in order.
class Client {
 public:
  explicit Client(int number) : number_(number), dice_(number) {}

  void act(Board& board) {
    switch (dice_.below(12)) {
      case 0:
        board->appendVectors({next(), next(), next()}, sharedPage(dice_));
        break;
      case 1:
        board->switchPage(sharedPage(dice_));
        break;
      case 2:
        board->saveFile(dice_.below(3) == 0);
        break;
      case 3:
        // A page that no vector of the count is on.
        board->appendVectors({line("lost", 1, 2, dice_.below(100))}, page(1, 99));
        board->clearPage(*page(1, 99));
        break;
      case 4:
        ask(board, dice_);
        break;
      case 5:
        useTheManager(dice_);
        break;
      case 6:
        useTheQueue(board, dice_);
        break;
      case 7:
        board.clock().advance(std::chrono::milliseconds(dice_.below(15'000)));
        break;
      default:
        board.save(next());
    }
  }

  const std::vector<VectorPtr>& saved() const { return saved_; }

 private:
  VectorPtr next() {
    const double ts = static_cast<double>(saved_.size());
    const std::string id = std::to_string(number_) + "-" + std::to_string(dice_.below(5));
    VectorPtr vector = line(id, 1, 2, ts);
    if (dice_.below(4) == 0) vector = text(id + "t", "x", ts);
    if (dice_.below(20) == 0) vector = cursor(id + "c");
    if (dice_.below(20) == 0) vector = removal(id);
    saved_.push_back(vector);
    return vector;
  }

  int number_;
  Dice dice_;
  std::vector<VectorPtr> saved_;
};

// Where a vector stands in the whole lists.
struct Place {
  std::string key;
  std::size_t index;
};

void expectAllOnce(const Board& board, const std::vector<Client>& clients) {
  std::map<const VelWbBaseVector*, std::vector<Place>> places;
  for (const auto& [key, list] : board->wholeVectorss()) {
    for (std::size_t i = 0; i < list.size(); ++i) places[list[i].get()].push_back({key, i});
  }
  for (const Client& client : clients) {
    std::map<std::string, std::size_t> reached;
    for (const VectorPtr& vector : client.saved()) {
      const auto& found = places[vector.get()];
      ASSERT_EQ(found.size(), 1U) << tell(*vector);
      const auto [at, isFirst] = reached.try_emplace(found[0].key, found[0].index);
      EXPECT_TRUE(isFirst || at->second < found[0].index) << tell(*vector) << " came too early";
      at->second = found[0].index;
    }
  }
}

TEST(StorageThreads, LoseNothingOnPagesThatNobodyClears) {
  Board board;
  board.show(page(1, 0));
  std::vector<Client> clients;
  for (int i = 0; i < kThreads; ++i) clients.emplace_back(i);
  together(kThreads, [&](int number) {
    for (int i = 0; i < 250; ++i) clients[static_cast<std::size_t>(number)].act(board);
  });
  expectAllOnce(board, clients);
  // And all of it reaches the disk.
  for (std::uint64_t i = 0; i < 4; ++i) board->appendVectors({}, page(1, i));
  board.write();
  for (std::uint64_t i = 0; i < 4; ++i) {
    const std::string key = "1_" + std::to_string(i);
    EXPECT_EQ(board.wholeFile(key).size(), board.whole(key).size()) << key;
    if (board.has("snap_" + key + ".plist")) {
      EXPECT_EQ(board.snapFile(key), board.snap(key)) << key;
    }
  }
}

TEST(StorageThreads, LoseNothingWhenTwoAppendToAPageThatIsNotCached) {
  constexpr int kPages = 40;
  Board board;
  for (int i = 0; i < kPages; ++i) {
    board.append(page(1, static_cast<std::uint64_t>(i)), line("old", 1, 2, 3));
  }
  board.settle();
  board.reopen();
  std::vector<std::unique_ptr<Meeting>> meetings;
  for (int i = 0; i < kPages; ++i) meetings.push_back(std::make_unique<Meeting>(2));
  together(2, [&](int number) {
    for (int i = 0; i < kPages; ++i) {
      meetings[static_cast<std::size_t>(i)]->arrive();
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

TEST(StorageThreads, LoseNothingWhenOneShowsThePageThatAnotherAppendsTo) {
  constexpr int kPages = 40;
  Board board;
  for (int i = 0; i < kPages; ++i) {
    board.append(page(1, static_cast<std::uint64_t>(i)), line("old", 1, 2, 3));
  }
  board.settle();
  board.reopen();
  std::vector<std::unique_ptr<Meeting>> meetings;
  for (int i = 0; i < kPages; ++i) meetings.push_back(std::make_unique<Meeting>(2));
  together(2, [&](int number) {
    for (int i = 0; i < kPages; ++i) {
      const auto where = page(1, static_cast<std::uint64_t>(i), i);
      meetings[static_cast<std::size_t>(i)]->arrive();
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

TEST(StorageThreads, MayClearReloadAndSetPropertiesBesideEverythingElse) {
  // Vectors may be lost here, as the rules of clearing say; nothing may break.
  Board board;
  board.show(page(1, 0));
  together(kThreads, [&](int number) {
    Client client(number);
    Dice dice(number + 100);
    for (int i = 0; i < 150; ++i) {
      client.act(board);
      switch (dice.below(16)) {
        case 0:
          board->clear();
          break;
        case 1:
          board->reload();
          break;
        case 2:
          board->clearPage(*sharedPage(dice));
          break;
        case 3:
          board->setSnapQuery({});
          board->setPageCacheList({"x"});
          break;
        case 4:
          board->setHasNewChange(dice.below(2) == 0);
          board->setLastSaveDate({});
          break;
        case 5:
          board->setPageArray({page(1, 1)});
          break;
        case 6:
          board->setSnapVectorss(board->snapVectorss());
          board->setWholeVectorss(board->wholeVectorss());
          break;
        case 7:
          board->setSnapFile(board->snapFile());
          board->setWholeFile(board->wholeFile());
          board->setPageFile(board->pageFile());
          break;
        case 8:
          board->setIgnoreChanges(dice.below(4) == 0);
          break;
        default:
          break;
      }
    }
  });
  board->setIgnoreChanges(false);
  board->clear();
  board.settle();
  board.show(page(2, 2, 5000));
  board.save(line("a", 1, 2, 3));
  board.write();
  EXPECT_EQ(board.wholeFile("2_2"), Tale{"line a (1 2 3)"});
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
