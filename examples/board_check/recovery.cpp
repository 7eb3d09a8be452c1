#include "recovery.h"

#include <algorithm>
#include <new>
#include <ostream>
#include <set>
#include <string>

#include "VelWhiteBoard/vectors/commands.h"

#include "file_name.h"
#include "new_list.h"
#include "page_recovery.h"
#include "printable.h"

namespace board_check {

namespace fs = std::filesystem;
using namespace VelWhiteBoard;

namespace {

/// The new board has this name until it is whole.
constexpr const char* kUnfinishedName = "whiteBoard-unfinished";

/// The keys of the pages whose visits are known.
class VisitedKeys final : public ListVisitor {
 public:
  void takeRecord(const std::shared_ptr<Record>& record) override {
    if (const auto* page = recordCast<const VelWbVecSwitchPage>(record.get())) {
      keys_.insert(page->pageInfo());
    }
  }
  bool contains(const std::string& key) const { return keys_.contains(key); }

 private:
  std::set<std::string> keys_;
};

void recoverPageList(const BoardFiles& board, const fs::path& folder, std::ostream& out) {
  const StoredList& list = board.pageList;
  const std::vector<const ListFile*> sources = list.sources();
  VisitedKeys visited;
  readAll(sources, VelWbVecSwitchPage::ownClass(), visited);
  std::uint64_t madeUp = 0;
  const std::uint64_t records = writeList(folder / kPageListName, [&](const AddRecord& add) {
    // What is missing in the list of visits is at least findable: each page once, at the beginning.
    for (const auto& [key, page] : board.pages) {
      if (list.isFine() || !page.isKnown() || visited.contains(key)) continue;
      add(*pageOfKey(key));
      ++madeUp;
    }
    forEachVisit(sources, add);
  });
  if (list.isFine()) return;
  out << "page.plist: " << counted(records - madeUp, "record") << " kept" << originOf(list) << "; "
      << madeUp << " made up from the names of files.\n";
}

/// Pages of which nothing but temporaries is there.
void tellWhatIsSkipped(const std::string& key, const PageFiles& page, std::ostream& out) {
  if (page.whole.mayUseTemporaries) return;
  for (const StoredList* list : {&page.whole, &page.snap}) {
    for (const ListFile& file : list->temporaries) {
      out << "page " << key << ": " << file.path.filename().string()
          << " skipped: it is a write that did not end, neither file of the page is there, and the "
             "page may have been cleared.\n";
    }
  }
}

bool recoverPages(const BoardFiles& board, const fs::path& folder, std::ostream& out) {
  bool areAllWritten = true;
  for (const auto& [key, page] : board.pages) {
    tellWhatIsSkipped(key, page, out);
    if (!page.isKnown()) continue;
    try {
      recoverPage(key, page, folder, out);
    } catch (const std::bad_alloc&) {
      out << "left out: no memory.\n";
      fs::remove(folder / wholeName(key));
      fs::remove(folder / snapName(key));
      areAllWritten = false;
    }
  }
  return areAllWritten;
}

fs::path withoutLinks(const fs::path& path) {
  const fs::path real = fs::weakly_canonical(fs::absolute(path));
  return real.has_filename() ? real : real.parent_path();
}

/// Whether `path` is `folder` or lies in it, or will once it has been made.
bool liesIn(const fs::path& path, const fs::path& folder) {
  const fs::path inner = withoutLinks(path);
  const fs::path outer = withoutLinks(folder);
  return std::mismatch(outer.begin(), outer.end(), inner.begin(), inner.end()).first == outer.end();
}

/// Only where nothing is may anything be written.
void requireNothingAt(const fs::path& target, const BoardFiles& board) {
  const std::string name = target.string();
  const fs::file_status status = fs::status(target);
  if (fs::exists(status) && !fs::is_directory(status)) {
    throw CannotRecover(name + " exists and is no folder");
  }
  if (fs::exists(status) && !fs::is_empty(target)) {
    throw CannotRecover(name + " exists and is not empty");
  }
  for (const fs::path& folder : {board.asked, board.folder}) {
    if (liesIn(target, folder)) {
      throw CannotRecover(name + " lies in " + folder.string() + ", in which nothing is changed");
    }
  }
}

/// Removes what was written, unless the board has got its name.
class Unfinished {
 public:
  explicit Unfinished(fs::path folder) : folder_(std::move(folder)) {}
  ~Unfinished() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }
  Unfinished(const Unfinished&) = delete;
  Unfinished& operator=(const Unfinished&) = delete;

  const fs::path& folder() const { return folder_; }

 private:
  fs::path folder_;
};

}  // namespace

bool recover(const BoardFiles& board, const fs::path& target, std::ostream& out) {
  requireNothingAt(target, board);
  const fs::path folder = target / "whiteBoard";
  const Unfinished unfinished(target / kUnfinishedName);
  std::error_code error;
  if (!fs::create_directories(unfinished.folder(), error)) {
    throw CannotRecover("cannot make " + folder.string() + ": " + error.message());
  }
  const bool areAllWritten = recoverPages(board, unfinished.folder(), out);
  recoverPageList(board, unfinished.folder(), out);
  fs::rename(unfinished.folder(), folder);
  out << "The new board is " << folder.string() << ".\n";
  return areAllWritten;
}

}  // namespace board_check
