/// @file
/// What a storage tells a client about its pages: which entries have changed, and how.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "VelWhiteBoard/vectors/base_vector.h"

namespace VelWhiteBoard {

/// @addtogroup reports
/// @{

/// One change of a page's snap list. A client that applies the changes of all reports in their
/// order to a copy of the list has the list.
struct EntryChange {
  /// What has happened to the entry.
  enum class Kind {
    kAdded,       ///< `entry` is new and lies on top
    kExtended,    ///< `entry`, a stroke, has grown: the positions of its `path` from `firstNew` on
    kEdited,      ///< `entry` looks different and lies where it lay
    kRaised,      ///< `entry` may look different; its last occurrence has moved to the top
    kRemoved,     ///< the first occurrence of `entry` is gone
    kRemovedTop,  ///< `entry`, which lay on top, is gone: its type is one that never stays
    kCleared,     ///< all entries are gone; `entry` is null
  };

  Kind kind = Kind::kCleared;  ///< What has happened to `entry`.
  /// The storage's own record. It is as it is now, which later changes of the same report may have
  /// brought about, or vectors that other threads save meanwhile.
  VectorPtr entry;
  /// For `kExtended` an index into `path`, otherwise 0. The new piece of the stroke begins at the
  /// position before it, if there is one.
  std::size_t firstNew = 0;
};

/// What one operation has changed.
struct ChangeReport {
  /// How much has changed.
  enum class Kind {
    kEntries,   ///< entries of one page, as `changes` says
    kSwitched,  ///< another page is current: all of it is to be drawn
    kReloaded,  ///< `reload` or `clear`: no list is in memory any more
  };

  Kind kind = Kind::kEntries;  ///< How much has changed.
  /// 1 for a storage's first report, one more for each that follows, in the order of the changes.
  /// Reports of several threads may arrive in another order.
  std::uint64_t number = 0;
  /// The key of the page, `pageInfo()`; of the current page when the board was reloaded.
  std::string page;
  /// Whether that page was current.
  bool isCurrent = false;
  /// For `kEntries` the changes, in their order; otherwise none.
  std::vector<EntryChange> changes;
};

/// Told of every report, on the thread that called the operation and before it returns, while no
/// lock of the storage is held: the observer may call the storage. What it throws is dropped.
using ChangeObserver = std::function<void(const ChangeReport& report)>;

/// @}

}  // namespace VelWhiteBoard
