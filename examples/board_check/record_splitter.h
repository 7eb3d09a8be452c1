// The records of a list that cannot be parsed as a whole.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace board_check {

/// A record takes at most this much of a file. Reading gives up beyond it, so that memory is
/// bounded whatever a file holds; a stroke of half a million positions is smaller.
inline constexpr std::size_t kLargestRecord = std::size_t{64} << 20U;

/// Successive lines of a file: those of one record, or one line that belongs to no record.
struct Stretch {
  /// From the record's first line to the end of its last; empty for a line outside, and for a
  /// record that is too long.
  std::string_view text;
  /// Where it begins in the file, in bytes.
  std::uint64_t offset = 0;
  /// Its first line, counted from 1.
  std::uint64_t line = 1;
  std::uint64_t bytes = 0;
  /// The number of the record, counted from 1; 0 for a line outside.
  std::uint64_t record = 0;
  bool isTooLong = false;
};

/// Finds the records of a property list by its layout alone: in the classic layout (the library's,
/// and that of every common writer) the line on which a record begins or ends has one character of
/// indentation before its tag, and no other line looks like that.
///
/// So a broken record costs itself and no other. Time is linear in the text, memory is that of one
/// record.
class RecordSplitter {
 public:
  using Consumer = std::function<void(const Stretch& stretch)>;

  /// `consume` takes the stretches in order; lines outside only when they are neither blank nor
  /// part of the frame around the records.
  explicit RecordSplitter(Consumer consume) : consume_(std::move(consume)) {}

  void feed(std::string_view block);
  /// Ends the text, once.
  void finish();

 private:
  void addToLine(std::string_view part);
  void endLine();
  void beginRecord();
  void endRecord(std::size_t size);
  bool mayBeginRecord() const;

  Consumer consume_;
  /// The first bytes of the present line, enough to tell what it is.
  std::string head_;
  std::uint64_t lineBytes_ = 0;
  std::uint64_t lineOffset_ = 0;
  std::uint64_t line_ = 1;
  /// What is kept of the record, and where in it the present line begins.
  std::string text_;
  std::size_t lineInText_ = 0;
  bool isTooLong_ = false;
  bool isInRecord_ = false;
  Stretch record_;
  std::uint64_t records_ = 0;
};

}  // namespace board_check
