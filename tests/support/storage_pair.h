/// @file
/// A storage and the plain one, side by side: each step is done to both.
#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "VelWhiteBoard/foundation/values/clock.h"
#include "VelWhiteBoard/storage/vector_storage.h"

#include "tests/support/folder_log.h"
#include "tests/support/plain_storage.h"
#include "tests/support/storage_story.h"
#include "tests/support/temporary_folder.h"

namespace VelWhiteBoard {

/// One object in each of the two worlds.
using Twins = std::pair<VectorPtr, VectorPtr>;
using PageTwins =
    std::pair<std::shared_ptr<VelWbVecSwitchPage>, std::shared_ptr<VelWbVecSwitchPage>>;

/// The two storages, their queues and their disks. Time is one and the same.
class StoragePair {
 public:
  StoragePair();
  ~StoragePair();
  StoragePair(const StoragePair&) = delete;
  StoragePair& operator=(const StoragePair&) = delete;

  VWBVectorStorage& real() { return *real_; }
  PlainStorage& plain() { return *plain_; }
  void pass(std::chrono::milliseconds time) { clock_.advance(time); }

  /// A second folder that exists, for `setFolder`.
  const std::string& secondFolder() const { return secondFolder_; }

  // ---- The queue.

  bool isHeld() const { return queues_.back().hold != nullptr; }
  /// From now on the queue stands still.
  void hold();
  /// Lets the queue go, and every queue that was replaced while it was held, one after the other.
  void letGo();
  /// Waits for what is queued on queues that are not held.
  void settle();
  /// How many writes queues that are not held have been given since; some may still wait.
  std::size_t writesSinceSettled() const { return disk_.log().size() - settled_; }
  /// Gives both storages a new queue.
  void replaceQueue();
  /// How many writes of one file wait at most.
  std::size_t mostWaiting() const;
  /// Queues an operation of a client that looks at all files.
  void look();

  // ---- What reaches for the disk past the queue.

  /// Opens the board anew, with whatever is queued.
  void reopen();
  void clear();
  /// Writes into a file of the current page, in place. 0: the log, 1: the snapshot.
  void damage(int which);

  // ---- What is compared. Each answers what is different; empty when nothing is.

  std::string differencesInMemory(const VectorList& realDrawn = {},
                                  const VectorList& plainDrawn = {});
  /// To be asked when nothing is held.
  std::string differencesOnDisk();
  /// What clients' operations have seen, and the order of all writes. When nothing is held.
  std::string differencesInOrder();

 private:
  struct Queue {
    std::shared_ptr<OperationQueue> real;
    std::shared_ptr<PlainQueue> plain;
    std::unique_ptr<QueueHold> hold;
  };

  Value realFiles() const;
  Value plainFiles() const;
  void watch();

  TemporaryFolder parent_{TemporaryFolder::Volume::kMemory};
  std::string secondFolder_ = parent_.at("second");
  HandClock clock_;
  ScopedClock clockScope_{clock_};
  PlainDisk disk_;
  std::shared_ptr<VWBVectorStorage> real_;
  /// The last is the present one; a queued operation of an earlier one may still ask it where its
  /// page file is.
  std::vector<std::unique_ptr<PlainStorage>> plains_;
  PlainStorage* plain_ = nullptr;
  std::deque<Queue> queues_;  // the present one is the last
  std::shared_ptr<std::vector<Value>> realLooks_ = std::make_shared<std::vector<Value>>();
  std::vector<Value> plainLooks_;
  std::vector<std::string> realLog_;
  std::size_t settled_ = 0;
  std::unique_ptr<FolderLog> folderLog_;
};

}  // namespace VelWhiteBoard
