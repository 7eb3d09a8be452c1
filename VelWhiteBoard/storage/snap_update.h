/// @file
/// How a vector changes a page's present state.
#pragma once

#include <string>
#include <unordered_map>

#include "VelWhiteBoard/storage/page_list.h"
#include "VelWhiteBoard/storage/page_save.h"

namespace VelWhiteBoard {

/// Identifier -> entry of a snap list.
using SnapQuery = std::unordered_map<std::string, VectorPtr>;

/// Whether the vector's type is one that never stays on a page: "cursor", "camera", "magnifier",
/// "clear" or "remove".
bool isTransient(const VelWbBaseVector& vector);

/// Brings a vector into the current page's state: a transient entry at the tail goes, a vector that
/// continues or edits an entry changes it, commands are carried out, anything else is added. Gives
/// the vector an identifier when it has none, and a line its first position.
void applySaved(const VectorPtr& vector, SnapList& snap, SnapQuery& query, PendingSaves& saves);

/// Brings a vector into the state of a page that is not current. Simpler than `applySaved` on
/// purpose: what continues an entry is always appended, never merged; no index, no identifiers, no
/// transient tail.
void applyAppended(const VectorPtr& vector, SnapList& snap, PendingSaves& saves);

}  // namespace VelWhiteBoard
