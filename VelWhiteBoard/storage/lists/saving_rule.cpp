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

/// Takes a transient entry from the end of a list, and brings it back unless it is dropped.
class TransientTail {
 public:
  explicit TransientTail(SnapList& snap) : snap_(snap) {
    if (snap.empty() || !isTransient(*snap.back())) return;
    place_ = snap.list().endPlace() - 1;
    tail_ = snap.back();
    snap.pop_back();
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
bool continueStroke(const VectorPtr& entry, const VelWbBaseVector& vector, History& history) {
  auto* stroke = recordCast<VelWbVecLine>(entry.get());
  if (stroke == nullptr || recordCast<const VelWbVecPoint>(vector) == nullptr) return false;
  if (entry->ID != vector.ID) return false;
  history.aboutToChange(entry);
  stroke->append(vector);
  return true;
}

/// Moves a box to the end, where the vector edits it. Entries that are equal to it go.
void editAndMove(const VectorPtr& entry, VelWbVecSquare& box, const VelWbBaseVector& vector,
                 SnapList& snap, History& history) {
  const std::vector<SnapList::Place> equal = snap.findEqual(*entry);
  snap.reserveErase(equal);
  snap.push_back(entry);
  try {
    history.aboutToChange(entry);
    box.merge(vector);
  } catch (...) {
    snap.undoPush();
    throw;
  }
  snap.eraseReserved(equal);
}

/// Applies a vector that belongs to `entry`, which the index has under the vector's identifier, and
/// is not a piece of a stroke.
void continueEntry(const VectorPtr& entry, const VelWbBaseVector& vector, SnapList& snap,
                   SnapQuery& query, History& history) {
  const bool vectorIsBox = recordCast<const VelWbVecSquare>(vector) != nullptr;
  if (!snap.empty()) {
    const VectorPtr& last = snap.back();
    if (recordCast<VelWbVecLine>(last.get()) == nullptr && last->ID == vector.ID) {
      if (auto* box = recordCast<VelWbVecSquare>(last.get()); box != nullptr && vectorIsBox) {
        history.aboutToChange(last);
        box->merge(vector);
      }
      query.find(*vector.ID)->second = last;
      return;
    }
  }

  std::optional<QuerySlot> slot;
  if (entry->ID) slot.emplace(query, *entry->ID);
  if (auto* box = recordCast<VelWbVecSquare>(entry.get()); box != nullptr && vectorIsBox) {
    editAndMove(entry, *box, vector, snap, history);
  } else {
    // The entry has not been taken out and now stands twice. That is the rule: what other
    // participants see must not depend on who compacts the page.
    snap.push_back(entry);
  }
  if (slot) slot->set(entry);
}

void removeTarget(const VelWbBaseVector& vector, SnapList& snap, SnapQuery& query) {
  const auto* remove = recordCast<const VelWbVecRemove>(vector);
  if (remove == nullptr || !remove->rmID || !query.contains(*remove->rmID)) return;
  if (const SnapList::Place first = snap.findFirst(*remove->rmID); first != SnapList::kNowhere) {
    const std::vector<SnapList::Place> equal = snap.findEqual(*snap.list().at(first));
    snap.reserveErase(equal);
    snap.eraseReserved(equal);
  }
  query.erase(*remove->rmID);
}

void replaceMagnifier(const VectorPtr& vector, SnapList& snap) {
  std::vector<SnapList::Place> earlier;
  if (const SnapList::Place place = snap.firstMagnifier(); place != SnapList::kNowhere) {
    earlier.push_back(place);
  }
  snap.reserveErase(earlier);
  snap.push_back(vector);
  snap.eraseReserved(earlier);
}

/// Adds a vector that stays. A line has a path from its first piece on, so that what it grows by is
/// measured against it.
void addEntry(const VectorPtr& vector, SnapList& snap, SnapQuery& query, History& history) {
  Path path;
  auto* line = recordCast<VelWbVecLine>(vector.get());
  const bool needsPath = line != nullptr && !line->path;
  if (needsPath) {
    path.push_back({line->x, line->y, line->ts});
    history.aboutToChange(vector);
  }
  QuerySlot slot(query, *vector->ID);
  snap.push_back(vector);
  if (needsPath) line->path = std::move(path);
  slot.set(vector);
}

/// Applies a vector that continues nothing.
void applyNew(const VectorPtr& vector, SnapList& snap, SnapQuery& query, History& history,
              ClearedLists& cleared) {
  if (vector->type == VelWBVectorStrRemove) return removeTarget(*vector, snap, query);
  if (vector->type == VelWBVectorStrClear) {
    cleared.snap = snap.clear();
    std::swap(cleared.query, query);
    query.clear();
    return;
  }
  if (vector->type == VelWBVectorStrMagnifier) return replaceMagnifier(vector, snap);
  if (isTransient(*vector)) return snap.push_back(vector);
  addEntry(vector, snap, query, history);
}

}  // namespace

bool isTransient(const VelWbBaseVector& vector) {
  const auto& type = vector.type;
  return type == VelWBVectorStrCursor || type == VelWBVectorStrCamera ||
         type == VelWBVectorStrMagnifier || type == VelWBVectorStrClear ||
         type == VelWBVectorStrRemove;
}

void applySaved(const VectorPtr& vector, SnapList& snap, SnapQuery& query, History& history,
                ClearedLists& cleared) {
  snap.ensureIndex();
  TransientTail tail(snap);
  const auto found = isTransient(*vector) ? query.end() : query.find(*vector->ID);
  if (found == query.end()) {
    applyNew(vector, snap, query, history, cleared);
  } else if (!continueStroke(found->second, *vector, history)) {
    const VectorPtr entry = found->second;  // its place in the index may be taken by another
    continueEntry(entry, *vector, snap, query, history);
  }
  tail.drop();
}

}  // namespace VelWhiteBoard
