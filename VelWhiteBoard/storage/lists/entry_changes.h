/// @file
/// What happens beside every change of a page's entries.
#pragma once

#include <cstddef>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

#include "VelWhiteBoard/storage/lists/change_report.h"
#include "VelWhiteBoard/storage/lists/history.h"
#include "VelWhiteBoard/storage/lists/snap_list.h"
#include "VelWhiteBoard/vectors/strokes.h"

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

/// Told by the rules of everything that they change: saves and batches see entries as they were,
/// and an observer hears of the change.
class EntryChanges {
 public:
  using Report = std::vector<EntryChange>;

  /// @param undo null: what is changed need not be taken back.
  /// @param report null: there is no observer.
  explicit EntryChanges(History& history, BatchUndo* undo = nullptr, Report* report = nullptr)
      : history_(history), undo_(undo), report_(report) {}

  /// To be called before an entry changes. The entry does not change when this throws.
  void aboutToChange(const VectorPtr& entry);

  /// Adds an entry at the end of a list, and notes it.
  void add(const VectorPtr& entry, SnapList& snap);
  /// Has a vector appended to `stroke`, which is `entry`. Answers what is to be noted, for which
  /// there is room; nothing is noted yet.
  EntryChange append(const VelWbBaseVector& vector, const VectorPtr& entry, VelWbVecPoint& stroke) {
    aboutToChange(entry);
    if (report_ != nullptr) return appendReported(vector, entry, stroke);
    stroke.append(vector);
    return {};
  }

  /// Makes room for so many notes, which then need no memory.
  void reserve(std::size_t count) {
    if (report_ != nullptr) reserveReport(count);
  }
  void note(EntryChange&& change) noexcept {
    if (report_ != nullptr) report_->push_back(std::move(change));
  }

 private:
  EntryChange appendReported(const VelWbBaseVector& vector, const VectorPtr& entry,
                             VelWbVecPoint& stroke);
  void reserveReport(std::size_t count);

  History& history_;
  BatchUndo* undo_;
  Report* report_;
};

}  // namespace VelWhiteBoard
