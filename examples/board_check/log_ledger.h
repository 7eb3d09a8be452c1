// Whether a page's log and its snapshot tell of the same state.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>

#include "VelWhiteBoard/vectors/base_vector.h"

namespace board_check {

/// Which of a page's two files knows more of an entry.
enum class Ahead { kNeither, kLog, kSnapshot };

/// What a page's log says of each identifier, kept small: whether the page still has its entry, and
/// how new that is. The rule by which a snapshot is compared with it is in docs/reliability.md.
///
/// It holds for vectors that were saved as for vectors that were appended, of which the log does
/// not tell which they were, and it holds across sessions. Where the two ways lead to different
/// states it takes either.
class LogLedger {
 public:
  /// The next record of the log.
  void addRecord(const VelWhiteBoard::VelWbBaseVector& record);
  /// Records may be missing here.
  void addGap() { ++gaps_; }

  bool isEmpty() const { return isEmpty_; }

  /// Compares an entry of the snapshot; to be called once the whole log is known.
  Ahead judge(const VelWhiteBoard::VelWbBaseVector& entry);

  /// An identifier of which the log knows more than all entries that were judged.
  struct Unmatched {
    const std::string& ID;
    /// There was no entry, and a record that removes it may stand in a gap of the log.
    bool mayBeRemoved;
  };
  void forEachUnmatched(const std::function<void(const Unmatched& unmatched)>& visit) const;

 private:
  enum class Kind : std::uint8_t { kStroke, kBox, kOther };

  /// What the log says of one identifier.
  struct Trace {
    Kind kind = Kind::kOther;
    std::optional<std::string> type;
    /// Records of several kinds, of no type, or of one that does not stay: what becomes of them
    /// depends on the way they came.
    bool isMixed = false;
    bool wasRemoved = false;
    bool isOnPage = false;
    bool wasJudged = false;
    /// One of the judged entries was not older than the log. When a stroke stands twice on the
    /// page, only one of the two grows after the board has been opened again.
    bool isMatched = false;
    /// A piece with an offset moves its stroke instead of extending it.
    bool isMoved = false;
    /// The time of the last record, and the newest time of any.
    double last = 0;
    double newest = 0;
    /// The newest time of a position of the stroke.
    double reach = 0;
    /// How many clears and gaps came before the last record.
    std::uint64_t clears = 0;
    std::uint64_t gaps = 0;
  };

  static Kind kindOf(const VelWhiteBoard::VelWbBaseVector& record);
  bool isOnPage(const Trace& trace) const { return trace.isOnPage && trace.clears == clears_; }
  static bool isComparable(const Trace& trace);
  Ahead compare(const Trace& trace, const VelWhiteBoard::VelWbBaseVector& entry) const;
  Ahead judgeAbsent(const Trace& trace, double time) const;
  static Ahead judgePresent(const Trace& trace, const VelWhiteBoard::VelWbBaseVector& entry);
  void remove(const VelWhiteBoard::VelWbBaseVector& record);
  void extend(Trace& trace, const VelWhiteBoard::VelWbBaseVector& record);

  std::unordered_map<std::string, Trace> traces_;
  bool isEmpty_ = true;
  std::uint64_t clears_ = 0;
  std::uint64_t gaps_ = 0;
  /// How many gaps came before the last clear.
  std::uint64_t gapsAtClear_ = 0;
};

}  // namespace board_check
