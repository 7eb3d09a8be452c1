/// @file
/// The entries of a page that is not current, by identifier.
#pragma once

#include <optional>
#include <string>
#include <unordered_set>

#include "VelWhiteBoard/storage/lists/snap_list.h"
#include "VelWhiteBoard/storage/lists/snap_query.h"

namespace VelWhiteBoard {

/// The query that a page would have if it had been made current just before a batch: each
/// identifier leads to the last entry that had it then. Only the identifiers that the batch has to
/// do with are looked up, because a page is long and a batch is short.
class BatchQuery {
 public:
  /// Looks up what `vector` has to do with. To be called before the vector is applied to `snap`.
  void prepare(const VelWbBaseVector& vector, const SnapList& snap);

  SnapQuery& query() noexcept { return query_; }

 private:
  void lookUp(const std::optional<std::string>& identifier, const SnapList& snap);

  SnapQuery query_;
  std::unordered_set<std::string> known_;
};

}  // namespace VelWhiteBoard
