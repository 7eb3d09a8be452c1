/// @file
/// The rule for vectors that are appended to a page that is not current.
#pragma once

#include <memory>
#include <unordered_map>

#include "VelWhiteBoard/storage/lists/history.h"
#include "VelWhiteBoard/storage/lists/snap_list.h"

namespace VelWhiteBoard {

/// Keeps the entries of a page as they are before a batch changes them, so that a batch that fails
/// can be taken back.
class BatchUndo {
 public:
  /// To be called before an entry changes.
  void keep(const VectorPtr& entry);
  /// Brings every entry back to what it was.
  void restore(History& history) noexcept;

 private:
  struct Kept {
    VectorPtr entry;
    std::shared_ptr<VelWbBaseVector> copy;
  };
  std::unordered_map<const VelWbBaseVector*, Kept> kept_;
};

/// Brings a vector into the state of a page that is not current. Simpler than `applySaved` on
/// purpose: what continues an entry is always appended, never merged; no index by identifier, no
/// identifiers, no transient tail.
/// @param cleared gets what a clear takes away; it may be long, so drop it without the guard.
void applyAppended(const VectorPtr& vector, SnapList& snap, History& history, BatchUndo& undo,
                   SnapList::Contents& cleared);

}  // namespace VelWhiteBoard
