#include "VelWhiteBoard/storage/lists/saving_rule.h"

#include <optional>
#include <utility>
#include <vector>

#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/commands.h"
#include "VelWhiteBoard/vectors/strokes.h"
#include "VelWhiteBoard/vectors/vector_defines.h"

namespace VelWhiteBoard {

namespace {

using Kind = EntryChange::Kind;

/// Takes a transient entry from the end of a list, and brings it back unless it is dropped.
class TransientTail {
 public:
  TransientTail(SnapList& snap, EntryChanges& changes) : snap_(snap) {
    if (snap.empty() || !isTransient(*snap.back())) return;
    changes.reserve(1);
    place_ = snap.list().endPlace() - 1;
    tail_ = snap.back();
    snap.pop_back();
    changes.note({Kind::kRemovedTop, tail_});
  }
  ~TransientTail() {
    if (tail_) snap_.undoPop(place_, std::move(tail_));
  }
  TransientTail(const TransientTail&) = delete;
  TransientTail& operator=(const TransientTail&) = delete;

  void drop() noexcept { tail_.reset(); }

 private:
  SnapList& snap_;
  SnapList::Place place_ = 0;
  VectorPtr tail_;
};

/// Whether `vector` was a piece of the stroke that `entry` is, and has been folded into it.
bool continueStroke(const VectorPtr& entry, const VelWbBaseVector& vector, EntryChanges& changes) {
  auto* stroke = recordCast<VelWbVecLine>(entry.get());
  if (stroke == nullptr || recordCast<const VelWbVecPoint>(vector) == nullptr) return false;
  if (entry->ID != vector.ID) return false;
  changes.note(changes.append(vector, entry, *stroke));
  return true;
}

/// Moves a box to the end, where the vector edits it. Entries that are equal to it go.
void editAndMove(const VectorPtr& entry, VelWbVecSquare& box, const VelWbBaseVector& vector,
                 SnapList& snap, EntryChanges& changes) {
  const std::vector<SnapList::Place> equal = snap.findEqual(*entry);
  changes.reserve(equal.size() + 1);
  snap.reserveErase(equal);
  snap.push_back(entry);
  try {
    changes.aboutToChange(entry);
    box.merge(vector);
  } catch (...) {
    snap.undoPush();
    throw;
  }
  bool wasThere = false;
  for (const SnapList::Place place : equal) {
    const VectorPtr& gone = snap.list().at(place);
    if (gone != entry || std::exchange(wasThere, true)) changes.note({Kind::kRemoved, gone});
  }
  changes.note({wasThere ? Kind::kRaised : Kind::kAdded, entry});
  snap.eraseReserved(equal);
}

/// Applies a vector that belongs to `entry`, which the index has under the vector's identifier, and
/// is not a piece of a stroke.
void continueEntry(const VectorPtr& entry, const VelWbBaseVector& vector, SnapList& snap,
                   SnapQuery& query, EntryChanges& changes) {
  const bool vectorIsBox = recordCast<const VelWbVecSquare>(vector) != nullptr;
  if (!snap.empty()) {
    const VectorPtr& last = snap.back();
    if (recordCast<VelWbVecLine>(last.get()) == nullptr && last->ID == vector.ID) {
      if (auto* box = recordCast<VelWbVecSquare>(last.get()); box != nullptr && vectorIsBox) {
        changes.aboutToChange(last);
        changes.reserve(1);
        box->merge(vector);
        changes.note({Kind::kEdited, last});
      }
      query.find(*vector.ID)->second = last;
      return;
    }
  }

  std::optional<QuerySlot> slot;
  if (entry->ID) slot.emplace(query, *entry->ID);
  if (auto* box = recordCast<VelWbVecSquare>(entry.get()); box != nullptr && vectorIsBox) {
    editAndMove(entry, *box, vector, snap, changes);
  } else {
    // The entry has not been taken out and now stands twice. That is the rule: what other
    // participants see must not depend on who compacts the page.
    changes.add(entry, snap);
  }
  if (slot) slot->set(entry);
}

void removeTarget(const VelWbBaseVector& vector, SnapList& snap, SnapQuery& query,
                  EntryChanges& changes) {
  const auto* remove = recordCast<const VelWbVecRemove>(vector);
  if (remove == nullptr || !remove->rmID || !query.contains(*remove->rmID)) return;
  if (const SnapList::Place first = snap.findFirst(*remove->rmID); first != SnapList::kNowhere) {
    const std::vector<SnapList::Place> equal = snap.findEqual(*snap.list().at(first));
    snap.reserveErase(equal);
    changes.reserve(equal.size());
    for (const SnapList::Place place : equal) {
      changes.note({Kind::kRemoved, snap.list().at(place)});
    }
    snap.eraseReserved(equal);
  }
  query.erase(*remove->rmID);
}

void replaceMagnifier(const VectorPtr& vector, SnapList& snap, EntryChanges& changes) {
  std::vector<SnapList::Place> earlier;
  if (const SnapList::Place place = snap.firstMagnifier(); place != SnapList::kNowhere) {
    earlier.push_back(place);
  }
  snap.reserveErase(earlier);
  changes.reserve(2);
  snap.push_back(vector);
  for (const SnapList::Place place : earlier) {
    changes.note({Kind::kRemoved, snap.list().at(place)});
  }
  changes.note({Kind::kAdded, vector});
  snap.eraseReserved(earlier);
}

/// Adds a vector that stays. A line has a path from its first piece on, so that what it grows by is
/// measured against it.
void addEntry(const VectorPtr& vector, SnapList& snap, SnapQuery& query, EntryChanges& changes) {
  Path path;
  auto* line = recordCast<VelWbVecLine>(vector.get());
  const bool needsPath = line != nullptr && !line->path;
  if (needsPath) {
    path.push_back({line->x, line->y, line->ts});
    changes.aboutToChange(vector);
  }
  QuerySlot slot(query, *vector->ID);
  changes.add(vector, snap);
  if (needsPath) line->path = std::move(path);
  slot.set(vector);
}

/// Applies a vector that continues nothing.
void applyNew(const VectorPtr& vector, SnapList& snap, SnapQuery& query, EntryChanges& changes,
              ClearedLists& cleared) {
  if (vector->type == VelWBVectorStrRemove) return removeTarget(*vector, snap, query, changes);
  if (vector->type == VelWBVectorStrClear) {
    changes.reserve(1);
    changes.note({Kind::kCleared, nullptr});
    SnapQuery& clearedQuery = cleared.query.emplace();
    cleared.snap = snap.clear();
    query.swap(clearedQuery);
    return;
  }
  if (vector->type == VelWBVectorStrMagnifier) return replaceMagnifier(vector, snap, changes);
  if (isTransient(*vector)) return changes.add(vector, snap);
  addEntry(vector, snap, query, changes);
}

}  // namespace

bool isTransient(const VelWbBaseVector& vector) {
  const auto& type = vector.type;
  return type == VelWBVectorStrCursor || type == VelWBVectorStrCamera ||
         type == VelWBVectorStrMagnifier || type == VelWBVectorStrClear ||
         type == VelWBVectorStrRemove;
}

void applySaved(const VectorPtr& vector, SnapList& snap, SnapQuery& query, EntryChanges& changes,
                ClearedLists& cleared) {
  snap.ensureIndex();
  TransientTail tail(snap, changes);
  const auto found = isTransient(*vector) ? query.end() : query.find(*vector->ID);
  if (found == query.end()) {
    applyNew(vector, snap, query, changes, cleared);
  } else if (!continueStroke(found->second, *vector, changes)) {
    const VectorPtr entry = found->second;  // its place in the index may be taken by another
    continueEntry(entry, *vector, snap, query, changes);
  }
  tail.drop();
}

}  // namespace VelWhiteBoard
