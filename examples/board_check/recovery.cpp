#include "recovery.h"

#include <algorithm>
#include <memory>
#include <ostream>
#include <set>
#include <string>

#include "VelWhiteBoard/foundation/file_system.h"
#include "VelWhiteBoard/foundation/property_list_writer.h"
#include "VelWhiteBoard/storage/vector_storage.h"
#include "VelWhiteBoard/vectors/commands.h"

namespace board_check {

namespace fs = std::filesystem;
using namespace VelWhiteBoard;

namespace {

template <class Records>
void writeList(const fs::path& path, const Records& records) {
  const FileResult written =
      FileSystem::current().writeAtomically(path.string(), [&](const BlockConsumer& consume) {
        PropertyListWriter writer(consume);
        for (const auto& record : records) {
          if (!writer.add(*record)) return false;
        }
        return writer.finish();
      });
  if (!written.ok()) throw CannotRecover(written.describe());
}

std::shared_ptr<VelWbVecSwitchPage> pageOfKey(const std::string& key) {
  const auto page = VelWbVecSwitchPage::initWithType("switchPage");
  const std::size_t bar = key.find('_');
  page->WBID = std::stoll(key.substr(0, bar));
  page->curPage = std::stoull(key.substr(bar + 1));
  return page;
}

/// The present state of a page, from its log: the log is played into a board of its own, since only
/// the storage knows how vectors become a page. Changes the records.
VectorList replay(const std::string& key, const RecordList& log, const fs::path& scratch) {
  const auto storage = VWBVectorStorage::initWithPath(scratch.string());
  storage->switchPage(pageOfKey(key));  // not to be recorded: nobody asks for the pages visited
  storage->setIgnoreChanges(false);
  for (const auto& record : log) {
    storage->saveVector(std::static_pointer_cast<VelWbBaseVector>(record));
  }
  const auto lists = storage->snapVectorss();
  storage->saveQueue()->waitUntilAllOperationsAreFinished();
  fs::remove_all(scratch);
  return lists.at(key);
}

std::string count(std::size_t records) {
  return std::to_string(records) + (records == 1 ? " record" : " records");
}

/// What a list was pieced together from, where that is not simply its file.
std::string origin(const StoredList& list) {
  std::string text;
  if (!list.setAside.records.empty()) {
    text += ", " + std::to_string(list.setAside.records.size()) + " of them set aside earlier";
  }
  if (!list.temporary.records.empty() && &list.best() == &list.temporary) {
    text += ", " + std::to_string(list.temporary.records.size()) +
            " of them from a write that did not end";
  }
  return text;
}

/// Writes the log and answers what it holds.
RecordList recoverLog(const PageFiles& page, const fs::path& file, std::ostream& out) {
  RecordList log = page.whole.savedRecords();
  if (!log.empty() || page.whole.isComplete()) {
    writeList(file, log);
    out << "log of " << count(log.size()) << origin(page.whole);
    return log;
  }
  // Without a log, the state is all that is known of how the page came about.
  const RecordList state = page.snap.savedRecords();
  writeList(file, state);
  out << "log lost, its place taken by the " << count(state.size()) << " of the snapshot";
  return {};
}

void recoverPage(const std::string& key, const PageFiles& page, const fs::path& folder,
                 const fs::path& scratch, std::ostream& out) {
  out << "page " << key << ": ";
  const RecordList log = recoverLog(page, folder / ("whole_" + key + ".plist"), out);
  const fs::path snap = folder / ("snap_" + key + ".plist");
  const RecordList left = page.snap.savedRecords();
  if (page.snap.isFine()) {
    writeList(snap, left);
    out << "; snapshot of " << count(left.size()) << ".\n";
    return;
  }
  const VectorList rebuilt = log.empty() ? VectorList() : replay(key, log, scratch);
  // A log that is not whole may say less than what is left of the snapshot.
  const bool isRebuiltBetter = !log.empty() && rebuilt.size() >= left.size();
  if (page.whole.isComplete() || isRebuiltBetter) {
    writeList(snap, rebuilt);
    out << "; snapshot rebuilt from the log, " << count(rebuilt.size()) << ".\n";
  } else {
    writeList(snap, left);
    out << "; snapshot " << (page.snap.isComplete() ? "of " : "cut off after ")
        << count(left.size()) << origin(page.snap) << ".\n";
  }
}

RecordList visitedPages(const BoardFiles& board, std::ostream& out) {
  RecordList pages;
  std::set<std::string> listed;
  for (const auto& record : board.pageList.savedRecords()) {
    const auto* page = recordCast<VelWbVecSwitchPage>(record.get());
    if (page == nullptr) continue;
    pages.push_back(record);
    listed.insert(page->pageInfo());
  }
  if (board.pageList.isFine()) return pages;
  // What is missing in the list of visits is at least findable: each page once, at the beginning.
  RecordList all;
  for (const auto& [key, page] : board.pages) {
    if (!listed.contains(key)) all.push_back(pageOfKey(key));
  }
  out << "page.plist: " << count(pages.size()) << " kept" << origin(board.pageList) << "; "
      << all.size() << " made up from the names of files.\n";
  all.insert(all.end(), pages.begin(), pages.end());
  return all;
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

}  // namespace

void recover(const BoardFiles& board, const fs::path& target, std::ostream& out) {
  requireNothingAt(target, board);
  const fs::path folder = target / "whiteBoard";
  std::error_code error;
  if (!fs::create_directories(folder, error)) {
    throw CannotRecover("cannot make " + folder.string() + ": " + error.message());
  }
  for (const auto& [key, page] : board.pages) {
    recoverPage(key, page, folder, target / "scratch", out);
  }
  writeList(folder / "page.plist", visitedPages(board, out));
  out << "The new board is " << folder.string() << ".\n";
}

}  // namespace board_check
