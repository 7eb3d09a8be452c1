/// @file
/// The implementation of `OperationQueue::Operation`.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include "VelWhiteBoard/foundation/queue/mutex.h"
#include "VelWhiteBoard/foundation/queue/operation_queue.h"
#include "VelWhiteBoard/foundation/queue/shared_threads.h"

namespace VelWhiteBoard {

/// A piece of work, and its links in the lists of a queue. The links are part of it, so that
/// adding, starting and removing it allocate nothing.
class OperationQueue::Operation {
 public:
  enum class Stage : std::uint8_t { kNew, kWaiting, kRunning, kGone };

  explicit Operation(std::function<void()>&& block) : work(std::move(block)) {}
  Operation(const Operation&) = delete;
  Operation& operator=(const Operation&) = delete;

  /// Before the operation is added it belongs to the caller, from then on to the running thread.
  std::function<void()> work;

  Stage stage VELWHITEBOARD_GUARDED_BY(SharedThreads::mutex) = Stage::kNew;
  bool isAwaited VELWHITEBOARD_GUARDED_BY(SharedThreads::mutex) = false;  // by the end
  std::uint64_t number VELWHITEBOARD_GUARDED_BY(SharedThreads::mutex) = 0;
  /// Keeps the operation alive while it waits.
  std::shared_ptr<Operation> self VELWHITEBOARD_GUARDED_BY(SharedThreads::mutex);
  /// The queue in which it waits or runs; null before and after.
  QueueState* queue VELWHITEBOARD_GUARDED_BY(SharedThreads::mutex) = nullptr;
  Operation* previous VELWHITEBOARD_GUARDED_BY(SharedThreads::mutex) = nullptr;
  Operation* next VELWHITEBOARD_GUARDED_BY(SharedThreads::mutex) = nullptr;
};

/// Operations in order, linked by themselves. An operation is in at most one list.
class OperationList {
 public:
  using Operation = OperationQueue::Operation;

  bool isEmpty() const { return first_ == nullptr; }
  std::size_t size() const { return size_; }
  /// Null when the list is empty.
  Operation* first() const { return first_; }

  void append(Operation& operation) VELWHITEBOARD_REQUIRES(SharedThreads::mutex) {
    operation.previous = last_;
    operation.next = nullptr;
    (last_ == nullptr ? first_ : last_->next) = &operation;
    last_ = &operation;
    ++size_;
  }

  void remove(Operation& operation) VELWHITEBOARD_REQUIRES(SharedThreads::mutex) {
    (operation.previous == nullptr ? first_ : operation.previous->next) = operation.next;
    (operation.next == nullptr ? last_ : operation.next->previous) = operation.previous;
    --size_;
  }

 private:
  Operation* first_ = nullptr;
  Operation* last_ = nullptr;
  std::size_t size_ = 0;
};

}  // namespace VelWhiteBoard
