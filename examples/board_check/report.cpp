#include "report.h"

#include <algorithm>
#include <ostream>
#include <string>
#include <string_view>

namespace board_check {

namespace {

constexpr const char* kStrictReader = "  A strict reader ";

bool continuesCharacter(char byte) { return (byte & '\xC0') == '\x80'; }

/// A text from a file for a terminal: short, and without what a terminal would obey.
std::string printable(std::string_view text) {
  constexpr std::size_t kLongest = 100;
  std::size_t size = std::min(text.size(), kLongest);
  while (size > 0 && size < text.size() && continuesCharacter(text[size])) --size;
  std::string shown(text.substr(0, size));
  for (std::size_t i = 0; i < size; ++i) {
    const bool isControl = (shown[i] >= '\0' && shown[i] < ' ') || shown[i] == '\x7F';
    // U+0080 to U+009F are controls as well; the first byte of each is C2.
    const bool isLateControl =
        shown[i] == '\xC2' && i + 1 < size && (shown[i + 1] & '\xE0') == '\x80';
    if (isControl || isLateControl) shown[i] = '?';
    if (isLateControl) shown[i + 1] = '?';
  }
  return size < text.size() ? shown + "..." : shown;
}

void printTypes(const ListFile& file, std::ostream& out) {
  constexpr std::size_t kMostTypes = 30;
  std::size_t shown = 0;
  for (const auto& [type, count] : file.types) {
    if (shown == kMostTypes) {
      out << ", and " << file.types.size() - shown << " types more";
      return;
    }
    out << (shown++ == 0 ? ": " : ", ") << count << ' ' << printable(type);
  }
}

void printRecords(const ListFile& file, std::ostream& out) {
  out << file.records.size() << (file.records.size() == 1 ? " record" : " records");
  printTypes(file, out);
  out << ".\n";
}

/// What the file holds, up to where it breaks.
void printContents(const ListFile& file, std::ostream& out) {
  if (file.cannotRead) {
    out << "CANNOT BE OPENED: " << *file.cannotRead << ".\n";
  } else if (file.result.ok()) {
    out << "readable, ";
    printRecords(file, out);
    if (!file.differsAt) return;
    out << kStrictReader << "may object at line " << file.differsAt->line << ", column "
        << file.differsAt->column
        << ": from there on\n  it is not what the library writes, and the next save may change "
           "it.\n";
  } else {
    out << "DAMAGED at line " << file.result.line << ", column " << file.result.column << ": "
        << printable(file.result.error) << ".\n"
        << kStrictReader << "refuses the whole file. Before that place: ";
    printRecords(file, out);
  }
}

void printList(const StoredList& list, const std::string& name, std::ostream& out) {
  out << name << ": ";
  if (list.current.exists) {
    printContents(list.current, out);
  } else {
    out << "MISSING.\n";
  }
  if (list.setAside.exists) {
    out << name
        << ".damaged: set aside, before it was replaced, because it could not be read.\n  Now: ";
    printContents(list.setAside, out);
  }
  if (list.temporary.exists) {
    out << name << ".tmp: a write that did not end; ";
    printRecords(list.temporary, out);
  }
}

/// A page of which nothing but the beginning of its first write was left by a crash.
void printTemporary(const StoredList& list, const std::string& name, std::ostream& out) {
  if (!list.temporary.exists) return;
  out << name << ".tmp: a first write that did not end; ";
  printRecords(list.temporary, out);
}

}  // namespace

void printReport(const BoardFiles& board, std::ostream& out) {
  out << board.folder.string() << '\n';
  if (board.isEmpty()) out << "The board is empty.\n";
  const bool needsPageList = board.pageList.isKnown() || board.hasKnownPages();
  (needsPageList ? printList : printTemporary)(board.pageList, "page.plist", out);
  for (const auto& [key, page] : board.pages) {
    const auto print = page.isKnown() ? printList : printTemporary;
    print(page.whole, "whole_" + key + ".plist", out);
    print(page.snap, "snap_" + key + ".plist", out);
  }
  for (const std::string& name : board.strangers) {
    out << printable(name) << ": no file of a board.\n";
  }
  out << (board.isAllFine() ? "All is fine.\n" : "Something is damaged.\n");
}

}  // namespace board_check
