#include "VelWhiteBoard/storage/lists/entry_changes.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <tuple>

namespace VelWhiteBoard {

namespace {

/// What all of a line is drawn with.
using Look = std::tuple<bool, std::int64_t, std::int64_t, std::int64_t>;

Look lookOf(const VelWbVecLine& line) {
  return {line.offset.has_value(), line.pixel, line.ps, line.widthIndex};
}

}  // namespace

void BatchUndo::keep(const VectorPtr& entry) {
  if (kept_.contains(entry.get())) return;
  kept_.emplace(entry.get(), Kept{entry, entry->copyWithZone()});
}

void BatchUndo::restore(History& history) noexcept {
  history.whileNothingIsCopied([this]() noexcept {
    for (auto& [address, kept] : kept_) kept.entry->takeContents(*kept.copy);
  });
  kept_.clear();
}

void EntryChanges::aboutToChange(const VectorPtr& entry) {
  if (undo_ != nullptr) undo_->keep(entry);
  history_.aboutToChange(entry);
}

void EntryChanges::reserveReport(std::size_t count) {
  const std::size_t needed = report_->size() + count;
  if (needed > report_->capacity()) report_->reserve(std::max(needed, 2 * report_->capacity()));
}

void EntryChanges::add(const VectorPtr& entry, SnapList& snap) {
  reserve(1);
  snap.push_back(entry);
  note({EntryChange::Kind::kAdded, entry});
}

EntryChange EntryChanges::appendReported(const VelWbBaseVector& vector, const VectorPtr& entry,
                                         VelWbVecPoint& stroke) {
  reserveReport(1);
  const auto* line = recordCast<const VelWbVecLine>(stroke);
  const auto* piece = recordCast<const VelWbVecLine>(vector);
  const bool moves = piece != nullptr && piece->offset.has_value();
  const std::optional<Look> before =
      line == nullptr || moves ? std::nullopt : std::optional(lookOf(*line));
  // Without a path, the stroke's own position is about to become the first one of its path.
  const std::size_t firstNew = stroke.path ? stroke.path->size() : 1;
  stroke.append(vector);
  if (before && *before == lookOf(*line)) {
    return {EntryChange::Kind::kExtended, entry, firstNew};
  }
  return {EntryChange::Kind::kEdited, entry, 0};
}

}  // namespace VelWhiteBoard
