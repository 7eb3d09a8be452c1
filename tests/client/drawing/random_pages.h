// Pages of all kinds of entries, with what other machines may send.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <cstdint>

#include "tests/support/dice.h"

namespace whiteboard {

/// The same seed gives the same entries.
class RandomPages {
 public:
  explicit RandomPages(std::uint64_t seed) : dice_(seed) {}

  VelWhiteBoard::VectorList page(int entries);
  VelWhiteBoard::VectorPtr entry();
  VelWhiteBoard::VectorPtr stroke();
  /// Adds positions to a stroke, as its later pieces do.
  void grow(VelWhiteBoard::VelWbVecLine& stroke, int positions);
  VelWhiteBoard::Dice& dice() { return dice_; }

 private:
  double between(double low, double high);
  /// Mostly on the board or near it; now and then far off, or no number.
  double fraction();
  double size();
  std::string colour();
  std::string words();
  void place(VelWhiteBoard::VelWbVecSquare& box);
  VelWhiteBoard::VectorPtr diagram();
  VelWhiteBoard::VectorPtr text();
  VelWhiteBoard::VectorPtr file();

  VelWhiteBoard::Dice dice_;
};

}  // namespace whiteboard
