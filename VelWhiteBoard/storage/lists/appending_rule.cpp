#include "VelWhiteBoard/storage/lists/appending_rule.h"

#include <utility>
#include <vector>

#include "VelWhiteBoard/storage/lists/saving_rule.h"
#include "VelWhiteBoard/vectors/commands.h"
#include "VelWhiteBoard/vectors/strokes.h"
#include "VelWhiteBoard/vectors/vector_defines.h"

namespace VelWhiteBoard {

namespace {

using Kind = EntryChange::Kind;

void erase(SnapList& snap, SnapList::Place place) {
  const std::vector<SnapList::Place> places{place};
  snap.reserveErase(places);
  snap.eraseReserved(places);
}

/// Carries out a remove: the first entry with the identifier goes.
void removeTarget(const VelWbBaseVector& vector, SnapList& snap, EntryChanges& changes) {
  const auto* remove = recordCast<const VelWbVecRemove>(vector);
  if (remove == nullptr || !remove->rmID) return;
  const SnapList::Place first = snap.findFirst(*remove->rmID);
  if (first == SnapList::kNowhere) return;
  changes.reserve(1);
  changes.note({Kind::kRemoved, snap.list().at(first)});
  erase(snap, first);
}

/// Appends a line to the entry at `place`; without a position that entry stays as it is.
void continueLine(const VelWbBaseVector& vector, const VectorPtr& entry, EntryChanges& changes) {
  auto* positioned = recordCast<VelWbVecPoint>(entry.get());
  if (positioned != nullptr) changes.note(changes.append(vector, entry, *positioned));
}

}  // namespace

void applyAppended(const VectorPtr& vector, SnapList& snap, EntryChanges& changes,
                   SnapList::Contents& cleared) {
  const auto lastEntry = [&] {
    return vector->ID ? snap.findLast(*vector->ID) : SnapList::kNowhere;
  };

  if (recordCast<VelWbVecLine>(vector.get()) != nullptr) {
    const SnapList::Place place = lastEntry();
    if (place == SnapList::kNowhere) return changes.add(vector, snap);
    return continueLine(*vector, snap.list().at(place), changes);
  }
  if (vector->type == VelWBVectorStrRemove) return removeTarget(*vector, snap, changes);
  if (vector->type == VelWBVectorStrClear) {
    changes.reserve(1);
    changes.note({Kind::kCleared, nullptr});
    cleared = snap.clear();
    return;
  }
  if (!vector->ID || isTransient(*vector)) return;

  const SnapList::Place place = lastEntry();
  if (place == SnapList::kNowhere || recordCast<VelWbVecPoint>(vector.get()) == nullptr) {
    return changes.add(vector, snap);
  }
  const VectorPtr entry = snap.list().at(place);
  auto* positioned = recordCast<VelWbVecPoint>(entry.get());
  if (positioned == nullptr) return changes.add(vector, snap);
  EntryChange appended = changes.append(*vector, entry, *positioned);
  appended.kind = Kind::kRaised;
  appended.firstNew = 0;
  changes.note(std::move(appended));
  snap.push_back(entry);
  erase(snap, place);
}

}  // namespace VelWhiteBoard
