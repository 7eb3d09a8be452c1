// What can be told of the files of a board, without changing any.
#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "VelWhiteBoard/foundation/property_list_reader.h"

namespace board_check {

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
  /// Whether the file is, byte for byte, what the library would write.
  bool isAsWritten = false;

  bool isSound() const { return exists && !cannotRead && result.ok(); }
  bool isDamaged() const { return exists && !isSound(); }
};

/// The two lists of one page.
struct PageFiles {
  ListFile whole;
  ListFile snap;
};

/// A board's folder.
struct BoardFiles {
  std::filesystem::path folder;
  ListFile pageList;
  /// By page key.
  std::map<std::string, PageFiles> pages;
  /// Damaged files that the library has set aside, temporaries, and what belongs to no board.
  std::vector<std::string> setAside;
  std::vector<std::string> temporaries;
  std::vector<std::string> strangers;

  bool isAllFine() const;
};

/// Reads one property list of vectors; `asked` as the library asks for.
ListFile inspectFile(const std::filesystem::path& path, const VelWhiteBoard::RecordClass& asked);

/// Reads the whole board. Throws std::filesystem::filesystem_error when the folder cannot be
/// listed.
BoardFiles inspectBoard(const std::filesystem::path& folder);

}  // namespace board_check
