#include "report.h"

#include <ostream>
#include <string>

#include "file_name.h"
#include "printable.h"

namespace board_check {

namespace {

constexpr const char* kStrictReader = "  A strict reader ";

std::string nameOf(const ListFile& file) { return file.path.filename().string(); }

void printTypes(const Tally& tally, std::ostream& out) {
  constexpr std::size_t kMostTypes = 30;
  std::size_t shown = 0;
  for (const auto& [type, count] : tally.types) {
    if (shown == kMostTypes) {
      out << ", and " << tally.types.size() - shown << " types more";
      return;
    }
    out << (shown++ == 0 ? ": " : ", ") << count << ' ' << printable(type);
  }
}

void printRecords(const Tally& tally, std::ostream& out) {
  out << counted(tally.records, "record");
  printTypes(tally, out);
  out << ".\n";
}

void printAmount(std::uint64_t records, std::uint64_t bytes, std::ostream& out) {
  out << counted(records, "record") << ", " << counted(bytes, "byte");
}

void printGaps(const Gaps& gaps, std::ostream& out) {
  if (gaps.count == 0) return;
  out << "  Skipped: ";
  printAmount(gaps.records, gaps.bytes, out);
  out << ".\n";
  if (gaps.count == 1) return;
  for (const Gap& gap : gaps.first) {
    out << "    At line " << gap.place.line << ", column " << gap.place.column << ": ";
    printAmount(gap.records, gap.bytes, out);
    out << ".\n";
  }
  if (gaps.count > gaps.first.size()) {
    out << "    And at " << counted(gaps.count - gaps.first.size(), "place") << " more.\n";
  }
}

void printDamage(const Reading& reading, std::ostream& out) {
  out << "DAMAGED at line " << reading.result.line << ", column " << reading.result.column << ": "
      << printable(reading.result.error) << ".\n"
      << kStrictReader << "refuses the whole file. Before that place: ";
  printRecords(reading.before, out);
  if (reading.after.records > 0) {
    out << "  After it: ";
    printRecords(reading.after, out);
  }
  printGaps(reading.skipped, out);
}

void printSound(const Reading& reading, std::ostream& out) {
  out << "readable, ";
  printRecords(reading.before, out);
  if (!reading.differsAt) return;
  out << kStrictReader << "may object at line " << reading.differsAt->line << ", column "
      << reading.differsAt->column
      << ": from there on\n  it is not what the library writes, and the next save may change it.\n";
}

void printFailure(const Reading& reading, std::ostream& out) {
  const bool wasGiven = reading.failure->kind == ReadFailure::Kind::kNoFile;
  out << (wasGiven ? "CANNOT BE OPENED: " : "not read: ") << reading.failure->reason << ".\n";
  if (reading.records() == 0) return;
  out << "  Until then: " << counted(reading.records(), "record") << ".\n";
}

/// What the file holds, as far as it can be read.
void printContents(const ListFile& file, std::ostream& out) {
  if (file.reading.failure) return printFailure(file.reading, out);
  if (file.reading.result.ok()) return printSound(file.reading, out);
  printDamage(file.reading, out);
}

void printTemporaries(const StoredList& list, const char* what, std::ostream& out) {
  for (const ListFile& file : list.temporaries) {
    out << nameOf(file) << ": " << what << "; ";
    if (file.reading.failure) {
      printFailure(file.reading, out);
    } else {
      Tally all = file.reading.before;
      all.records += file.reading.after.records;
      for (const auto& [type, count] : file.reading.after.types) all.types[type] += count;
      printRecords(all, out);
    }
  }
}

void printList(const StoredList& list, std::string_view name, std::ostream& out) {
  out << name << ": ";
  if (list.current.exists) {
    printContents(list.current, out);
  } else {
    out << "MISSING.\n";
  }
  for (const ListFile& file : list.setAside) {
    out << nameOf(file)
        << ": set aside, before it was replaced, because it could not be read.\n  Now: ";
    printContents(file, out);
  }
  printTemporaries(list, "a write that did not end", out);
}

/// A list of which nothing but the beginning of its first write was left by a crash.
void printLeftover(const StoredList& list, std::string_view, std::ostream& out) {
  printTemporaries(list, "a first write that did not end", out);
}

std::string entriesLike(std::uint64_t count, const std::string& example) {
  return counted(count, "entry") + ", such as " + printable(example);
}

void printComparison(const std::string& key, const Comparison& comparison, std::ostream& out) {
  if (comparison.isInStep()) return;
  out << "page " << key << ": ";
  if (comparison.lackedMemory) {
    out << "log and snapshot not compared: no memory.\n";
    return;
  }
  out << "OUT OF STEP: ";
  if (comparison.logIsAhead > 0) {
    out << "the log is ahead of the snapshot by "
        << entriesLike(comparison.logIsAhead, comparison.exampleOfLog);
  }
  if (comparison.snapshotIsAhead > 0) {
    out << (comparison.logIsAhead > 0 ? "; " : "") << "the snapshot is ahead of the log by "
        << entriesLike(comparison.snapshotIsAhead, comparison.exampleOfSnapshot);
  }
  out << ".\n";
}

void printPage(const std::string& key, const PageFiles& page, std::ostream& out) {
  const auto print = page.isKnown() ? printList : printLeftover;
  print(page.whole, wholeName(key), out);
  print(page.snap, snapName(key), out);
  printComparison(key, page.comparison, out);
}

}  // namespace

void printReport(const BoardFiles& board, std::ostream& out) {
  out << board.folder.string() << '\n';
  if (board.isEmpty()) out << "The board is empty.\n";
  const bool needsPageList = board.pageList.isKnown() || board.hasKnownPages();
  (needsPageList ? printList : printLeftover)(board.pageList, kPageListName, out);
  for (const auto& [key, page] : board.pages) printPage(key, page, out);
  for (const std::string& name : board.strangers) {
    out << printable(name) << ": no file of a board.\n";
  }
  if (!board.wasAllGiven()) {
    out << "Not everything was read.\n";
  } else {
    out << (board.isAllFine() ? "All is fine.\n" : "Not all is fine.\n");
  }
}

}  // namespace board_check
