#include "player.h"

namespace lesson {

namespace vwb = VelWhiteBoard;

void Player::play(const vwb::VectorPtr& record, std::chrono::nanoseconds decoding) {
  const auto start = std::chrono::steady_clock::now();
  if (auto page = std::dynamic_pointer_cast<vwb::VelWbVecSwitchPage>(record)) {
    turnTo(page);
  } else {
    board_->saveVector(record);
    if (pages_.empty()) ++recordsWithoutPage_;
  }
  const auto spent = std::chrono::steady_clock::now() - start;
  if (!pages_.empty()) pages_[current_].time += decoding + spent;
}

void Player::turnTo(const PagePtr& page) {
  board_->switchPage(page);
  const auto [found, isNew] = indexOfKey_.try_emplace(page->pageInfo(), pages_.size());
  if (isNew) pages_.push_back({page, {}});
  current_ = found->second;
}

}  // namespace lesson
