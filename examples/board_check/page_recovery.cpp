#include "page_recovery.h"

#include <new>
#include <ostream>

#include "VelWhiteBoard/vectors/base_vector.h"
#include "VelWhiteBoard/vectors/commands.h"

#include "comparing.h"
#include "file_name.h"
#include "new_list.h"
#include "printable.h"
#include "recovery.h"
#include "replay.h"

namespace board_check {

namespace fs = std::filesystem;
using namespace VelWhiteBoard;

namespace {

class PageRecovery {
 public:
  PageRecovery(const std::string& key, const PageFiles& page, const fs::path& folder,
               std::ostream& out)
      : page_(page),
        wholeFile_(folder / wholeName(key)),
        snapFile_(folder / snapName(key)),
        log_(page.whole.sources()),
        snapshots_(page.snap.sources()),
        out_(out) {
    // A log that is whole tells all that came since it began; what was set aside before that counts
    // only without it.
    if (page.whole.isComplete()) snapshots_.assign(1, &page.snap.best());
    if (!page.snap.best().exists) std::erase(snapshots_, &page.snap.best());
  }

  void run() {
    enterLog();
    const bool isLogLost = ledger_->isEmpty() && !page_.whole.isComplete();
    SnapshotJudge judge(*ledger_);
    readAll(snapshots_, VelWbBaseVector::ownClass(), judge);
    comparison_ = judge.result();
    isLogLost ? beginLogAnew() : writeLog();
    writeSnapshot(isLogLost);
  }

 private:
  void enterLog() {
    LedgerVisitor visitor;
    readAll(log_, VelWbBaseVector::ownClass(), visitor);
    if (!page_.whole.best().exists) visitor.takeGap();
    if (visitor.ledger() == nullptr) throw std::bad_alloc();
    ledger_ = std::move(*visitor.ledger());
  }

  /// The log, and what only the snapshot knows of.
  void writeLog() {
    std::uint64_t fromSnapshot = 0;
    std::uint64_t removals = 0;
    const std::uint64_t records = writeList(wholeFile_, [&](const AddRecord& add) {
      forEachVector(log_, add);
      if (page_.snap.isFine() && comparison_.logIsAhead == 0) removals = addLostRemovals(add);
      forEachVector(snapshots_, [&](const VelWbBaseVector& entry) {
        if (ledger_->judge(entry) != Ahead::kSnapshot) return;
        add(entry);
        ++fromSnapshot;
      });
    });
    out_ << "log of " << counted(records, "record") << originOf(page_.whole);
    if (page_.whole.best().exists && !page_.whole.best().reading.wasGiven()) {
      out_ << ", the rest of it not read";
    }
    if (fromSnapshot > 0) out_ << ", " << fromSnapshot << " of them from the snapshot";
    if (removals > 0) out_ << ", " << counted(removals, "removal") << " made up";
  }

  /// What a snapshot that is whole does not have, although the log does, has been removed by a
  /// record that is lost.
  std::uint64_t addLostRemovals(const AddRecord& add) const {
    std::uint64_t removals = 0;
    ledger_->forEachUnmatched([&](const LogLedger::Unmatched& unmatched) {
      if (!unmatched.mayBeRemoved) return;
      const auto removal = VelWbVecRemove::initWithType("remove");
      removal->rmID = unmatched.ID;
      add(*removal);
      ++removals;
    });
    return removals;
  }

  /// Without a log, the state is all that is known of how the page came about.
  void beginLogAnew() {
    const std::uint64_t records =
        writeList(wholeFile_, [&](const AddRecord& add) { forEachVector(snapshots_, add); });
    const bool isUnread = page_.whole.best().exists && !page_.whole.best().reading.wasGiven();
    out_ << (isUnread ? "log not read" : "log lost") << ", its place taken by the "
         << counted(records, "record") << " of the snapshot";
  }

  void writeSnapshot(bool isLogLost) {
    const bool isBehind = comparison_.logIsAhead > 0;
    if (isLogLost || (page_.snap.isFine() && !isBehind)) {
      const std::uint64_t records =
          writeList(snapFile_, [&](const AddRecord& add) { forEachVector(snapshots_, add); });
      out_ << "; snapshot " << (page_.snap.isComplete() ? "of " : "cut off after ")
           << counted(records, "record") << originOf(page_.snap) << ".\n";
      return;
    }
    const VectorList rebuilt = replay(wholeFile_);
    writeList(snapFile_, [&](const AddRecord& add) {
      for (const VectorPtr& entry : rebuilt) add(*entry);
    });
    out_ << "; snapshot rebuilt from the log, " << counted(rebuilt.size(), "record") << ".\n";
  }

  const PageFiles& page_;
  fs::path wholeFile_;
  fs::path snapFile_;
  std::vector<const ListFile*> log_;
  std::vector<const ListFile*> snapshots_;
  std::ostream& out_;
  std::optional<LogLedger> ledger_;
  Comparison comparison_;
};

}  // namespace

void recoverPage(const std::string& key, const PageFiles& page, const fs::path& folder,
                 std::ostream& out) {
  out << "page " << key << ": ";
  PageRecovery(key, page, folder, out).run();
}

std::string originOf(const StoredList& list) {
  std::string text;
  std::uint64_t setAside = 0;
  for (const ListFile& file : list.setAside) setAside += file.reading.records();
  if (setAside > 0) text += ", " + std::to_string(setAside) + " of them set aside earlier";
  if (&list.best() != &list.current) {
    text += ", " + std::to_string(list.best().reading.records()) +
            " of them from a write that did not end";
  }
  return text;
}

}  // namespace board_check
