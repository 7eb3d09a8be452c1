// How much memory a piece of work takes, in an executable that links counted_memory.cpp.
#pragma once

#include <cstddef>

namespace VelWhiteBoard {

/// The most bytes that `operator new` had given out at one time since this began, on all threads,
/// beyond those that were out already.
class PeakMemory {
 public:
  PeakMemory();
  std::size_t bytes() const;

 private:
  std::size_t before_;
};

}  // namespace VelWhiteBoard
