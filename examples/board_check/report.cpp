#include "report.h"

#include <ostream>

namespace board_check {

namespace {

void printTypes(const ListFile& file, std::ostream& out) {
  const char* before = ": ";
  for (const auto& [type, count] : file.types) {
    out << before << count << ' ' << type;
    before = ", ";
  }
}

void printRecords(const ListFile& file, std::ostream& out) {
  out << file.records.size() << (file.records.size() == 1 ? " record" : " records");
  printTypes(file, out);
}

void printFile(const ListFile& file, const std::string& name, std::ostream& out) {
  out << name << ": ";
  if (!file.exists) {
    out << "MISSING.\n";
  } else if (file.cannotRead) {
    out << "CANNOT BE OPENED: " << *file.cannotRead << ".\n";
  } else if (file.result.ok()) {
    out << "readable, ";
    printRecords(file, out);
    out << ".\n";
    if (!file.isAsWritten) {
      out << "  It is not byte for byte what the library writes; the next save may change it.\n";
    }
  } else {
    out << "DAMAGED at line " << file.result.line << ", column " << file.result.column << ": "
        << file.result.error << ".\n  A strict reader refuses the whole file. Before that place: ";
    printRecords(file, out);
    out << ".\n";
  }
}

void printNames(const std::vector<std::string>& names, const char* what, std::ostream& out) {
  for (const std::string& name : names) out << name << ": " << what << '\n';
}

}  // namespace

void printReport(const BoardFiles& board, std::ostream& out) {
  out << board.folder.string() << '\n';
  if (board.pageList.exists || !board.pages.empty()) printFile(board.pageList, "page.plist", out);
  for (const auto& [key, page] : board.pages) {
    printFile(page.whole, "whole_" + key + ".plist", out);
    printFile(page.snap, "snap_" + key + ".plist", out);
  }
  printNames(board.setAside, "DAMAGED earlier, and set aside before it was replaced.", out);
  printNames(board.temporaries, "a write that did not end; it means nothing.", out);
  printNames(board.strangers, "no file of a board.", out);
  out << (board.isAllFine() ? "All is fine.\n" : "Something is damaged.\n");
}

}  // namespace board_check
