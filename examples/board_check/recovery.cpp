#include "recovery.h"

#include <memory>
#include <ostream>
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
/// the storage knows how vectors become a page.
VectorList replay(const std::string& key, const fs::path& log, const fs::path& scratch) {
  // Read anew: the storage keeps and changes what it is given.
  const ListFile again = inspectFile(log, VelWbBaseVector::ownClass());
  const auto storage = VWBVectorStorage::initWithPath(scratch.string());
  storage->setIgnoreChanges(false);
  storage->switchPage(pageOfKey(key));
  for (const auto& record : again.records) {
    storage->saveVector(std::static_pointer_cast<VelWbBaseVector>(record));
  }
  const auto lists = storage->snapVectorss();
  storage->saveQueue()->waitUntilAllOperationsAreFinished();
  fs::remove_all(scratch);
  return lists.at(key);
}

std::string count(std::size_t records) { return std::to_string(records) + " records"; }

void recoverPage(const std::string& key, const PageFiles& page, const fs::path& folder,
                 const fs::path& scratch, std::ostream& out) {
  const fs::path whole = folder / ("whole_" + key + ".plist");
  const fs::path snap = folder / ("snap_" + key + ".plist");
  out << "page " << key << ": ";
  // Without a log, the state is all that is known of how the page came about.
  const bool hasLog = !page.whole.records.empty() || page.whole.isSound();
  writeList(whole, hasLog ? page.whole.records : page.snap.records);
  out << (hasLog ? "log of " + count(page.whole.records.size())
                 : "log lost, its place taken by the " + count(page.snap.records.size()) +
                       " of the snapshot");
  if (page.snap.isSound()) {
    writeList(snap, page.snap.records);
    out << "; snapshot of " << count(page.snap.records.size()) << ".\n";
    return;
  }
  const VectorList rebuilt = hasLog ? replay(key, page.whole.path, scratch) : VectorList();
  // A log that broke off early may say less than what is left of the snapshot.
  if (page.whole.isSound() || rebuilt.size() >= page.snap.records.size()) {
    writeList(snap, rebuilt);
    out << "; snapshot rebuilt from the log, " << count(rebuilt.size()) << ".\n";
  } else {
    writeList(snap, page.snap.records);
    out << "; snapshot cut off after " << count(page.snap.records.size()) << ".\n";
  }
}

RecordList visitedPages(const BoardFiles& board, std::ostream& out) {
  RecordList pages;
  for (const auto& record : board.pageList.records) {
    if (recordCast<VelWbVecSwitchPage>(record.get()) != nullptr) pages.push_back(record);
  }
  if (board.pageList.isSound()) return pages;
  // What is missing in the list of visits is at least findable: each page once, at the beginning.
  RecordList all;
  for (const auto& [key, page] : board.pages) {
    bool isListed = false;
    for (const auto& record : pages) {
      isListed = isListed || static_cast<const VelWbVecSwitchPage&>(*record).pageInfo() == key;
    }
    if (!isListed) all.push_back(pageOfKey(key));
  }
  out << "page.plist: " << count(pages.size()) << " kept, " << all.size()
      << " made up from the names of files.\n";
  all.insert(all.end(), pages.begin(), pages.end());
  return all;
}

}  // namespace

void recover(const BoardFiles& board, const fs::path& target, std::ostream& out) {
  std::error_code error;
  if (fs::exists(target, error) && !fs::is_empty(target, error)) {
    throw CannotRecover(target.string() + " exists and is not empty");
  }
  const fs::path folder = target / "whiteBoard";
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
