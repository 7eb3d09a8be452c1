/// @file
/// Telling a storage's observer what an operation has changed.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "VelWhiteBoard/storage/lists/change_report.h"
#include "VelWhiteBoard/storage/lists/entry_changes.h"
#include "VelWhiteBoard/storage/storage_state.h"

namespace VelWhiteBoard {

/// The report of one operation. It tells the observer when it ends, so it must outlive every lock
/// that the operation holds. An operation that fails before `complete` is not reported.
class VWBVectorStorage::State::Reporting {
 public:
  Reporting() = default;
  ~Reporting() {
    if (report_ && report_->number != 0) tell();
  }
  Reporting(const Reporting&) = delete;
  Reporting& operator=(const Reporting&) = delete;

  /// Begins, when there is an observer; otherwise everything below does nothing.
  void begin(const State& state, ChangeReport::Kind kind, const std::string& page, bool isCurrent)
      VELWHITEBOARD_REQUIRES(state.guard);
  /// Where the changes are noted; null without an observer.
  EntryChanges::Report* changes() { return report_ ? &report_->changes : nullptr; }
  /// All has been changed. Entries of which none has changed are not reported.
  void complete(State& state) noexcept VELWHITEBOARD_REQUIRES(state.guard);

 private:
  void tell() const noexcept;

  std::shared_ptr<const ChangeObserver> observer_;
  std::optional<ChangeReport> report_;
};

}  // namespace VelWhiteBoard
