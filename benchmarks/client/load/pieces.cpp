#include "benchmarks/client/load/pieces.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <string>
#include <utility>

namespace load {

namespace {

namespace vwb = VelWhiteBoard;

/// The x of a position counts positions, from one side of the board to the other, again and again.
constexpr std::size_t kMarks = 90'000;
constexpr double kMarksOfUnit = 1e5;
constexpr double kLeft = 45'000;

double xOf(std::size_t position) {
  return (static_cast<double>(position % kMarks) - kLeft) / kMarksOfUnit;
}

std::size_t markOf(double x) {
  return static_cast<std::size_t>(std::lround(x * kMarksOfUnit + kLeft));
}

double timeOf(std::size_t position) {
  constexpr double kBegin = 1'700'000'000'000;
  constexpr double kBetween = 5;  // milliseconds
  return (kBegin + kBetween * static_cast<double>(position)) / 1000;
}

std::size_t writerOf(std::string_view ID) {
  return static_cast<std::size_t>(std::strtoul(std::string(ID.substr(1)).c_str(), nullptr, 10));
}

}  // namespace

std::int64_t now() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

vwb::VectorPtr Pieces::next() {
  const std::size_t piece = count_.load();
  if (piece == sentAt_.size()) return nullptr;
  auto made = vwb::VelWbVecLine::initWithType(vwb::VelWBVectorStrMarkerPen);
  std::string ID = "u";
  ID += std::to_string(writer_);
  ID += '_';
  ID += std::to_string(piece / ofStroke_);
  made->ID = std::move(ID);
  made->color = "#FF3467FF";
  made->pixel = 2;
  made->ps = 400;
  made->end = (piece + 1) % ofStroke_ == 0;
  made->path.emplace();
  for (std::size_t i = 0; i < kPositionsOfPiece; ++i) {
    const std::size_t position = piece * kPositionsOfPiece + i;
    const double y = static_cast<double>(position * 7 % 80'000) / kMarksOfUnit - 0.4;
    made->path->push_back(
        {xOf(position), std::round(y * kMarksOfUnit) / kMarksOfUnit, timeOf(position)});
  }
  made->x = made->path->back()[0];
  made->y = made->path->back()[1];
  made->ts = made->path->back()[2];
  sentAt_[piece].store(now());
  count_.store(piece + 1);
  return made;
}

std::optional<Received> readVector(const vwb::VectorPtr& vector) {
  const auto* line = dynamic_cast<const vwb::VelWbVecLine*>(vector.get());
  if (line == nullptr || !line->ID || !line->path || line->path->empty()) return std::nullopt;
  return Received{writerOf(*line->ID), markOf((*line->path)[0][0]), line->path->size()};
}

std::optional<Received> readText(std::string_view text) {
  constexpr std::string_view kID = "\"ID\":\"";
  constexpr std::string_view kPath = "\"path\":[[";
  const std::size_t ID = text.find(kID);
  const std::size_t path = text.find(kPath);
  if (ID == std::string_view::npos || path == std::string_view::npos) return std::nullopt;
  const std::string_view positions = text.substr(path + kPath.size());
  const std::size_t end = positions.find("]]");
  if (end == std::string_view::npos) return std::nullopt;
  const auto more = std::count(positions.begin(), positions.begin() + static_cast<long>(end), '[');
  return Received{writerOf(text.substr(ID + kID.size(), 12)),
                  markOf(std::strtod(std::string(positions.substr(0, 12)).c_str(), nullptr)),
                  static_cast<std::size_t>(more) + 1};
}

void Receipt::add(std::uint64_t sequence, const std::optional<Received>& received,
                  std::int64_t time) {
  ++messages_;
  const bool isInOrder = sequence == 0 || sequence == sequence_ + 1;
  sequence_ = sequence;
  if (!received || received->writer >= writers_.size()) {
    ++faults_;
    return;
  }
  std::size_t& next = next_[received->writer];
  if (!isInOrder || received->first != next % kMarks) {
    ++faults_;
    return;
  }
  const Pieces& pieces = *writers_[received->writer];
  std::size_t arrived = 0;
  for (std::size_t i = 0; i < received->positions; ++i) {
    if (++next % kPositionsOfPiece != 0) continue;
    const std::size_t piece = next / kPositionsOfPiece - 1;
    if (piece >= pieces.count()) {
      ++faults_;
      return;
    }
    latencies_.push_back(
        static_cast<float>(static_cast<double>(time - pieces.sentAt(piece)) / 1e6));
    ++arrived;
  }
  if (last_ != 0) longestGap_ = std::max(longestGap_, static_cast<double>(time - last_) / 1e6);
  last_ = time;
  pieces_ += arrived;
}

}  // namespace load
