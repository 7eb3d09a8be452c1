// Whether a board's files hold what was drawn.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <cstdint>
#include <ctime>
#include <memory>
#include <mutex>
#include <set>
#include <string>

namespace whiteboard {

/// What has become of a board's writes. The board's queue reports to it, also after the board has
/// gone.
///
/// Threads: all operations may be called from any thread.
class SaveState {
 public:
  struct Summary {
    /// When a file was last written, seconds since 1970-01-01; 0 before the first.
    std::time_t lastWritten = 0;
    /// Why something is not saved, for a person; empty when everything that was written is.
    std::string problem;
  };

  /// Makes one that hears of all writes of `board`.
  static std::shared_ptr<SaveState> watch(VelWhiteBoard::VWBVectorStorage& board);

  Summary summary() const;
  /// How many files have been reported, written or not.
  std::uint64_t reports() const;
  /// Forgets failures, after the board has been cleared.
  void forget();

 private:
  void take(const VelWhiteBoard::WriteReport& report);

  mutable std::mutex mutex_;
  std::uint64_t reports_ = 0;
  std::set<std::string> failed_;
  Summary summary_;
};

}  // namespace whiteboard
