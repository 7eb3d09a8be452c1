#include "log_ledger.h"

#include <algorithm>
#include <cstddef>
#include <limits>

#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/commands.h"
#include "VelWhiteBoard/vectors/strokes.h"
#include "VelWhiteBoard/vectors/vector_defines.h"

namespace board_check {

using namespace VelWhiteBoard;

namespace {

constexpr std::size_t kTimeElement = 2;

/// Stays on no page, or only until the next vector comes.
bool isTransient(const VelWbBaseVector& vector) {
  const auto& type = vector.type;
  return type == VelWBVectorStrCursor || type == VelWBVectorStrCamera ||
         type == VelWBVectorStrMagnifier || type == VelWBVectorStrClear ||
         type == VelWBVectorStrRemove;
}

/// The newest time of a position; a stroke without a path is its own position.
double reachOf(const VelWbBaseVector& vector) {
  const auto* stroke = recordCast<const VelWbVecLine>(vector);
  if (stroke == nullptr) return 0;
  if (!stroke->path) return stroke->ts;
  double newest = -std::numeric_limits<double>::infinity();
  for (const auto position : *stroke->path) {
    if (position.size() > kTimeElement) newest = std::max(newest, position[kTimeElement]);
  }
  return newest;
}

bool moves(const VelWbBaseVector& vector) {
  const auto* stroke = recordCast<const VelWbVecLine>(vector);
  return stroke != nullptr && stroke->offset.has_value();
}

}  // namespace

LogLedger::Kind LogLedger::kindOf(const VelWbBaseVector& record) {
  if (recordCast<const VelWbVecLine>(record) != nullptr) return Kind::kStroke;
  return recordCast<const VelWbVecSquare>(record) != nullptr ? Kind::kBox : Kind::kOther;
}

void LogLedger::addRecord(const VelWbBaseVector& record) {
  isEmpty_ = false;
  if (record.type == VelWBVectorStrRemove) remove(record);
  if (record.type == VelWBVectorStrClear) {
    ++clears_;
    gapsAtClear_ = gaps_;
  }
  const bool isCommand = record.type == VelWBVectorStrRemove || record.type == VelWBVectorStrClear;
  if (!record.ID || isCommand) return;
  const auto [place, isNew] = traces_.try_emplace(*record.ID);
  Trace& trace = place->second;
  if (isNew) {
    trace.kind = kindOf(record);
    trace.type = record.type;
    trace.newest = record.ts;
  }
  trace.isMixed = trace.isMixed || !record.type || isTransient(record) ||
                  trace.type != record.type || trace.kind != kindOf(record);
  extend(trace, record);
}

void LogLedger::extend(Trace& trace, const VelWbBaseVector& record) {
  trace.isMoved = trace.isMoved || moves(record);
  trace.reach = isOnPage(trace) ? std::max(trace.reach, reachOf(record)) : reachOf(record);
  trace.isOnPage = true;
  trace.last = record.ts;
  trace.newest = std::max(trace.newest, record.ts);
  trace.clears = clears_;
  trace.gaps = gaps_;
}

void LogLedger::remove(const VelWbBaseVector& record) {
  const auto* removal = recordCast<const VelWbVecRemove>(record);
  if (removal == nullptr || !removal->rmID) return;
  const auto found = traces_.find(*removal->rmID);
  if (found == traces_.end()) return;
  found->second.isOnPage = false;
  found->second.wasRemoved = true;
  found->second.gaps = gaps_;
}

bool LogLedger::isComparable(const Trace& trace) {
  // Of what is neither stroke nor box there may be several on the page, and which of them a removal
  // takes depends on the way they came.
  return !trace.isMixed && (trace.kind != Kind::kOther || !trace.wasRemoved);
}

Ahead LogLedger::judge(const VelWbBaseVector& entry) {
  if (!entry.ID || isTransient(entry)) return Ahead::kNeither;
  const auto found = traces_.find(*entry.ID);
  if (found == traces_.end()) return Ahead::kSnapshot;
  Trace& trace = found->second;
  const Ahead ahead = compare(trace, entry);
  trace.wasJudged = true;
  trace.isMatched = trace.isMatched || ahead != Ahead::kLog;
  return ahead;
}

Ahead LogLedger::compare(const Trace& trace, const VelWbBaseVector& entry) const {
  if (!isComparable(trace) || trace.type != entry.type || trace.kind != kindOf(entry)) {
    return Ahead::kNeither;
  }
  return isOnPage(trace) ? judgePresent(trace, entry) : judgeAbsent(trace, entry.ts);
}

Ahead LogLedger::judgeAbsent(const Trace& trace, double time) const {
  const std::uint64_t gaps =
      trace.clears == clears_ ? trace.gaps : std::max(trace.gaps, gapsAtClear_);
  return time > trace.newest || gaps < gaps_ ? Ahead::kSnapshot : Ahead::kLog;
}

Ahead LogLedger::judgePresent(const Trace& trace, const VelWbBaseVector& entry) {
  if (trace.kind == Kind::kOther) return Ahead::kNeither;
  if (entry.ts < trace.last) return Ahead::kLog;
  if (entry.ts > trace.newest) return Ahead::kSnapshot;
  if (trace.kind != Kind::kStroke || trace.isMoved || moves(entry)) return Ahead::kNeither;
  // Positions without a time are taken again and again.
  const double reach = reachOf(entry);
  if (!(reach > 0) || !(trace.reach > 0) || reach == trace.reach) return Ahead::kNeither;
  return reach < trace.reach ? Ahead::kLog : Ahead::kSnapshot;
}

void LogLedger::forEachUnmatched(
    const std::function<void(const Unmatched& unmatched)>& visit) const {
  for (const auto& [ID, trace] : traces_) {
    const bool isMissing = !trace.wasJudged && isOnPage(trace) && isComparable(trace);
    const bool isBehind = trace.wasJudged && !trace.isMatched;
    if (isMissing || isBehind) visit({ID, isMissing && trace.gaps < gaps_});
  }
}

}  // namespace board_check
