#include "VelWhiteBoard/storage/lists/batch_query.h"

#include "VelWhiteBoard/storage/lists/saving_rule.h"
#include "VelWhiteBoard/vectors/commands.h"

namespace VelWhiteBoard {

void BatchQuery::prepare(const VelWbBaseVector& vector, const SnapList& snap) {
  lookUp(vector.ID, snap);
  if (const auto* remove = recordCast<const VelWbVecRemove>(vector)) lookUp(remove->rmID, snap);
  // These entries may go, and a query goes on leading to a transient entry that has gone.
  if (!snap.empty() && isTransient(*snap.back())) lookUp(snap.back()->ID, snap);
  if (const SnapList::Place place = snap.firstMagnifier(); place != SnapList::kNowhere) {
    lookUp(snap.list().at(place)->ID, snap);
  }
}

void BatchQuery::lookUp(const std::optional<std::string>& identifier, const SnapList& snap) {
  if (!identifier || !known_.insert(*identifier).second) return;
  const SnapList::Place place = snap.findLast(*identifier);
  if (place != SnapList::kNowhere) query_[*identifier] = snap.list().at(place);
}

}  // namespace VelWhiteBoard
