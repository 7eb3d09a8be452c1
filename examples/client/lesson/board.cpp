#include "lesson/board.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <system_error>

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

using std::chrono_literals::operator""ms;

/// A page is written so long after its last change.
constexpr auto kSaveAfter = 1500ms;
/// What arrives for pages that are not shown is filed this late: each filing writes the page.
constexpr auto kFlushAfter = 1000ms;
constexpr std::size_t kMostCollected = 5000;
/// More are not listed: page numbers come from other machines.
constexpr std::size_t kMostPages = 2000;

Board::PageNumber numberOf(const vwb::VelWbVecSwitchPage& page) {
  return {page.WBID, page.curPage};
}

}  // namespace

Board::Page pageSwitchTo(const Board::PageNumber& number) {
  auto page = vwb::recordPointerCast<vwb::VelWbVecSwitchPage>(
      vwb::VWBToolManager::genVectorWithType(vwb::VelWBVectorTypeSwitchPage));
  page->WBID = number.first;
  page->curPage = number.second;
  return page;
}

Board::Board(const std::string& folder, const PageNumber& first)
    : storage_(vwb::VWBVectorStorage::initWithPath(folder)), saves_(SaveState::watch(*storage_)) {
  for (const auto& visited : storage_->pageArray()) pages_.insert(numberOf(*visited));
  saveTimer_.setSingleShot(true);
  flushTimer_.setSingleShot(true);
  connect(&saveTimer_, &QTimer::timeout, this, &Board::save);
  connect(&flushTimer_, &QTimer::timeout, this, &Board::flush);

  storage_->setIgnoreChanges(false);
  storage_->setChangeObserver([this](const vwb::ChangeReport& report) {
    if (report.kind == vwb::ChangeReport::Kind::kEntries) {
      isUnsaved_ = true;
      saveTimer_.start(kSaveAfter);
    }
    emit changed(report);
  });
  const auto latest = storage_->latestPage();
  turnTo(latest ? latest : pageSwitchTo(first));
}

Board::~Board() {
  flush();
  save();
  storage_->setChangeObserver(nullptr);
}

vwb::VectorList Board::entries(const PageNumber& page) {
  flush();
  return storage_->snapWithPage(*pageSwitchTo(page));
}

vwb::VectorList Board::shownEntries(const PageNumber& page) {
  return ink_.over(pageSwitchTo(page)->pageInfo(), entries(page));
}

vwb::VectorPtr Board::shownEntry(const std::string& ID) const {
  const OwnInk::Ink* own = ink_.find(ID);
  if (own != nullptr && own->page == pageKey()) return own->shown;
  return ink_.isCleared(pageKey()) ? nullptr : storage_->entryWithID(ID);
}

void Board::file(const std::string& page, const vwb::VectorPtr& vector) {
  if (page == pageKey()) return storage_->saveVector(vector);
  const Page other = vwb::VelWbVecSwitchPage::pageFromInfo(page);
  if (!other) return;
  addPage(numberOf(*other));
  vwb::VectorList& collected = forOtherPages_[page];
  collected.push_back(vector);
  if (collected.size() >= kMostCollected) {
    flush();
  } else if (!flushTimer_.isActive()) {
    flushTimer_.start(kFlushAfter);
  }
}

void Board::flush() {
  flushTimer_.stop();
  for (const auto& [page, vectors] : std::exchange(forOtherPages_, {})) {
    storage_->saveVectors(vectors, vwb::VelWbVecSwitchPage::pageFromInfo(page));
  }
}

void Board::turnTo(const Page& page) {
  if (page_ && numberOf(*page) == number()) return;
  if (page_) emit aboutToTurn();
  flush();
  page_ = page;
  pages_.insert(numberOf(*page));
  storage_->switchPage(page);
  emit pagesChanged();
}

void Board::addPage(const PageNumber& page) {
  if (pages_.size() >= kMostPages) return;
  if (pages_.insert(page).second) emit pagesChanged();
}

void Board::clear() {
  forOtherPages_.clear();
  // Page by page: the removals stand in the queue behind the writes that wait there, while clearing
  // the whole board at once would let such a write bring a page back.
  for (const PageNumber& page : pages_) storage_->clearPage(*pageSwitchTo(page));
  storage_->setPageArray({page_});
  saves_->forget();
  pages_ = {number()};
  emit pagesChanged();
}

void Board::beginAnew() {
  forOtherPages_.clear();
  writtenAfter_ = 0;
  storage_->saveQueue()->waitUntilAllOperationsAreFinished();
  const std::filesystem::path folder = storage_->folder();
  const std::filesystem::path before = folder.string() + ".before";
  std::error_code ignored;  // without the old copy the lesson goes on all the same
  std::filesystem::remove_all(before, ignored);
  std::filesystem::rename(folder, before, ignored);
  storage_->clear();
  saves_->forget();
  pages_ = {number()};
  addPagesOfInk();
  emit pagesChanged();
}

void Board::addPagesOfInk() {
  for (const auto& [ID, ink] : ink_.inks()) {
    if (const Page page = vwb::VelWbVecSwitchPage::pageFromInfo(ink.page)) addPage(numberOf(*page));
  }
}

bool Board::isUnsaved() const {
  return isUnsaved_ || saves_->reports() < writtenAfter_ || !saves_->summary().problem.empty();
}

void Board::tell(const OwnInk::Change& change) {
  if (!change.ID.empty()) emit inkChanged(change.ID, change.firstNew);
  if (change.isOfPage) emit inkOfPageChanged();
}

vwb::VectorPtr Board::entryOn(const std::string& page, const std::string& ID) {
  if (ink_.isCleared(page)) return nullptr;
  if (page == pageKey()) return storage_->entryWithID(ID);
  const Page other = vwb::VelWbVecSwitchPage::pageFromInfo(page);
  if (!other) return nullptr;
  const vwb::VectorList all = entries(numberOf(*other));
  const auto found =
      std::find_if(all.begin(), all.end(), [&](const auto& each) { return each->ID == ID; });
  return found == all.end() ? nullptr : *found;
}

void Board::showInk(const std::string& page, const vwb::VelWbBaseVector& change) {
  tell(ink_.show(page, change, entryOn(page, change.ID.value_or(""))));
}

void Board::inkReceived(const vwb::VelWbBaseVector& vector) { tell(ink_.received(vector)); }

void Board::forgetInk(const std::string& ID) { tell(ink_.forget(ID)); }

void Board::restoreInk(const std::string& ID, const std::optional<OwnInk::Ink>& before) {
  tell(ink_.restore(ID, before));
}

void Board::save() {
  saveTimer_.stop();
  // A save writes the page's two files.
  if (isUnsaved_) writtenAfter_ = saves_->reports() + 2;
  storage_->saveFile(true);
  if (!saves_->summary().problem.empty()) storage_->retryFailedSaves();
  isUnsaved_ = false;
}

}  // namespace whiteboard
