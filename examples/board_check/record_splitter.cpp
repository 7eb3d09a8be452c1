#include "record_splitter.h"

#include <algorithm>
#include <array>
#include <utility>

namespace board_check {

namespace {

constexpr std::string_view kOpening = "<dict>";
constexpr std::string_view kClosing = "</dict>";
constexpr std::size_t kIndentation = 1;
constexpr std::size_t kHeadSize = 16;

/// Whether `line` begins with one character, whichever, and then with `tag`.
bool hasTag(std::string_view line, std::string_view tag) {
  return line.size() > kIndentation && line.substr(kIndentation).starts_with(tag);
}

bool isFrame(std::string_view head) {
  static constexpr std::array<std::string_view, 7> kFrame{
      "<?xml ", "<!DOCTYPE plist", "<plist", "<array>", "<array/>", "</array>", "</plist>"};
  if (head.find_first_not_of(" \t\r\n") == std::string_view::npos) return true;
  return std::any_of(kFrame.begin(), kFrame.end(),
                     [head](std::string_view begin) { return head.starts_with(begin); });
}

}  // namespace

void RecordSplitter::feed(std::string_view block) {
  while (!block.empty()) {
    const std::size_t end = block.find('\n');
    const bool endsLine = end != std::string_view::npos;
    const std::string_view part = block.substr(0, endsLine ? end + 1 : end);
    addToLine(part);
    if (endsLine) endLine();
    block.remove_prefix(part.size());
  }
}

void RecordSplitter::finish() {
  if (lineBytes_ > 0) endLine();
  if (isInRecord_) endRecord(text_.size());
}

bool RecordSplitter::mayBeginRecord() const {
  const std::string_view head = head_;
  return head.size() <= kIndentation + kOpening.size()
             ? kOpening.starts_with(head.substr(std::min(kIndentation, head.size())))
             : hasTag(head, kOpening);
}

void RecordSplitter::addToLine(std::string_view part) {
  head_ += part.substr(0, kHeadSize - head_.size());
  lineBytes_ += part.size();
  if (!isInRecord_ && !mayBeginRecord()) {
    text_.clear();
    isTooLong_ = false;
    return;
  }
  if (isTooLong_) return;
  text_ += part;
  if (text_.size() <= kLargestRecord) return;
  isTooLong_ = true;
  std::string().swap(text_);
}

void RecordSplitter::endLine() {
  if (hasTag(head_, kOpening)) {
    beginRecord();
  } else if (isInRecord_) {
    // What follows the end tag on its line belongs to the frame.
    if (hasTag(head_, kClosing)) endRecord(lineInText_ + kIndentation + kClosing.size());
  } else if (!isFrame(head_)) {
    consume_({.text = {}, .offset = lineOffset_, .line = line_, .bytes = lineBytes_});
  }
  head_.clear();
  lineOffset_ += std::exchange(lineBytes_, 0);
  ++line_;
  if (!isInRecord_) text_.clear();
  lineInText_ = text_.size();
}

void RecordSplitter::beginRecord() {
  std::string firstLine;
  bool isLineTooLong = false;
  if (!isInRecord_) {
    firstLine.swap(text_);
    isLineTooLong = isTooLong_;
  } else {  // the record before has no end
    firstLine = isTooLong_ ? head_ : text_.substr(lineInText_);
    endRecord(lineInText_);
  }
  text_ = std::move(firstLine);
  isTooLong_ = isLineTooLong;
  isInRecord_ = true;
  record_ = {.text = {}, .offset = lineOffset_, .line = line_, .record = ++records_};
}

void RecordSplitter::endRecord(std::size_t size) {
  const bool endsOnThisLine = hasTag(head_, kClosing);
  record_.text = std::string_view(text_).substr(0, size);
  record_.bytes = lineOffset_ + (endsOnThisLine ? lineBytes_ : 0) - record_.offset;
  record_.isTooLong = isTooLong_;
  consume_(record_);
  isInRecord_ = false;
  isTooLong_ = false;
  text_.clear();
}

}  // namespace board_check
