// The recorded lesson, line by line.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <istream>
#include <optional>
#include <string>
#include <string_view>

namespace lesson {

/// Reads a lesson from a file or from standard input. Empty lines are passed over.
class LessonLog {
 public:
  /// Opens the file; "-" is standard input.
  /// @throws CannotRun when it cannot be read.
  explicit LessonLog(const std::string& file);
  LessonLog(const LessonLog&) = delete;
  LessonLog& operator=(const LessonLog&) = delete;

  /// The next line that is not empty; none at the end. Valid until the next call.
  /// @throws CannotRun when reading fails.
  std::optional<std::string_view> nextLine();

  /// The number of the line that was read last; the first is 1.
  std::size_t lineNumber() const { return lineNumber_; }
  /// How much was read so far, and how much there is; the latter is known for files only.
  std::uint64_t bytesRead() const { return bytesRead_; }
  std::optional<std::uint64_t> size() const { return size_; }

 private:
  std::string file_;
  std::ifstream stream_;
  std::istream& input_;
  std::string line_;
  std::size_t lineNumber_ = 0;
  std::uint64_t bytesRead_ = 0;
  std::optional<std::uint64_t> size_;
};

/// What became of one line: a record, or the reason why it is none.
struct DecodedLine {
  VelWhiteBoard::VectorPtr record;
  std::string_view whyNot;
};

/// The record of a line. An object that has neither a type name nor a position is no record: it
/// would be filed as a vector that says nothing.
DecodedLine decodeLine(std::string_view line);

}  // namespace lesson
