#include "VelWhiteBoard/storage/visited_pages.h"

#include <cstddef>
#include <cstdint>

#include "VelWhiteBoard/foundation/truncation.h"
#include "VelWhiteBoard/storage/board_files.h"

namespace VelWhiteBoard {

namespace {

std::int64_t millisecond(const VelWbVecSwitchPage& page) {
  constexpr double kMillisecondsPerSecond = 1000.0;
  return truncatedToSigned(page.ts * kMillisecondsPerSecond);
}

/// Whether the client has left its record as it was when `copy` was made.
bool isUnchanged(const VelWbVecSwitchPage& page, const VelWbVecSwitchPage& copy) {
  bool same = true;
  VelWbVecSwitchPage::properties([&]<auto Member>(DeclaredProperty<Member>) {
    same = same && page.*Member == copy.*Member;
  });
  return same;
}

}  // namespace

VisitedPages::VisitedPages(const std::vector<Page>& pages) {
  for (const Page& page : pages) {
    if (page) add(page);
  }
}

void VisitedPages::record(const Page& page) {
  if (!pages_.empty() && millisecond(*pages_.back()) == millisecond(*page)) {
    pages_.pop_back();
    recorded_.erase(recorded_.endPlace() - 1);
  }
  add(page);
}

PageList VisitedPages::forFile() {
  for (std::size_t place = 0; place < pages_.size(); ++place) {
    const auto& copy = static_cast<const VelWbVecSwitchPage&>(*recorded_.at(place));
    if (!isUnchanged(*pages_[place], copy)) {
      recorded_.replace(place, pages_[place]->copyWithZone());
    }
  }
  return recorded_;
}

void VisitedPages::add(const Page& page) {
  recorded_.push_back(page->copyWithZone());
  pages_.push_back(page);
}

VisitedPagesSave::VisitedPagesSave(PageList pages, std::shared_ptr<const PageFilePath> path,
                                   std::shared_ptr<DamagedFiles> damaged)
    : path_(std::move(path)), damaged_(std::move(damaged)), pages_(std::move(pages)) {}

void VisitedPagesSave::supersede() {
  const MutexHold hold(mutex_);
  isOver_ = true;
  pages_ = {};
}

bool VisitedPagesSave::replaceBy(PageList pages) {
  const MutexHold hold(mutex_);
  if (isOver_ || isClosed_) return false;
  std::swap(pages_, pages);
  return true;
}

void VisitedPagesSave::close() {
  const MutexHold hold(mutex_);
  isClosed_ = true;
}

void VisitedPagesSave::write() {
  PageList pages;
  {
    const MutexHold hold(mutex_);
    if (std::exchange(isOver_, true)) return;
    std::swap(pages, pages_);
  }
  writeRecords(path_->get(), *damaged_, [&pages](PropertyListWriter& writer) {
    pages.forEach([&writer](const VectorPtr& page) { writer.add(*page); });
  });
}

}  // namespace VelWhiteBoard
