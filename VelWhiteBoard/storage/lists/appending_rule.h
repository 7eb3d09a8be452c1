/// @file
/// The rule for vectors that are appended to a page that is not current.
#pragma once

#include "VelWhiteBoard/storage/lists/entry_changes.h"
#include "VelWhiteBoard/storage/lists/snap_list.h"

namespace VelWhiteBoard {

/// Brings a vector into the state of a page that is not current. Simpler than `applySaved` on
/// purpose: what continues an entry is always appended, never merged; no index by identifier, no
/// identifiers, no transient tail.
/// @param cleared gets what a clear takes away; it may be long, so drop it without the guard.
void applyAppended(const VectorPtr& vector, SnapList& snap, EntryChanges& changes,
                   SnapList::Contents& cleared);

}  // namespace VelWhiteBoard
