#include "inspection.h"

#include <array>
#include <cerrno>
#include <cstdint>
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

constexpr std::string_view kListSuffix = ".plist";
constexpr std::string_view kDamagedSuffix = ".plist.damaged";

/// The page key in "whole_KEY.plist" or "snap_KEY.plist"; none in any other name.
std::optional<std::string> keyIn(std::string_view name, std::string_view kind) {
  if (!name.starts_with(kind) || !name.ends_with(kListSuffix)) return std::nullopt;
  name.remove_prefix(kind.size());
  name.remove_suffix(kListSuffix.size());
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

std::string textOf(const RecordList& records) {
  std::string text;
  const BlockConsumer append = [&text](std::string_view block) {
    text += block;
    return true;
  };
  PropertyListWriter writer(append);
  for (const auto& record : records) writer.add(*record);
  writer.finish();
  return text;
}

/// Reads the file into `text`; answers what went wrong.
std::optional<std::string> readFile(const fs::path& path, std::string& text) {
  if (!fs::is_regular_file(path)) return "it is no regular file";
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::strerror(errno);
  std::array<char, 65536> block;
  while (file.read(block.data(), block.size()) || file.gcount() > 0) {
    text.append(block.data(), static_cast<std::size_t>(file.gcount()));
  }
  if (file.bad()) return std::strerror(errno);
  return std::nullopt;
}

void fileUnder(BoardFiles& board, const fs::path& path) {
  const std::string name = path.filename().string();
  if (name == "page.plist") {
    board.pageList = inspectFile(path, VelWbVecSwitchPage::ownClass());
  } else if (const auto whole = keyIn(name, "whole_")) {
    board.pages[*whole].whole = inspectFile(path, VelWbBaseVector::ownClass());
  } else if (const auto snap = keyIn(name, "snap_")) {
    board.pages[*snap].snap = inspectFile(path, VelWbBaseVector::ownClass());
  } else if (name.ends_with(kDamagedSuffix)) {
    board.setAside.push_back(name);
  } else if (name.ends_with(".tmp")) {
    board.temporaries.push_back(name);
  } else {
    board.strangers.push_back(name);
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
  file.isAsWritten = file.result.ok() && textOf(file.records) == text;
  return file;
}

BoardFiles inspectBoard(const fs::path& folder) {
  BoardFiles board;
  board.folder = folder;
  board.pageList.path = folder / "page.plist";
  for (const auto& entry : fs::directory_iterator(folder)) fileUnder(board, entry.path());
  return board;
}

bool BoardFiles::isAllFine() const {
  if (pageList.isDamaged() || !setAside.empty()) return false;
  if (!pageList.exists && !pages.empty()) return false;
  for (const auto& [key, page] : pages) {
    if (!page.whole.isSound() || !page.snap.isSound()) return false;
  }
  return true;
}

}  // namespace board_check
