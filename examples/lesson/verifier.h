// The proof that a board's files hold what the board held in memory.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "player.h"

namespace lesson {

/// One page as a second storage found it in the files.
struct ReopenedPage {
  PagePtr page;
  /// The present state of the page.
  VelWhiteBoard::VectorList snapshot;
  /// Number of records in the page's log.
  std::size_t records = 0;
  std::size_t strokes = 0;
  std::size_t positions = 0;
  std::uint64_t wholeFileBytes = 0;
  std::uint64_t snapFileBytes = 0;
  /// What playing the page's records took.
  std::chrono::nanoseconds time{0};
  /// What came back different from memory; empty when everything is equal.
  std::string difference;
};

struct Verification {
  std::vector<ReopenedPage> pages;
  /// What is different in the list of visited pages; empty when it is equal.
  std::string differenceOfVisits;

  bool isEverythingEqual() const;
};

/// Opens the player's board afresh, with a storage that knows nothing but the files, and compares
/// every page with what the player's storage has in memory. Everything must have been written.
Verification verify(const Player& player);

}  // namespace lesson
