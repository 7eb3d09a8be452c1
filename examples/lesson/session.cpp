#include "session.h"

#include <chrono>
#include <functional>
#include <iostream>
#include <optional>
#include <string>

#include "board.h"
#include "drawing/pictures.h"
#include "lesson_log.h"
#include "other_clients.h"
#include "player.h"
#include "progress.h"
#include "report.h"
#include "verifier.h"

namespace lesson {

namespace vwb = VelWhiteBoard;

namespace {

/// Plays the whole log.
/// @return the number of lines that were skipped.
std::size_t play(LessonLog& log, Player& player, std::optional<OtherClients>& others) {
  std::size_t skipped = 0;
  Progress progress(log.size());
  while (const auto line = log.nextLine()) {
    const auto start = std::chrono::steady_clock::now();
    const DecodedLine decoded = decodeLine(*line);
    const auto decoding = std::chrono::steady_clock::now() - start;
    if (decoded.record) {
      if (others) others->receive(*decoded.record);
      player.play(decoded.record, decoding);
    } else {
      ++skipped;
      progress.erase();
      std::cerr << "lesson: line " << log.lineNumber() << ": " << decoded.whyNot << ", skipped\n";
    }
    progress.show(log.bytesRead(), log.lineNumber());
  }
  finishWriting(*player.board());
  if (others) others->finish();
  return skipped;
}

bool compareClients(const Player& player, const OtherClients& others, vwb::Size size) {
  const Agreement second = others.compareSecond(player, size);
  const Agreement doubled = others.compareDoubled(player, size);
  printAgreement(std::cout, "Second client", second);
  printAgreement(std::cout, "Client that received everything twice", doubled);
  return second.differences.empty() && doubled.differences.empty();
}

using Writer = void (*)(const std::string&, const vwb::VectorList&, vwb::Size);

void drawPages(const Verification& verification, const std::optional<std::string>& folder,
               const std::string& suffix, Writer write, vwb::Size size) {
  if (!folder) return;
  for (const ReopenedPage& page : verification.pages) {
    write(*folder + "/page-" + page.page->pageInfo() + suffix, page.snapshot, size);
  }
  std::cout << "Pictures: " << *folder << "/page-*" << suffix << '\n';
}

void drawSheets(const Verification& verification, const std::optional<std::string>& path,
                vwb::Size size) {
  if (!path) return;
  PdfFile file(*path, size);
  for (const ReopenedPage& page : verification.pages) file.add(page.snapshot);
  file.finish();
  std::cout << "Pictures: " << *path << '\n';
}

bool wasEverythingTaken(std::size_t skipped, const Player& player) {
  if (skipped > 0) std::cout << "Lines skipped: " << skipped << ".\n";
  if (player.recordsWithoutPage() > 0) {
    std::cerr << "lesson: " << player.recordsWithoutPage()
              << " records came before the first page switch; the board keeps them in no file\n";
  }
  return skipped == 0 && player.recordsWithoutPage() == 0;
}

}  // namespace

bool runLesson(const Options& options) {
  LessonLog log(options.file);
  startUp(options.size);
  if (options.svgFolder) prepareFolder(*options.svgFolder);
  if (options.pngFolder) prepareFolder(*options.pngFolder);
  const std::string home = boardHome(options.board);
  Player player(openBoard(home, options.fresh));
  std::optional<OtherClients> others;
  if (options.secondClient) others.emplace(home, options.fresh);
  std::cout << "Board: " << player.board()->folder() << "\n\n";

  const std::size_t skipped = play(log, player, others);
  const Verification verification = verify(player);
  printTable(std::cout, verification);
  bool isKept = verification.isEverythingEqual();
  if (others) isKept = compareClients(player, *others, options.size) && isKept;
  isKept = wasEverythingTaken(skipped, player) && isKept;
  drawPages(verification, options.svgFolder, ".svg", writeSvg, options.size);
  drawPages(verification, options.pngFolder, ".png", writePng, options.size);
  drawSheets(verification, options.pdfFile, options.size);
  return isKept;
}

}  // namespace lesson
