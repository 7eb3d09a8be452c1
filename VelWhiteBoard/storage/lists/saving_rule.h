/// @file
/// The rule for a vector that is saved on the current page: does it continue an entry?
#pragma once

#include <optional>

#include "VelWhiteBoard/storage/lists/entry_changes.h"
#include "VelWhiteBoard/storage/lists/snap_list.h"
#include "VelWhiteBoard/storage/lists/snap_query.h"

namespace VelWhiteBoard {

/// Whether the vector's type is one that never stays on a page: "cursor", "camera", "magnifier",
/// "clear" or "remove".
bool isTransient(const VelWbBaseVector& vector);

/// What a clear takes away; it may be long, so drop it without the guard.
struct ClearedLists {
  SnapList::Contents snap;
  std::optional<SnapQuery> query;
};

/// Brings a vector, which must have an identifier, into the current page's state: a transient entry
/// at the tail goes, a vector that continues or edits an entry changes it, commands are carried
/// out, anything else is added. Gives a line its first position.
///
/// When it throws `std::bad_alloc`, nothing has changed.
void applySaved(const VectorPtr& vector, SnapList& snap, SnapQuery& query, EntryChanges& changes,
                ClearedLists& cleared);

}  // namespace VelWhiteBoard
