#include "inspection.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "VelWhiteBoard/vectors/base_vector.h"
#include "VelWhiteBoard/vectors/commands.h"

#include "comparing.h"
#include "file_name.h"

namespace board_check {

namespace fs = std::filesystem;
using namespace VelWhiteBoard;

namespace {

constexpr std::string_view kBoardName = "whiteBoard";

class NoVisitor final : public ListVisitor {
 public:
  void takeRecord(const std::shared_ptr<Record>&) override {}
};

/// The files of one list by their names, not read yet.
struct ListPaths {
  fs::path current;
  std::map<std::uint64_t, fs::path> setAside;
  std::vector<fs::path> temporaries;
};

struct PagePaths {
  ListPaths whole;
  ListPaths snap;
};

struct BoardPaths {
  ListPaths pageList;
  std::map<std::string, PagePaths> pages;
  std::vector<std::string> strangers;
};

void enter(ListPaths& list, const FileName& name, const fs::path& path) {
  switch (name.role) {
    case FileName::Role::kCurrent:
      list.current = path;
      return;
    case FileName::Role::kSetAside:
      list.setAside.emplace(name.number, path);
      return;
    case FileName::Role::kTemporary:
      list.temporaries.push_back(path);
      return;
  }
}

/// Lists the folder and closes it, before any file is opened.
BoardPaths pathsIn(const fs::path& folder) {
  std::vector<fs::path> all;
  for (const auto& entry : fs::directory_iterator(folder)) all.push_back(entry.path());
  std::sort(all.begin(), all.end());
  BoardPaths paths;
  for (const fs::path& path : all) {
    const auto name = parseFileName(path.filename().string());
    if (!name) {
      paths.strangers.push_back(path.filename().string());
    } else if (name->list == FileName::List::kPages) {
      enter(paths.pageList, *name, path);
    } else {
      PagePaths& page = paths.pages[name->key];
      enter(name->list == FileName::List::kWhole ? page.whole : page.snap, *name, path);
    }
  }
  return paths;
}

ListFile inspectFile(const fs::path& path, const RecordClass& asked, ListVisitor& visitor) {
  ListFile file;
  file.path = path;
  std::error_code error;
  file.exists = !path.empty() && fs::symlink_status(path, error).type() != fs::file_type::not_found;
  if (file.exists) file.reading = readList(path, asked, visitor);
  return file;
}

StoredList inspectList(const ListPaths& paths, const RecordClass& asked, ListVisitor& visitor) {
  NoVisitor none;
  StoredList list;
  list.current = inspectFile(paths.current, asked, visitor);
  for (const auto& [number, path] : paths.setAside) {
    list.setAside.push_back(inspectFile(path, asked, none));
  }
  for (const fs::path& path : paths.temporaries) {
    list.temporaries.push_back(inspectFile(path, asked, none));
  }
  return list;
}

PageFiles inspectPage(const PagePaths& paths) {
  const RecordClass& asked = VelWbBaseVector::ownClass();
  PageFiles page;
  LedgerVisitor log;
  page.whole = inspectList(paths.whole, asked, log);
  NoVisitor none;
  LogLedger* ledger = log.ledger();
  if (ledger == nullptr) {
    page.snap = inspectList(paths.snap, asked, none);
    page.comparison.lackedMemory = true;
  } else {
    SnapshotJudge judge(*ledger);
    page.snap = inspectList(paths.snap, asked, judge);
    // Otherwise the page is not fine anyway, and what is missing is told elsewhere.
    if (page.whole.isFine() && page.snap.isFine()) page.comparison = judge.result();
  }
  page.whole.mayUseTemporaries = page.snap.mayUseTemporaries =
      page.whole.current.exists || page.snap.current.exists;
  return page;
}

}  // namespace

BoardFiles inspectBoard(const fs::path& directory) {
  BoardFiles board;
  board.asked = directory;
  const fs::path below = directory / kBoardName;
  board.folder = fs::is_directory(below) ? below : directory;
  BoardPaths paths = pathsIn(board.folder);
  NoVisitor none;
  board.pageList = inspectList(paths.pageList, VelWbVecSwitchPage::ownClass(), none);
  for (const auto& [key, page] : paths.pages) board.pages.emplace(key, inspectPage(page));
  board.strangers = std::move(paths.strangers);
  board.pageList.mayUseTemporaries = board.pageList.current.exists || board.hasKnownPages();
  // A new board is empty; any other folder must not be reported as a board in good order.
  if (board.isEmpty() && fs::canonical(board.folder).filename() != kBoardName) {
    throw NoBoard(directory.string() +
                  ": there is no board, neither a folder \"whiteBoard\" nor a file of one");
  }
  return board;
}

bool StoredList::wasGiven() const {
  const auto given = [](const ListFile& file) { return file.wasGiven(); };
  return current.wasGiven() && std::all_of(setAside.begin(), setAside.end(), given) &&
         std::all_of(temporaries.begin(), temporaries.end(), given);
}

const ListFile& StoredList::best() const {
  const ListFile* best = &current;
  if (current.isSound() || !mayUseTemporaries) return *best;
  for (const ListFile& file : temporaries) {
    if (file.reading.records() > best->reading.records()) best = &file;
  }
  return *best;
}

std::vector<const ListFile*> StoredList::sources() const {
  std::vector<const ListFile*> files;
  for (const ListFile& file : setAside) files.push_back(&file);
  if (best().exists) files.push_back(&best());
  return files;
}

bool StoredList::isComplete() const {
  return best().isSound() && std::all_of(setAside.begin(), setAside.end(),
                                         [](const ListFile& file) { return file.isSound(); });
}

bool BoardFiles::isEmpty() const {
  return pages.empty() && !pageList.isKnown() && pageList.temporaries.empty();
}

bool BoardFiles::hasKnownPages() const {
  return std::any_of(pages.begin(), pages.end(),
                     [](const auto& entry) { return entry.second.isKnown(); });
}

bool BoardFiles::isAllFine() const {
  const bool pagesAreFine = std::all_of(pages.begin(), pages.end(), [](const auto& entry) {
    return !entry.second.isKnown() || entry.second.isFine();
  });
  return pagesAreFine && (pageList.isKnown() ? pageList.isFine() : !hasKnownPages());
}

bool BoardFiles::wasAllGiven() const {
  return pageList.wasGiven() && std::all_of(pages.begin(), pages.end(), [](const auto& entry) {
           return entry.second.wasGiven();
         });
}

}  // namespace board_check
