/// @file
/// A page's whole list.
#pragma once

#include <memory>
#include <utility>

#include "VelWhiteBoard/storage/files/undecoded_log.h"
#include "VelWhiteBoard/storage/lists/shared_vector_list.h"

namespace VelWhiteBoard {

/// A page's whole list: what its file held, and what has come since. A copy costs next to nothing,
/// like that of a SharedVectorList.
///
/// Threads: not synchronised; distinct logs, copies included, may be used from distinct threads.
class WholeList {
 public:
  WholeList() = default;
  explicit WholeList(SharedVectorList vectors) : since_(std::move(vectors)) {}
  explicit WholeList(std::shared_ptr<UndecodedLog> unread) : unread_(std::move(unread)) {}

  /// Makes room for one vector: the next `pushReserved` needs no memory.
  void reserveBack() { since_.reserveBack(); }
  void pushReserved(const VectorPtr& vector) noexcept { since_.pushReserved(vector); }
  void push_back(const VectorPtr& vector) { since_.push_back(vector); }

  /// The vectors of the file; may have to make them.
  SharedVectorList before() const { return unread_ ? unread_->list() : SharedVectorList(); }
  /// The vectors that have come since.
  const SharedVectorList& since() const { return since_; }
  /// What still may have to be made into vectors; null when the page had no log.
  const std::shared_ptr<UndecodedLog>& unread() const { return unread_; }

  /// All vectors; may have to make those of the file.
  VectorList vectors() const {
    VectorList vectors = before().vectors();
    vectors.reserve(vectors.size() + since_.size());
    since_.forEach([&vectors](const VectorPtr& vector) { vectors.push_back(vector); });
    return vectors;
  }

 private:
  std::shared_ptr<UndecodedLog> unread_;
  SharedVectorList since_;
};

}  // namespace VelWhiteBoard
