#include "fuzz/storage/board_session.h"

#include <utility>
#include <vector>

#include "VelWhiteBoard/foundation/plist/property_list_reader.h"
#include "VelWhiteBoard/foundation/plist/property_list_writer.h"
#include "VelWhiteBoard/storage/files/board_files.h"

#include "fuzz/vectors/vectors.h"
#include "tests/support/write_all.h"

namespace fuzz {

using namespace VelWhiteBoard;

namespace {

constexpr const char* kHome = "/home";

RecordList recordsOf(std::string_view text, const RecordClass& asked) {
  RecordList records;
  PropertyListReader reader(
      asked, [&records](std::shared_ptr<Record> record) { records.push_back(std::move(record)); });
  reader.feed(text);
  require(reader.finish().ok(), "what is written can be read");
  return records;
}

/// What a file makes of the records: a file loses what no property list can say.
template <class Pointers>
RecordList throughAFile(const Pointers& records, const RecordClass& asked) {
  std::string text;
  const BlockConsumer append = [&text](std::string_view block) {
    text += block;
    return true;
  };
  PropertyListWriter writer(append);
  for (const auto& record : records) writer.add(*record);
  writer.finish();
  return recordsOf(text, asked);
}

template <class Pointers>
void requireEqual(const RecordList& expected, const Pointers& found, std::string_view rule) {
  require(expected.size() == found.size(), rule);
  for (std::size_t index = 0; index < expected.size(); ++index) {
    require(expected[index]->isEqual(*found[index]), rule);
  }
}

RecordList switchPagesAmong(const RecordList& records) {
  RecordList pages;
  for (const auto& record : records) {
    if (recordCast<VelWbVecSwitchPage>(record.get()) != nullptr) pages.push_back(record);
  }
  return pages;
}

std::shared_ptr<VelWbVecSwitchPage> pageOfKey(const std::string& key) {
  const std::size_t bar = key.find('_');
  const auto page = VelWbVecSwitchPage::initWithType("switchPage");
  page->WBID = std::stoll(key.substr(0, bar));
  page->curPage = std::stoull(key.substr(bar + 1));
  require(page->pageInfo() == key, "a page key says which page it is");
  return page;
}

}  // namespace

/// A page as a file would bring it back.
struct BoardSession::Lists {
  RecordList whole;
  RecordList snap;
};

BoardSession::BoardSession() {
  Decisions none{std::string_view()};
  letTimePass(none);
  open();
}

BoardSession::~BoardSession() { settle(); }

void BoardSession::open() {
  storage_ = VWBVectorStorage::initWithPath(kHome);
  storage_->setIgnoreChanges(false);
}

void BoardSession::settle() const { storage_->saveQueue()->waitUntilAllOperationsAreFinished(); }

void BoardSession::step(Decisions& decisions) {
  switch (decisions.below(16)) {
    case 0:
    case 1:
      settleRemovals();
      storage_->switchPage(makePage(decisions));
      return;
    case 2:
    case 3: {
      settleRemovals();
      VectorList vectors;
      for (std::size_t count = decisions.below(4); count > 0; --count) {
        vectors.push_back(decisions.below(16) == 15 ? nullptr : makeVector(decisions));
      }
      return storage_->appendVectors(vectors, makePage(decisions));
    }
    case 4:
      return storage_->saveFile(decisions.flip());
    case 5:
      isRemovalQueued_ = true;
      return storage_->clearPage(*makePage(decisions));
    case 6:
      return letTimePass(decisions);
    case 7:
      return look(decisions);
    case 8:
      return decisions.below(4) == 0 ? clear() : damageAFile(decisions);
    case 9:
      return decisions.below(4) == 0 ? reopen() : storage_->setIgnoreChanges(decisions.flip());
    default:
      return storage_->saveVector(makeVector(decisions));
  }
}

/// Files are read on the calling thread and removed on the queue: who wants a page back that has
/// just been cleared may still find its old files, which then go.
void BoardSession::settleRemovals() {
  if (isRemovalQueued_) settle();
  isRemovalQueued_ = false;
}

void BoardSession::letTimePass(Decisions& decisions) {
  now_ += std::chrono::seconds(decisions.below(30));
  clock_.setWallTime(now_);
  clock_.setMediaTime(static_cast<double>(now_.count()));
}

void BoardSession::clear() {
  settle();  // a write that is queued would bring its file back, as the rules say
  storage_->clear();
  require(storage_->pageArray().empty(), "a cleared board has no pages");
  require(storage_->wholeVectorss().empty(), "a cleared board has no vectors");
}

/// Puts bytes into a file of a page that has not been read yet.
void BoardSession::damageAFile(Decisions& decisions) {
  const std::string key = makePage(decisions)->pageInfo();
  if (storage_->snapVectorss().contains(key) || storage_->wholeVectorss().contains(key)) return;
  settle();
  const std::string folder = storage_->folder();
  const std::string file =
      decisions.flip() ? wholeListFile(folder, key) : snapListFile(folder, key);
  const FileResult written = writeAll(files_, file, decisions.bytes(64));
  require(written.ok(), "a file in memory can be written");
}

void BoardSession::look(Decisions& decisions) const {
  const auto page = makePage(decisions);
  settle();  // a removal that is queued must not take a file between the read and the question
  const VectorList snap = storage_->snapWithPage(*page);
  require(snap.empty() || storage_->snapVectorss().contains(page->pageInfo()) ||
              files_.exists(snapListFile(storage_->folder(), page->pageInfo())),
          "vectors come from the cache or from a file");
  for (const VectorPtr& vector : snap) require(vector != nullptr, "no entry is null");
  storage_->hasVectorsWithPage(*page);
  storage_->latestPage();
}

BoardSession::Pages BoardSession::pagesInMemory() const {
  Pages pages;
  for (const auto& [key, vectors] : storage_->wholeVectorss()) {
    if (key.empty()) continue;  // from before the first page, never written
    pages[key].whole = throughAFile(vectors, VelWbBaseVector::ownClass());
  }
  for (const auto& [key, vectors] : storage_->snapVectorss()) {
    if (key.empty()) continue;
    pages[key].snap = throughAFile(vectors, VelWbBaseVector::ownClass());
  }
  return pages;
}

void BoardSession::reopen() {
  storage_->saveFile(true);
  const Pages pages = pagesInMemory();
  const RecordList visited =
      switchPagesAmong(throughAFile(storage_->pageArray(), VelWbVecSwitchPage::ownClass()));
  settle();
  checkNames();
  open();
  requireEqual(visited, storage_->pageArray(), "the visited pages come back");
  comparePages(pages);
}

void BoardSession::comparePages(const Pages& before) const {
  // Another storage, so that reading does not change the session's storage.
  const auto reader = VWBVectorStorage::initWithPath(kHome);
  for (const auto& [key, lists] : before) {
    const auto page = pageOfKey(key);
    requireEqual(lists.snap, reader->snapWithPage(*page), "the snap list comes back");
    requireEqual(lists.snap, reader->switchPage(page), "a switch answers the snap list");
    requireEqual(lists.whole, reader->wholeVectorss().at(key), "the whole list comes back");
  }
}

void BoardSession::checkNames() const {
  std::vector<std::string> names;
  const FileResult listed = files_.list(storage_->folder(), names);
  require(listed.ok(), "the board's folder is there");
  for (const std::string& name : names) {
    require(name == "page.plist" || name.starts_with("whole_") || name.starts_with("snap_"),
            "only files of the board are in its folder");
    require(name.ends_with(".plist") || name.ends_with(kDamagedSuffix), "no temporary stays");
  }
}

}  // namespace fuzz
