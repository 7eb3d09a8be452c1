// The pieces of strokes that the load consists of, and the check of what arrives.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace load {

constexpr std::size_t kPositionsOfPiece = 5;

/// Nanoseconds of the steady clock.
std::int64_t now();

/// What one writer sends: strokes of several pieces, one after the other.
///
/// Threads: `next` for one thread, `sentAt` for all.
class Pieces {
 public:
  /// @param writer its number in the lesson, part of each identifier.
  /// @param most how many pieces at most.
  Pieces(std::size_t writer, std::size_t most, std::size_t ofStroke)
      : writer_(writer), ofStroke_(ofStroke), sentAt_(most) {}

  /// The next piece, which is about to be sent. Null at the end.
  VelWhiteBoard::VectorPtr next();
  std::size_t count() const { return count_.load(); }
  /// When a piece was sent, see `now`.
  std::int64_t sentAt(std::size_t piece) const { return sentAt_[piece].load(); }

 private:
  std::size_t writer_;
  std::size_t ofStroke_;
  std::atomic<std::size_t> count_ = 0;
  std::vector<std::atomic<std::int64_t>> sentAt_;
};

/// What a message says of itself. Pieces that waited at their sender may be joined.
struct Received {
  std::size_t writer = 0;
  /// The mark of the first position, and how many there are.
  std::size_t first = 0;
  std::size_t positions = 0;
};

std::optional<Received> readVector(const VelWhiteBoard::VectorPtr& vector);
/// The same from a message's text. Only for texts of `Pieces`.
std::optional<Received> readText(std::string_view text);

/// What one participant has received of one lesson.
///
/// Threads: `add` for one thread; `pieces` for all; the others when nothing is added any more.
class Receipt {
 public:
  explicit Receipt(std::vector<const Pieces*> writers)
      : writers_(std::move(writers)), next_(writers_.size()) {}

  /// @param sequence the place in the stream; 0 where it is not known.
  void add(std::uint64_t sequence, const std::optional<Received>& received, std::int64_t time);

  std::size_t pieces() const { return pieces_.load(); }
  std::size_t messages() const { return messages_; }
  /// How many messages were not those that had to come.
  std::size_t faults() const { return faults_; }
  /// From publish to arrival, of each piece, in milliseconds.
  const std::vector<float>& latencies() const { return latencies_; }
  /// The longest time without an arrival, in milliseconds, between the first and the last one.
  double longestGap() const { return longestGap_; }

 private:
  std::vector<const Pieces*> writers_;
  /// The number of the position that comes next, for each writer.
  std::vector<std::size_t> next_;
  std::uint64_t sequence_ = 0;
  std::atomic<std::size_t> pieces_ = 0;
  std::size_t messages_ = 0;
  std::size_t faults_ = 0;
  std::vector<float> latencies_;
  std::int64_t last_ = 0;
  double longestGap_ = 0;
};

}  // namespace load
