// Many threads at one storage: every operation of the storage, of its queue and of the vector
// manager beside every other.
#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/services/vector_manager.h"
#include "VelWhiteBoard/storage/vector_storage.h"

#include "tests/support/dice.h"
#include "tests/support/storage_story.h"
#include "tests/support/together.h"

namespace VelWhiteBoard {
namespace {

constexpr int kMixers = 8;

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
  board->saveQueue();
  board->semphore();
}

void readTheManager(VelWbVectorManager& manager) {
  manager.genID();
  manager.genTs();
  manager.createTs();
  manager.serverTs();
  manager.localTs();
  manager.userID();
  manager.isRunning();
  manager.semaphore();
  const auto point = line("point", 0.25, 0.5, 1);
  manager.coordinateSystemTransToPC(*point);
  manager.coordinateSystemTransFromPC(*point);
  EXPECT_EQ(point->x, 0.25);
  EXPECT_EQ(point->y, 0.5);
}

void useTheManager(Dice& dice) {
  VelWbVectorManager& manager = VelWbVectorManager::shareManager();
  readTheManager(manager);
  switch (dice.below(9)) {
    case 0:
      return manager.setCourseCreateTs(1, 2, 3);
    case 1:
      return manager.clear();
    case 2:
      return manager.setIsRunning(dice.below(2) == 0);
    case 3:
      return manager.setCreateTs(dice.below(3));
    case 4:
      return manager.setServerTs(dice.below(3));
    case 5:
      return manager.setLocalTs(dice.below(3));
    case 6:
      return manager.setSemaphore(std::make_shared<Semaphore>(1));
    case 7:
      manager.init();
      return;
    default:
      manager.setUserID("u" + std::to_string(dice.below(3)));
  }
}

void useQueues(const Board& board, Dice& dice) {
  board->saveQueue()->addOperationWithBlock([] {});
  if (dice.below(10) == 0) board.settle();
  // One of the thread's own, dropped with its work. The board's must go on in order.
  OperationQueue queue;
  queue.setMaxConcurrentOperationCount(dice.below(4));
  queue.addOperationWithBlock(
      [boards = board->saveQueue()] { boards->addOperationWithBlock([] {}); });
  if (dice.below(2) == 0) queue.waitUntilAllOperationsAreFinished();
}

// What one thread saves: vectors with identifiers of its own, in order.
class Client {
 public:
  explicit Client(int number) : number_(number), dice_(static_cast<std::uint64_t>(number)) {}

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
        useQueues(board, dice_);
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
  for (int i = 0; i < kMixers; ++i) clients.emplace_back(i);
  together(kMixers, [&](int number) {
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

/// The queues that a board has had.
class Queues {
 public:
  void replaceThatOf(const Board& board) {
    const std::lock_guard<std::mutex> hold(mutex_);
    queues_.push_back(board->saveQueue());
    board->setSaveQueue(std::make_shared<OperationQueue>());
  }
  void settle() const {
    for (const auto& queue : queues_) queue->waitUntilAllOperationsAreFinished();
  }

 private:
  std::mutex mutex_;
  std::vector<std::shared_ptr<OperationQueue>> queues_;
};

/// What may cost vectors, beside what Client does.
void disturb(Board& board, Dice& dice, Queues& queues) {
  switch (dice.below(22)) {
    case 0:
      return board->clear();
    case 1:
      return board->reload();
    case 2:
      return board->clearPage(*sharedPage(dice));
    case 3:
      board->setSnapQuery({});
      return board->setPageCacheList({"x"});
    case 4:
      board->setHasNewChange(dice.below(2) == 0);
      return board->setLastSaveDate({});
    case 5:
      return board->setPageArray({page(1, 1)});
    case 6:
      board->setSnapVectorss(board->snapVectorss());
      return board->setWholeVectorss(board->wholeVectorss());
    case 7:
      board->setSnapFile(board->snapFile());
      board->setWholeFile(board->wholeFile());
      return board->setPageFile(board->pageFile());
    case 8:
      return board->setIgnoreChanges(dice.below(4) == 0);
    case 9:
      return board->setFolder(board->folder());
    case 10:
      return queues.replaceThatOf(board);
    case 11:
      return board->saveQueue()->setMaxConcurrentOperationCount(dice.below(4));
    case 12:
      return board->setSemphore(std::make_shared<Semaphore>(1));
    case 13:
      VWBVectorStorage::initWithPath(board.parent())->switchPage(sharedPage(dice));
      return;
    default:
      return;
  }
}

TEST(StorageThreads, MayClearReloadAndSetPropertiesBesideEverythingElse) {
  // Vectors may be lost here, as the rules of clearing say; nothing may break.
  Board board;
  board.show(page(1, 0));
  Queues queues;
  together(kMixers, [&](int number) {
    Client client(number);
    Dice dice(static_cast<std::uint64_t>(number) + 100);
    for (int i = 0; i < 150; ++i) {
      client.act(board);
      disturb(board, dice, queues);
    }
  });
  queues.settle();
  board.settle();
  board->saveQueue()->setMaxConcurrentOperationCount(1);
  board->setIgnoreChanges(false);
  board->clear();
  board.settle();
  board.show(page(2, 2, 5000));
  board.save(line("a", 1, 2, 3));
  board.write();
  EXPECT_EQ(board.wholeFile("2_2"), Tale{"line a (1 2 3)"});
  VelWbVectorManager::shareManager().init();
}

}  // namespace
}  // namespace VelWhiteBoard
