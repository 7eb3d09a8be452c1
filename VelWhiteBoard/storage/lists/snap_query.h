/// @file
/// The current page's entries by identifier.
#pragma once

#include <string>
#include <tuple>
#include <unordered_map>

#include "VelWhiteBoard/vectors/base_vector.h"

namespace VelWhiteBoard {

/// Identifier -> entry of a snap list.
using SnapQuery = std::unordered_map<std::string, VectorPtr>;

/// Makes setting one entry of a query an operation that cannot fail.
class QuerySlot {
 public:
  QuerySlot(SnapQuery& query, const std::string& identifier) : query_(query) {
    std::tie(slot_, isNew_) = query.try_emplace(identifier);
  }
  /// Takes a slot out again that nothing was set in.
  ~QuerySlot() {
    if (isNew_) query_.erase(slot_);
  }
  QuerySlot(const QuerySlot&) = delete;
  QuerySlot& operator=(const QuerySlot&) = delete;

  void set(const VectorPtr& entry) noexcept {
    slot_->second = entry;
    isNew_ = false;
  }

 private:
  SnapQuery& query_;
  SnapQuery::iterator slot_;
  bool isNew_ = false;
};

}  // namespace VelWhiteBoard
