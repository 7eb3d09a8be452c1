#include "lesson_log.h"

#include <cstdio>
#include <filesystem>
#include <iostream>
#include <system_error>

#include "cannot_run.h"

namespace lesson {

namespace vwb = VelWhiteBoard;

LessonLog::LessonLog(const std::string& file)
    : file_(file == "-" ? "standard input" : file), input_(file == "-" ? std::cin : stream_) {
  if (file == "-") return;
  std::error_code error;
  if (!std::filesystem::exists(file, error)) throw CannotRun("there is no file " + file);
  if (std::filesystem::is_directory(file, error)) throw CannotRun(file + " is a folder");
  stream_.open(file, std::ios::binary);
  if (!stream_) throw CannotRun("cannot read " + file);
  const auto size = std::filesystem::file_size(file, error);
  if (!error) size_ = size;
}

std::optional<std::string_view> LessonLog::nextLine() {
  while (std::getline(input_, line_)) {
    ++lineNumber_;
    bytesRead_ += line_.size() + 1;
    if (line_.find_first_not_of(" \t\r") != std::string::npos) return line_;
  }
  // Of a failure to read standard input, only the C stream behind it tells.
  const bool inputFailed = &input_ == &std::cin && std::ferror(stdin) != 0;
  if (input_.bad() || inputFailed) throw CannotRun("reading " + file_ + " failed");
  return std::nullopt;
}

DecodedLine decodeLine(std::string_view line) {
  vwb::VectorPtr record = vwb::modelWithJSON<vwb::VelWbBaseVector>(line);
  if (!record) return {nullptr, "no JSON object"};
  const bool saysNothing =
      !record->type && record->recordClass() == vwb::VelWbBaseVector::ownClass();
  if (saysNothing) return {nullptr, "no record: it has neither a type nor a position"};
  return {std::move(record), {}};
}

}  // namespace lesson
