// Bytes drive whole sessions on one board: vectors of every kind, page switches, saves, clears,
// files that get damaged, and the board being opened again. Whenever it is, every page is what it
// was.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz/check.h"
#include "fuzz/storage/board_session.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr int kMostSteps = 400;
  fuzz::Decisions decisions(fuzz::textOf(data, size));
  fuzz::BoardSession session;
  for (int step = 0; step < kMostSteps && !decisions.empty(); ++step) session.step(decisions);
  session.reopen();
  return 0;
}
