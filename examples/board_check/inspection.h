// What can be told of the files of a board, without changing any.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "list_reading.h"

namespace board_check {

/// There is nothing to look at.
class NoBoard : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A file that may hold a list.
struct ListFile {
  std::filesystem::path path;
  bool exists = false;
  Reading reading;

  bool isSound() const { return exists && reading.isSound(); }
  bool wasGiven() const { return !exists || reading.wasGiven(); }
};

/// One list of a board, and what may lie beside it.
struct StoredList {
  ListFile current;
  /// Those before it that the library did not read and moved aside, oldest first.
  std::vector<ListFile> setAside;
  /// Writes that did not end.
  std::vector<ListFile> temporaries;
  /// Whether a temporary may stand in for the list. Not when all that is left of a page is
  /// temporaries: the page was cleared, or no write of it ever ended.
  bool mayUseTemporaries = true;

  bool isFine() const { return current.isSound() && setAside.empty(); }
  /// Whether there is more than an unfinished write.
  bool isKnown() const { return current.exists || !setAside.empty(); }
  bool wasGiven() const;
  /// The file to go by now: a temporary only when it says more than a broken or missing file.
  const ListFile& best() const;
  /// All there is to go by, oldest first.
  std::vector<const ListFile*> sources() const;
  /// Whether nothing of the list is missing.
  bool isComplete() const;
};

/// Of how many entries one of a page's files knows more than the other.
struct Comparison {
  std::uint64_t logIsAhead = 0;
  std::uint64_t snapshotIsAhead = 0;
  /// One identifier for each.
  std::string exampleOfLog;
  std::string exampleOfSnapshot;
  /// The log is too long to be compared.
  bool lackedMemory = false;

  bool isInStep() const { return logIsAhead == 0 && snapshotIsAhead == 0 && !lackedMemory; }
};

/// The two lists of one page.
struct PageFiles {
  StoredList whole;
  StoredList snap;
  Comparison comparison;

  bool isKnown() const { return whole.isKnown() || snap.isKnown(); }
  bool isFine() const { return whole.isFine() && snap.isFine() && comparison.isInStep(); }
  bool wasGiven() const { return whole.wasGiven() && snap.wasGiven() && !comparison.lackedMemory; }
};

/// A board's folder.
struct BoardFiles {
  /// What was asked about: the board's folder, or the one that holds it.
  std::filesystem::path asked;
  std::filesystem::path folder;
  StoredList pageList;
  /// By page key.
  std::map<std::string, PageFiles> pages;
  /// What belongs to no board.
  std::vector<std::string> strangers;

  bool isEmpty() const;
  bool hasKnownPages() const;
  bool isAllFine() const;
  /// Whether the system gave every file.
  bool wasAllGiven() const;
};

/// Reads the whole board in `directory`, or in the folder "whiteBoard" there. Throws NoBoard when
/// neither holds one, std::filesystem::filesystem_error when a folder cannot be listed.
BoardFiles inspectBoard(const std::filesystem::path& directory);

}  // namespace board_check
