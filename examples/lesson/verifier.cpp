#include "verifier.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>

#include "comparison.h"

namespace lesson {

namespace vwb = VelWhiteBoard;

namespace {

using Lists = vwb::VWBVectorStorage::ListsByPage;

vwb::VectorList listOf(const Lists& lists, const std::string& key) {
  const auto found = lists.find(key);
  return found == lists.end() ? vwb::VectorList() : found->second;
}

std::uint64_t sizeOfFile(const std::optional<std::string>& path) {
  if (!path) return 0;
  std::error_code error;
  const auto size = std::filesystem::file_size(*path, error);
  return error ? 0 : size;  // a page without records has no files
}

void countStrokes(ReopenedPage& page) {
  for (const vwb::VectorPtr& entry : page.snapshot) {
    const auto* const positioned = vwb::recordCast<const vwb::VelWbVecPoint>(entry.get());
    if (positioned == nullptr) continue;
    if (positioned->path) page.positions += positioned->path->size();
    if (vwb::recordCast<const vwb::VelWbVecLine>(entry.get()) != nullptr) ++page.strokes;
  }
}

std::string differenceOf(const ReopenedPage& page, const vwb::VectorList& log,
                         const Lists& playedLogs, const Lists& playedSnapshots) {
  const std::string key = page.page->pageInfo();
  std::string difference = firstDifference(listOf(playedSnapshots, key), page.snapshot);
  if (!difference.empty()) return "in the snapshot, " + difference;
  difference = firstDifference(listOf(playedLogs, key), log);
  if (!difference.empty()) return "in the log, " + difference;
  return {};
}

vwb::VectorList visitsOf(const vwb::VWBVectorStorage& board) {
  const auto pages = board.pageArray();
  return {pages.begin(), pages.end()};
}

}  // namespace

bool Verification::isEverythingEqual() const {
  return differenceOfVisits.empty() &&
         std::all_of(pages.begin(), pages.end(),
                     [](const ReopenedPage& page) { return page.difference.empty(); });
}

Verification verify(const Player& player) {
  const vwb::VWBVectorStorage& played = *player.board();
  const Lists playedLogs = played.wholeVectorss();
  const Lists playedSnapshots = played.snapVectorss();
  // It ignores changes, so looking at the pages leaves no trace in the board's files.
  const BoardPtr board =
      vwb::VWBVectorStorage::initWithPath(std::filesystem::path(played.folder()).parent_path());

  Verification result;
  result.differenceOfVisits = firstDifference(visitsOf(played), visitsOf(*board));
  for (const PlayedPage& each : player.pages()) {
    ReopenedPage page;
    page.page = each.page;
    page.time = each.time;
    page.snapshot = board->switchPage(each.page);
    page.wholeFileBytes = sizeOfFile(board->wholeFile());
    page.snapFileBytes = sizeOfFile(board->snapFile());
    const vwb::VectorList log = listOf(board->wholeVectorss(), each.page->pageInfo());
    page.records = log.size();
    countStrokes(page);
    page.difference = differenceOf(page, log, playedLogs, playedSnapshots);
    result.pages.push_back(std::move(page));
  }
  return result;
}

}  // namespace lesson
