#include "report.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace lesson {
namespace {

constexpr std::size_t kColumns = 8;
using Row = std::array<std::string, kColumns>;

/// A count with its thousands set apart: "31,667".
std::string grouped(std::uint64_t number) {
  std::string text = std::to_string(number);
  for (std::size_t i = text.size(); i > 3;) text.insert(i -= 3, 1, ',');
  return text;
}

std::string counted(std::uint64_t number, const char* noun) {
  return grouped(number) + " " + noun + (number == 1 ? "" : "s");
}

std::string milliseconds(std::chrono::nanoseconds time) {
  std::array<char, 32> text{};
  const double value = std::chrono::duration<double, std::milli>(time).count();
  std::snprintf(text.data(), text.size(), "%.1f ms", value);
  return text.data();
}

Row rowOf(const ReopenedPage& page, std::string name, std::string verdict) {
  return {std::move(name),
          grouped(page.records),
          grouped(page.snapshot.size()),
          grouped(page.positions),
          grouped(page.wholeFileBytes),
          grouped(page.snapFileBytes),
          milliseconds(page.time),
          std::move(verdict)};
}

ReopenedPage sumOf(const Verification& verification) {
  ReopenedPage sum;
  for (const ReopenedPage& page : verification.pages) {
    sum.records += page.records;
    sum.snapshot.insert(sum.snapshot.end(), page.snapshot.begin(), page.snapshot.end());
    sum.strokes += page.strokes;
    sum.positions += page.positions;
    sum.wholeFileBytes += page.wholeFileBytes;
    sum.snapFileBytes += page.snapFileBytes;
    sum.time += page.time;
  }
  return sum;
}

/// The first and the last column are words and stand left, the others are numbers and stand right.
void printRows(std::ostream& out, const std::vector<Row>& rows) {
  std::array<std::size_t, kColumns> widths{};
  for (const Row& row : rows) {
    for (std::size_t i = 0; i < kColumns; ++i) widths[i] = std::max(widths[i], row[i].size());
  }
  for (const Row& row : rows) {
    out << row.front() << std::string(widths[0] - row[0].size(), ' ');
    for (std::size_t i = 1; i + 1 < kColumns; ++i) {
      out << "  " << std::string(widths[i] - row[i].size(), ' ') << row[i];
    }
    out << (row.back().empty() ? "" : "  ") << row.back() << '\n';
  }
}

}  // namespace

void printTable(std::ostream& out, const Verification& verification) {
  const ReopenedPage sum = sumOf(verification);
  std::vector<Row> rows{{"page", "log records", "entries", "positions", "whole file, bytes",
                         "snap file, bytes", "time", "reopened"}};
  for (const ReopenedPage& page : verification.pages) {
    rows.push_back(
        rowOf(page, page.page->pageInfo(), page.difference.empty() ? "equal" : "DIFFERENT"));
  }
  rows.push_back(rowOf(sum, "all", ""));
  printRows(out, rows);

  for (const ReopenedPage& page : verification.pages) {
    if (page.difference.empty()) continue;
    out << "Page " << page.page->pageInfo() << " came back different: " << page.difference << ".\n";
  }
  if (!verification.differenceOfVisits.empty()) {
    out << "The list of visited pages came back different: " << verification.differenceOfVisits
        << ".\n";
  }
  out << '\n'
      << counted(verification.pages.size(), "page") << ", " << counted(sum.strokes, "stroke")
      << ", " << counted(sum.positions, "position") << ": "
      << (verification.isEverythingEqual() ? "all pages verified.\n" : "NOT verified.\n");
}

void printAgreement(std::ostream& out, const std::string& who, const Agreement& agreement) {
  out << who << ": " << counted(agreement.pages, "page") << ", "
      << counted(agreement.pictures, "picture");
  if (agreement.files > 0) out << ", " << counted(agreement.files, "file");
  out << " equal.\n";
  for (const std::string& difference : agreement.differences) {
    out << who << ": DIFFERENT: " << difference << ".\n";
  }
}

}  // namespace lesson
