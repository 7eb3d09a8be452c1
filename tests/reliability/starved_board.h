/// @file
/// A board with old pages on which an operation is tried while memory runs out.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "VelWhiteBoard/foundation/values/clock.h"
#include "VelWhiteBoard/storage/vector_storage.h"

#include "tests/reliability/board_on_disk.h"
#include "tests/support/storage_story.h"

namespace VelWhiteBoard {

/// A copy of one and the same old board, opened. Copies that are treated alike end alike: time
/// stands still.
///
/// Pages 1_1, 1_2 and 1_3 have files; nothing of them has been read yet.
class StarvedBoard {
 public:
  StarvedBoard();
  ~StarvedBoard();
  StarvedBoard(const StarvedBoard&) = delete;
  StarvedBoard& operator=(const StarvedBoard&) = delete;

  VWBVectorStorage& operator*() const { return *storage_; }
  VWBVectorStorage* operator->() const { return storage_.get(); }
  const BoardOnDisk& disk() const { return disk_; }

  void open() { storage_ = disk_.open(); }
  void show(std::uint64_t number) { storage_->switchPage(pageOf(number)); }
  void holdQueue() { hold_.emplace(storage_->saveQueue()); }
  void letGoOfQueue() { hold_.reset(); }

  /// Makes a vector for the operation before memory runs out.
  template <class Vector>
  void hand(const std::shared_ptr<Vector>& vector) {
    hands_.push_back(vector);
  }
  const VectorList& hands() const { return hands_; }
  void handPage(std::uint64_t number) { page_ = pageOf(number); }
  const std::shared_ptr<VelWbVecSwitchPage>& page() const { return page_; }

  /// What the storage's getters tell, and what became of the vectors at hand.
  Value state() const;

  /// What has been on the disk from the start, but for the pages that `cleared` names, and
  /// everything that is in memory now must be on the disk once all has been written.
  void expectNothingLost(const Names& cleared);

 private:
  std::shared_ptr<VelWbVecSwitchPage> pageOf(std::uint64_t number);

  BoardOnDisk disk_;
  std::shared_ptr<VWBVectorStorage> storage_;
  std::optional<QueueHold> hold_;
  VectorList hands_;
  std::shared_ptr<VelWbVecSwitchPage> page_;
  double time_ = 100;
};

}  // namespace VelWhiteBoard
