#include "VelWhiteBoard/storage/lists/visited_pages.h"

#include <cstddef>
#include <cstdint>

#include "VelWhiteBoard/foundation/values/truncation.h"

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
  pages_.reserve(pages.size());
  for (const Page& page : pages) {
    if (!page) continue;
    recorded_.push_back(page->copyWithZone());
    pages_.push_back(page);
  }
}

SharedVectorList VisitedPages::forFile() {
  for (std::size_t place = 0; place < pages_.size(); ++place) {
    const auto& copy = static_cast<const VelWbVecSwitchPage&>(*recorded_.at(place));
    if (!isUnchanged(*pages_[place], copy)) {
      recorded_.replace(place, pages_[place]->copyWithZone());
    }
  }
  return recorded_;
}

VisitedPages::Next VisitedPages::prepare(const Page& page) {
  // Growing step by step, as push_back would.
  if (pages_.size() == pages_.capacity()) pages_.reserve(2 * pages_.size() + 1);
  Next next{page, !pages_.empty() && millisecond(*pages_.back()) == millisecond(*page), forFile()};
  if (next.replaces) {
    next.forFile.replace(pages_.size() - 1, page->copyWithZone());
  } else {
    next.forFile.push_back(page->copyWithZone());
  }
  return next;
}

void VisitedPages::record(Next next) noexcept {
  if (next.replaces) {
    pages_.back() = std::move(next.page);
  } else {
    pages_.push_back(std::move(next.page));
  }
  std::swap(recorded_, next.forFile);
}

}  // namespace VelWhiteBoard
