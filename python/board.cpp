#include "board.h"

#include <mutex>
#include <set>
#include <utility>

#include "queues.h"
#include "record_copy.h"

namespace bindings {

namespace vwb = VelWhiteBoard;

namespace {

/// Where the library keeps the board below `path`.
std::string folderBelow(const std::string& path) { return path + "/whiteBoard"; }

/// The pages that have a log or a snapshot in the folder, in the order of the files' names.
std::vector<PagePtr> pagesWithFiles(const std::string& folder) {
  std::vector<PagePtr> pages;
  const auto names = vwb::VWBPathManager::sharedManager().filesAtPath(folder, ".plist");
  if (!names) return pages;
  for (const std::string& name : *names) {
    const std::size_t keyBegin = name.find('_') + 1;
    const std::string_view kind = std::string_view(name).substr(0, keyBegin);
    if (kind != "whole_" && kind != "snap_") continue;
    const std::size_t keyEnd = name.size() - std::string_view(".plist").size();
    auto page = vwb::VelWbVecSwitchPage::pageFromInfo(
        std::string_view(name).substr(keyBegin, keyEnd - keyBegin));
    if (page) pages.push_back(std::move(page));
  }
  return pages;
}

}  // namespace

/// Shared with the storage's observer, which may be called when the board has gone.
struct Board::Failures {
  std::mutex mutex;
  std::set<std::string> paths;
  vwb::WriteObserver observer;

  void take(const vwb::WriteReport& report) {
    vwb::WriteObserver next;
    {
      const std::lock_guard<std::mutex> hold(mutex);
      if (report.result.ok()) {
        paths.erase(report.path);
      } else {
        paths.insert(report.path);
      }
      next = observer;
    }
    if (next) next(report);
  }
};

Board::Board(const std::string& path) : path_(path), failures_(std::make_shared<Failures>()) {
  useQueues();
  storage_ = vwb::VWBVectorStorage::initWithPath(path);
  storage_->setWriteObserver(
      [failures = failures_](const vwb::WriteReport& report) { failures->take(report); });
  addOpenQueue(storage_->saveQueue());
}

std::shared_ptr<Board> Board::open(const std::string& path) {
  return std::shared_ptr<Board>(new Board(path));
}

std::shared_ptr<Board> Board::openExisting(const std::string& path) {
  if (!vwb::VWBPathManager::sharedManager().isFolderExist(folderBelow(path))) {
    return nullptr;
  }
  return open(path);
}

vwb::VWBVectorStorage& Board::storage() const {
  useQueues();
  return *storage_;
}

std::vector<PagePtr> Board::pages() const {
  std::vector<PagePtr> candidates = visitedPages();
  for (PagePtr& page : pagesWithFiles(storage().folder())) candidates.push_back(std::move(page));
  std::set<std::string> known;
  std::erase_if(candidates,
                [&](const PagePtr& page) { return !known.insert(page->pageInfo()).second; });
  return candidates;
}

std::vector<PagePtr> Board::visitedPages() const {
  std::vector<PagePtr> pages = storage().pageArray();
  for (PagePtr& page : pages) page = independentCopy(*page);
  return pages;
}

PagePtr Board::currentPage() const {
  const PagePtr page = storage().currentPage();
  return page ? independentCopy(*page) : nullptr;
}

vwb::VectorList Board::entries(const vwb::VelWbVecSwitchPage& page) const {
  return copiesOf(storage().snapWithPage(page));
}

vwb::VectorList Board::log(const vwb::VelWbVecSwitchPage& page) const {
  {
    const vwb::VWBVectorStorage::ListsByPage logs = storage().wholeVectorss();
    const auto found = logs.find(page.pageInfo());
    if (found != logs.end()) return copiesOf(found->second);
  }
  // A storage reads a log when it makes the page current, so another one does. It ignores changes,
  // and writes nothing.
  const std::shared_ptr<Board> reader = open(path_);
  reader->storage().switchPage(independentCopy(page));
  return reader->storage().wholeVectorss()[page.pageInfo()];
}

vwb::VectorPtr Board::entry(std::string_view ID) const {
  return copiesOf({storage().entryWithID(ID)}).front();
}

vwb::VectorList Board::switchPage(const PagePtr& page) {
  return copiesOf(storage().switchPage(page));
}

void Board::saveVector(const vwb::VectorPtr& vector) { storage().saveVector(vector); }

void Board::saveVectors(const vwb::VectorList& vectors, const PagePtr& page) {
  storage().saveVectors(vectors, page);
}

void Board::appendVectors(const vwb::VectorList& vectors, const PagePtr& page) {
  storage().appendVectors(vectors, page);
}

void Board::clearPage(const vwb::VelWbVecSwitchPage& page) { storage().clearPage(page); }

void Board::clear() {
  storage().clear();
  // This removal is not reported; what could not be written before is not wanted any more.
  const std::lock_guard<std::mutex> hold(failures_->mutex);
  failures_->paths.clear();
}

void Board::receive(const vwb::VectorPtr& vector) {
  if (const auto page = vwb::recordPointerCast<vwb::VelWbVecSwitchPage>(vector)) {
    storage().switchPage(page);
  } else {
    storage().saveVector(vector);
  }
}

void Board::save() {
  storage().saveFile(true);
  storage().retryFailedSaves();
}

void Board::saveWhenDue() { storage().saveFile(false); }

void Board::waitUntilFinished() { storage().saveQueue()->waitUntilAllOperationsAreFinished(); }

std::vector<std::string> Board::failedFiles() const {
  const std::lock_guard<std::mutex> hold(failures_->mutex);
  return {failures_->paths.begin(), failures_->paths.end()};
}

void Board::setChangeObserver(vwb::ChangeObserver observer) {
  storage().setChangeObserver(std::move(observer));
}

void Board::setWriteObserver(vwb::WriteObserver observer) {
  // The former one is dropped without the lock: that may wait for the interpreter.
  const std::lock_guard<std::mutex> hold(failures_->mutex);
  std::swap(failures_->observer, observer);
}

vwb::VectorList Board::copiesOf(const vwb::VectorList& entries) const {
  return independentCopies(entries, storage().semphore());
}

}  // namespace bindings
