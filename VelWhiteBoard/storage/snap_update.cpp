#include "VelWhiteBoard/storage/snap_update.h"

#include "VelWhiteBoard/services/vector_manager.h"
#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/commands.h"
#include "VelWhiteBoard/vectors/strokes.h"
#include "VelWhiteBoard/vectors/vector_defines.h"

namespace VelWhiteBoard {

namespace {

/// Whether `vector` was a piece of the stroke that `entry` is, and has been folded into it.
bool continueStroke(const VectorPtr& entry, const VelWbBaseVector& vector, PendingSaves& saves) {
  auto* stroke = recordCast<VelWbVecLine>(entry.get());
  if (stroke == nullptr || recordCast<const VelWbVecPoint>(vector) == nullptr) return false;
  if (entry->ID != vector.ID) return false;
  saves.aboutToChange(entry);
  stroke->append(vector);
  return true;
}

/// Applies a saved vector that belongs to `entry`, which the index has under the vector's
/// identifier, and is no piece of a stroke.
void continueEntry(const VectorPtr& entry, const VectorPtr& vector, SnapList& snap,
                   SnapQuery& query, PendingSaves& saves) {
  const bool vectorIsBox = recordCast<VelWbVecSquare>(vector.get()) != nullptr;
  if (!snap.empty()) {
    const VectorPtr& last = snap.back();
    if (recordCast<VelWbVecLine>(last.get()) == nullptr && last->ID == vector->ID) {
      if (auto* box = recordCast<VelWbVecSquare>(last.get()); box != nullptr && vectorIsBox) {
        saves.aboutToChange(last);
        box->merge(*vector);
      }
      query[*vector->ID] = last;
      return;
    }
  }

  if (auto* box = recordCast<VelWbVecSquare>(entry.get()); box != nullptr && vectorIsBox) {
    snap.eraseEqual(*entry);
    saves.aboutToChange(entry);
    box->merge(*vector);
  }
  // When one of the two is no box, the entry has not been taken out and now stands twice. That is
  // the rule: what other participants see must not depend on who compacts the page.
  snap.push_back(entry);
  if (entry->ID) query[*entry->ID] = entry;
}

void removeTarget(const VectorPtr& vector, SnapList& snap, SnapQuery& query) {
  const auto* remove = recordCast<VelWbVecRemove>(vector.get());
  if (remove == nullptr || !remove->rmID || !query.contains(*remove->rmID)) return;
  const SnapList::Place first = snap.findFirst(*remove->rmID);
  if (first != SnapList::kNowhere) {
    const VectorPtr target = snap.list().at(first);
    snap.eraseEqual(*target);
  }
  query.erase(*remove->rmID);
}

void replaceMagnifier(const VectorPtr& vector, SnapList& snap) {
  const PageList& list = snap.list();
  for (SnapList::Place place = 0; place < list.endPlace(); ++place) {
    if (list.at(place) && list.at(place)->type == VelWBVectorStrMagnifier) {
      snap.erase(place);
      break;
    }
  }
  snap.push_back(vector);
}

/// A line has a path from its first piece on, so that what it grows by is measured against it.
void givePath(const VectorPtr& vector, PendingSaves& saves) {
  auto* line = recordCast<VelWbVecLine>(vector.get());
  if (line == nullptr || line->path) return;
  saves.aboutToChange(vector);
  line->path.emplace().push_back({line->x, line->y, line->ts});
}

/// Applies a saved vector that continues nothing.
void applyNew(const VectorPtr& vector, SnapList& snap, SnapQuery& query, PendingSaves& saves) {
  if (vector->type == VelWBVectorStrRemove) return removeTarget(vector, snap, query);
  if (vector->type == VelWBVectorStrClear) {
    snap.clear();
    query.clear();
    return;
  }
  if (vector->type == VelWBVectorStrMagnifier) return replaceMagnifier(vector, snap);
  if (isTransient(*vector)) return snap.push_back(vector);
  givePath(vector, saves);
  snap.push_back(vector);
  query[*vector->ID] = vector;
}

}  // namespace

bool isTransient(const VelWbBaseVector& vector) {
  const auto& type = vector.type;
  return type == VelWBVectorStrCursor || type == VelWBVectorStrCamera ||
         type == VelWBVectorStrMagnifier || type == VelWBVectorStrClear ||
         type == VelWBVectorStrRemove;
}

void applySaved(const VectorPtr& vector, SnapList& snap, SnapQuery& query, PendingSaves& saves) {
  if (!snap.empty() && isTransient(*snap.back())) snap.pop_back();
  if (!vector->ID) {
    saves.aboutToChange(vector);
    vector->ID = VelWbVectorManager::shareManager().genID();
    snap.hasBeenNamed(*vector);  // before anything below looks for it
  }
  if (!isTransient(*vector)) {
    const auto found = query.find(*vector->ID);
    if (found != query.end()) {
      if (continueStroke(found->second, *vector, saves)) return;
      const VectorPtr entry = found->second;  // its place in the index may be taken by another
      return continueEntry(entry, vector, snap, query, saves);
    }
  }
  applyNew(vector, snap, query, saves);
}

void applyAppended(const VectorPtr& vector, SnapList& snap, PendingSaves& saves) {
  const auto lastEntry = [&] {
    return vector->ID ? snap.findLast(*vector->ID) : SnapList::kNowhere;
  };
  const auto append = [&](const VectorPtr& entry) {
    auto* positioned = recordCast<VelWbVecPoint>(entry.get());
    if (positioned == nullptr) return false;
    saves.aboutToChange(entry);
    positioned->append(*vector);
    return true;
  };

  if (recordCast<VelWbVecLine>(vector.get()) != nullptr) {
    const SnapList::Place place = lastEntry();
    if (place == SnapList::kNowhere) return snap.push_back(vector);
    append(snap.list().at(place));  // an entry without a position stays as it is
    return;
  }
  if (vector->type == VelWBVectorStrRemove) {
    const auto* remove = recordCast<VelWbVecRemove>(vector.get());
    if (remove == nullptr || !remove->rmID) return;
    const SnapList::Place first = snap.findFirst(*remove->rmID);
    if (first != SnapList::kNowhere) snap.erase(first);
    return;
  }
  if (vector->type == VelWBVectorStrClear) return snap.clear();
  if (!vector->ID || isTransient(*vector)) return;

  const SnapList::Place place = lastEntry();
  if (place != SnapList::kNowhere && recordCast<VelWbVecPoint>(vector.get()) != nullptr) {
    const VectorPtr entry = snap.list().at(place);
    if (append(entry)) {
      snap.erase(place);
      return snap.push_back(entry);
    }
  }
  snap.push_back(vector);
}

}  // namespace VelWhiteBoard
