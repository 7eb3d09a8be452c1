/// @file
/// Filing many vectors under a page that is not current.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "VelWhiteBoard/storage/lists/batch_query.h"
#include "VelWhiteBoard/storage/lists/saving_rule.h"
#include "VelWhiteBoard/storage/reporting.h"
#include "VelWhiteBoard/storage/storage_state.h"

namespace VelWhiteBoard {

/// How many vectors of a batch are applied before others get their turn: some 0.1 milliseconds.
inline constexpr std::size_t kVectorsAtATime = 256;

/// A batch of vectors for one page that is not current.
class VWBVectorStorage::State::Batch {
 public:
  Batch(State& state, const VelWbVecSwitchPage& page, BatchRule rule)
      : state_(state), page_(page), rule_(rule), key_(page.pageInfo()) {}
  ~Batch();
  Batch(const Batch&) = delete;
  Batch& operator=(const Batch&) = delete;

  /// Applies all vectors and queues the page's files. False, and nothing done, when the page is
  /// current. When it throws, nothing has been done either.
  bool append(std::span<const VectorPtr> vectors);

 private:
  /// Waits for the turn of this batch. Until it ends, no other batch is appended to the page, and
  /// the page is neither made current nor cleared.
  void begin() VELWHITEBOARD_EXCLUDES(state_.guard);
  void end() noexcept VELWHITEBOARD_EXCLUDES(state_.guard);
  /// Reads what is not cached, and begins; once more when the page was cleared in between.
  ReadPage readAndBegin() VELWHITEBOARD_EXCLUDES(state_.guard);
  void applySome(std::span<const VectorPtr>& rest, CachedPage& page, ClearedLists& cleared)
      VELWHITEBOARD_REQUIRES(state_.guard);
  void apply(const VectorPtr& vector, SnapList& snap, ClearedLists& cleared)
      VELWHITEBOARD_REQUIRES(state_.guard);
  void undo(CachedPage& page) noexcept VELWHITEBOARD_REQUIRES(state_.guard);

  State& state_;
  const VelWbVecSwitchPage& page_;
  const BatchRule rule_;
  const std::string key_;
  Reporting reporting_;
  BatchUndo undo_;
  BatchQuery query_;
  /// A vector that stood on a page without an identifier and was given one; null before that.
  VectorPtr named_;
  /// The lists as they were before the batch; absent before the batch has begun.
  std::optional<SharedVectorList> snapBefore_;
  std::optional<WholeList> wholeBefore_;
  /// Which of them the page had before it was read for the batch.
  bool hadSnap_ = false;
  bool hadWhole_ = false;
  bool hasBegun_ = false;
};

}  // namespace VelWhiteBoard
