#include "comparing.h"

#include <new>

namespace board_check {

using namespace VelWhiteBoard;

void LedgerVisitor::takeRecord(const std::shared_ptr<Record>& record) {
  const auto* vector = recordCast<const VelWbBaseVector>(record.get());
  if (vector == nullptr || !ledger_) return;
  try {
    ledger_->addRecord(*vector);
  } catch (const std::bad_alloc&) {
    ledger_.reset();
  }
}

void LedgerVisitor::takeGap() {
  if (ledger_) ledger_->addGap();
}

void SnapshotJudge::takeRecord(const std::shared_ptr<Record>& record) {
  const auto* entry = recordCast<const VelWbBaseVector>(record.get());
  if (entry == nullptr) return;
  if (ledger_.judge(*entry) != Ahead::kSnapshot) return;
  if (comparison_.snapshotIsAhead++ == 0) comparison_.exampleOfSnapshot = *entry->ID;
}

Comparison SnapshotJudge::result() const {
  Comparison all = comparison_;
  ledger_.forEachUnmatched([&all](const LogLedger::Unmatched& unmatched) {
    if (unmatched.mayBeRemoved) return;
    if (all.logIsAhead++ == 0) all.exampleOfLog = unmatched.ID;
  });
  return all;
}

}  // namespace board_check
