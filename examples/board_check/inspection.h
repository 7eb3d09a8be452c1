// What can be told of the files of a board, without changing any.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "VelWhiteBoard/foundation/property_list_reader.h"

namespace board_check {

/// There is nothing to look at.
class NoBoard : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A place in a text, counted from 1.
struct Place {
  std::uint64_t line = 1;
  std::uint64_t column = 1;
};

/// One property list: its records up to the end, or up to where it breaks.
struct ListFile {
  std::filesystem::path path;
  bool exists = false;
  /// Why the file cannot be read at all; none when it can.
  std::optional<std::string> cannotRead;
  VelWhiteBoard::PropertyListResult result;
  VelWhiteBoard::RecordList records;
  /// Type name -> how many records have it.
  std::map<std::string, std::size_t> types;
  /// Where the file begins to differ from what the library would write; none when it does not.
  std::optional<Place> differsAt;

  bool isSound() const { return exists && !cannotRead && result.ok(); }
};

/// One list of a board, and what may lie beside it.
struct StoredList {
  ListFile current;
  /// An earlier one that the library could not read and set aside before it was replaced.
  ListFile setAside;
  /// A write that did not end.
  ListFile temporary;

  bool isFine() const { return current.isSound() && !setAside.exists; }
  /// Whether there is more than an unfinished write.
  bool isKnown() const { return current.exists || setAside.exists; }
  /// The file to go by now: the temporary only when that says more than a broken or missing file.
  const ListFile& best() const;
  /// Whether nothing of the list is missing.
  bool isComplete() const;
  /// All that can be read, oldest first: what was set aside, then what came since.
  VelWhiteBoard::RecordList savedRecords() const;
};

/// The two lists of one page.
struct PageFiles {
  StoredList whole;
  StoredList snap;

  bool isKnown() const { return whole.isKnown() || snap.isKnown(); }
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
};

/// Reads one property list of vectors; `asked` as the library asks for.
ListFile inspectFile(const std::filesystem::path& path, const VelWhiteBoard::RecordClass& asked);

/// Reads the whole board in `directory`, or in the folder "whiteBoard" there. Throws NoBoard when
/// neither holds one, std::filesystem::filesystem_error when a folder cannot be listed.
BoardFiles inspectBoard(const std::filesystem::path& directory);

}  // namespace board_check
