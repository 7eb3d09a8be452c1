// A page's log and snapshot, read and compared.
#pragma once

#include <memory>
#include <optional>

#include "inspection.h"
#include "log_ledger.h"

namespace board_check {

/// Enters a log into a ledger while it is being read. A log of too many identifiers leaves none.
class LedgerVisitor final : public ListVisitor {
 public:
  void takeRecord(const std::shared_ptr<VelWhiteBoard::Record>& record) override;
  void takeGap() override;

  /// Null for want of memory.
  LogLedger* ledger() { return ledger_ ? &*ledger_ : nullptr; }

 private:
  std::optional<LogLedger> ledger_{std::in_place};
};

/// Judges the entries of a snapshot while it is being read.
class SnapshotJudge final : public ListVisitor {
 public:
  explicit SnapshotJudge(LogLedger& ledger) : ledger_(ledger) {}

  void takeRecord(const std::shared_ptr<VelWhiteBoard::Record>& record) override;

  /// What came of it. Entries that no snapshot told of count for the log, except those whose
  /// removal may have been lost.
  Comparison result() const;

 private:
  LogLedger& ledger_;
  Comparison comparison_;
};

}  // namespace board_check
