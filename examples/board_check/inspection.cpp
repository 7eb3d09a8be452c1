#include "inspection.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <string_view>
#include <utility>

#include "VelWhiteBoard/foundation/property_list_writer.h"
#include "VelWhiteBoard/vectors/base_vector.h"
#include "VelWhiteBoard/vectors/commands.h"

namespace board_check {

namespace fs = std::filesystem;
using namespace VelWhiteBoard;

namespace {

constexpr std::string_view kBoardName = "whiteBoard";
constexpr std::string_view kPageListName = "page.plist";
constexpr std::string_view kListSuffix = ".plist";
constexpr std::string_view kDamagedSuffix = ".damaged";
constexpr std::string_view kTemporarySuffix = ".tmp";

bool takeSuffix(std::string_view& name, std::string_view suffix) {
  if (!name.ends_with(suffix)) return false;
  name.remove_suffix(suffix.size());
  return true;
}

/// The page key in "whole_KEY.plist" or "snap_KEY.plist"; none in any other name.
std::optional<std::string> keyIn(std::string_view name, std::string_view kind) {
  if (!name.starts_with(kind) || !takeSuffix(name, kListSuffix)) return std::nullopt;
  name.remove_prefix(kind.size());
  const std::size_t bar = name.find('_');
  if (bar == std::string_view::npos) return std::nullopt;
  const std::string key(name);
  const auto page = VelWbVecSwitchPage::initWithType("switchPage");
  try {
    page->WBID = std::stoll(key.substr(0, bar));
    page->curPage = std::stoull(key.substr(bar + 1));
  } catch (const std::exception&) {
    return std::nullopt;
  }
  if (page->pageInfo() != key) return std::nullopt;
  return key;
}

/// The place of the byte `offset` of a text.
Place placeOf(std::string_view text, std::size_t offset) {
  const std::string_view before = text.substr(0, offset);
  Place place;
  place.line += static_cast<std::uint64_t>(std::count(before.begin(), before.end(), '\n'));
  // The bytes of a character after its first all begin with the bits 10.
  const std::string_view line = before.substr(before.rfind('\n') + 1);
  place.column += static_cast<std::uint64_t>(
      std::count_if(line.begin(), line.end(), [](char byte) { return (byte & '\xC0') != '\x80'; }));
  return place;
}

std::optional<Place> firstDifference(std::string_view text, const RecordList& records) {
  std::size_t same = 0;
  const BlockConsumer compare = [&](std::string_view block) {
    const std::string_view there = text.substr(same, block.size());
    const auto [end, other] = std::mismatch(there.begin(), there.end(), block.begin(), block.end());
    same += static_cast<std::size_t>(end - there.begin());
    return other == block.end();
  };
  PropertyListWriter writer(compare);
  for (const auto& record : records) {
    if (!writer.add(*record)) return placeOf(text, same);
  }
  if (writer.finish() && same == text.size()) return std::nullopt;
  return placeOf(text, same);
}

/// Reads the file into `text`; answers what went wrong.
std::optional<std::string> readFile(const fs::path& path, std::string& text) {
  std::error_code error;
  if (!fs::is_regular_file(path, error)) return error ? error.message() : "it is no regular file";
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::strerror(errno);
  std::array<char, 65536> block;
  while (file.read(block.data(), block.size()) || file.gcount() > 0) {
    text.append(block.data(), static_cast<std::size_t>(file.gcount()));
  }
  if (file.bad()) return std::strerror(errno);
  return std::nullopt;
}

/// Takes one entry of the folder in.
void fileUnder(BoardFiles& board, const fs::path& path) {
  const std::string fullName = path.filename().string();
  std::string_view name = fullName;
  ListFile StoredList::*which = &StoredList::current;
  if (takeSuffix(name, kDamagedSuffix)) {
    which = &StoredList::setAside;
  } else if (takeSuffix(name, kTemporarySuffix)) {
    which = &StoredList::temporary;
  }
  if (name == kPageListName) {
    board.pageList.*which = inspectFile(path, VelWbVecSwitchPage::ownClass());
  } else if (const auto whole = keyIn(name, "whole_")) {
    board.pages[*whole].whole.*which = inspectFile(path, VelWbBaseVector::ownClass());
  } else if (const auto snap = keyIn(name, "snap_")) {
    board.pages[*snap].snap.*which = inspectFile(path, VelWbBaseVector::ownClass());
  } else {
    board.strangers.push_back(fullName);
  }
}

}  // namespace

ListFile inspectFile(const fs::path& path, const RecordClass& asked) {
  ListFile file;
  file.path = path;
  file.exists = true;
  std::string text;
  file.cannotRead = readFile(path, text);
  if (file.cannotRead) return file;
  PropertyListReader reader(asked, [&file](std::shared_ptr<Record> record) {
    const auto* vector = recordCast<VelWbBaseVector>(record.get());
    ++file.types[vector == nullptr ? "?" : vector->type.value_or("(none)")];
    file.records.push_back(std::move(record));
  });
  reader.feed(text);
  file.result = reader.finish();
  if (file.result.ok()) file.differsAt = firstDifference(text, file.records);
  return file;
}

BoardFiles inspectBoard(const fs::path& directory) {
  BoardFiles board;
  board.asked = directory;
  const fs::path below = directory / kBoardName;
  board.folder = fs::is_directory(below) ? below : directory;
  for (const auto& entry : fs::directory_iterator(board.folder)) fileUnder(board, entry.path());
  std::sort(board.strangers.begin(), board.strangers.end());
  // A new board is empty; of any other folder nobody should hear that it is a board in good order.
  if (board.isEmpty() && fs::canonical(board.folder).filename() != kBoardName) {
    throw NoBoard(directory.string() +
                  ": there is no board, neither a folder \"whiteBoard\" nor a file of one");
  }
  return board;
}

const ListFile& StoredList::best() const {
  const bool saysMore = temporary.records.size() > current.records.size();
  return !current.isSound() && saysMore ? temporary : current;
}

bool StoredList::isComplete() const {
  return best().isSound() && (!setAside.exists || setAside.isSound());
}

RecordList StoredList::savedRecords() const {
  RecordList all = setAside.records;
  all.insert(all.end(), best().records.begin(), best().records.end());
  return all;
}

bool BoardFiles::isEmpty() const {
  return pages.empty() && !pageList.isKnown() && !pageList.temporary.exists;
}

bool BoardFiles::hasKnownPages() const {
  return std::any_of(pages.begin(), pages.end(),
                     [](const auto& entry) { return entry.second.isKnown(); });
}

bool BoardFiles::isAllFine() const {
  const bool pagesAreFine = std::all_of(pages.begin(), pages.end(), [](const auto& entry) {
    const PageFiles& page = entry.second;
    return !page.isKnown() || (page.whole.isFine() && page.snap.isFine());
  });
  return pagesAreFine && (pageList.isKnown() ? pageList.isFine() : !hasKnownPages());
}

}  // namespace board_check
