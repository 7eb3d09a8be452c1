#include "VelWhiteBoard/storage/lists/appending_rule.h"

#include <vector>

#include "VelWhiteBoard/storage/lists/saving_rule.h"
#include "VelWhiteBoard/vectors/commands.h"
#include "VelWhiteBoard/vectors/strokes.h"
#include "VelWhiteBoard/vectors/vector_defines.h"

namespace VelWhiteBoard {

namespace {

/// Whether `entry` has a position, so that `vector` has been appended to it.
bool appendTo(const VectorPtr& entry, const VelWbBaseVector& vector, History& history,
              BatchUndo& undo) {
  auto* positioned = recordCast<VelWbVecPoint>(entry.get());
  if (positioned == nullptr) return false;
  undo.keep(entry);
  history.aboutToChange(entry);
  positioned->append(vector);
  return true;
}

void erase(SnapList& snap, SnapList::Place place) {
  const std::vector<SnapList::Place> places{place};
  snap.reserveErase(places);
  snap.eraseReserved(places);
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

void applyAppended(const VectorPtr& vector, SnapList& snap, History& history, BatchUndo& undo,
                   SnapList::Contents& cleared) {
  const auto lastEntry = [&] {
    return vector->ID ? snap.findLast(*vector->ID) : SnapList::kNowhere;
  };

  if (recordCast<VelWbVecLine>(vector.get()) != nullptr) {
    const SnapList::Place place = lastEntry();
    if (place == SnapList::kNowhere) return snap.push_back(vector);
    appendTo(snap.list().at(place), *vector, history,
             undo);  // without a position it stays as it is
    return;
  }
  if (vector->type == VelWBVectorStrRemove) {
    const auto* remove = recordCast<VelWbVecRemove>(vector.get());
    if (remove == nullptr || !remove->rmID) return;
    const SnapList::Place first = snap.findFirst(*remove->rmID);
    if (first != SnapList::kNowhere) erase(snap, first);
    return;
  }
  if (vector->type == VelWBVectorStrClear) {
    cleared = snap.clear();
    return;
  }
  if (!vector->ID || isTransient(*vector)) return;

  const SnapList::Place place = lastEntry();
  if (place == SnapList::kNowhere || recordCast<VelWbVecPoint>(vector.get()) == nullptr) {
    return snap.push_back(vector);
  }
  const VectorPtr entry = snap.list().at(place);
  if (!appendTo(entry, *vector, history, undo)) return snap.push_back(vector);
  snap.push_back(entry);
  erase(snap, place);
}

}  // namespace VelWhiteBoard
