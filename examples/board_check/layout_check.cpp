#include "layout_check.h"

#include <algorithm>

namespace board_check {

LayoutCheck::LayoutCheck()
    : consume_([this](std::string_view written) { return compare(written); }), writer_(consume_) {}

void LayoutCheck::addText(std::string_view block) {
  if (!isSame_) return;
  text_.erase(0, compared_);
  compared_ = 0;
  text_ += block;
}

void LayoutCheck::addRecord(const VelWhiteBoard::Record& record) {
  if (isSame_) writer_.add(record);
}

std::optional<Place> LayoutCheck::finish() {
  const bool isWhole = isSame_ && writer_.finish() && compared_ == text_.size();
  return isWhole ? std::nullopt : std::optional(place_);
}

bool LayoutCheck::compare(std::string_view written) {
  const std::string_view there = std::string_view(text_).substr(compared_, written.size());
  const auto end = std::mismatch(there.begin(), there.end(), written.begin(), written.end()).first;
  const std::string_view same = there.substr(0, static_cast<std::size_t>(end - there.begin()));
  place_.advance(same);
  compared_ += same.size();
  isSame_ = same.size() == written.size();
  if (!isSame_) std::string().swap(text_);
  return isSame_;
}

}  // namespace board_check
