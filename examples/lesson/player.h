// Plays records into a board, as a client does with what it receives.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <chrono>
#include <cstddef>
#include <memory>
#include <unordered_map>
#include <vector>

#include "board.h"

namespace lesson {

using PagePtr = std::shared_ptr<VelWhiteBoard::VelWbVecSwitchPage>;

/// A page that the lesson visited, and what playing its records cost.
struct PlayedPage {
  PagePtr page;
  std::chrono::nanoseconds time{0};
};

class Player {
 public:
  explicit Player(BoardPtr board) : board_(std::move(board)) {}

  /// A page switch switches the page, everything else is saved on the current page.
  /// @param decoding what reading the record cost; it counts for the page.
  void play(const VelWhiteBoard::VectorPtr& record, std::chrono::nanoseconds decoding = {});

  /// The pages in the order of their first visit; two visits to one page key are one page.
  const std::vector<PlayedPage>& pages() const { return pages_; }
  /// How many records came before the first page switch. A board keeps those in memory only.
  std::size_t recordsWithoutPage() const { return recordsWithoutPage_; }

  const BoardPtr& board() const { return board_; }

 private:
  void turnTo(const PagePtr& page);

  BoardPtr board_;
  std::vector<PlayedPage> pages_;
  std::unordered_map<std::string, std::size_t> indexOfKey_;
  std::size_t current_ = 0;
  std::size_t recordsWithoutPage_ = 0;
};

}  // namespace lesson
