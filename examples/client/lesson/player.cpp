#include "lesson/player.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

constexpr int kTickMilliseconds = 16;

}  // namespace

Player::Player(Board& board, Recording recording)
    : board_(board), recording_(std::move(recording)) {
  setBack();
  timer_.setInterval(kTickMilliseconds);
  timer_.setTimerType(Qt::PreciseTimer);
  connect(&timer_, &QTimer::timeout, this, &Player::advance);
  fileUpTo(0);
}

void Player::play() {
  if (isPlaying() || recording_.empty()) return;
  if (isAtEnd()) seek(0);
  sinceLast_.start();
  timer_.start();
  emit playingChanged();
}

void Player::pause() {
  if (!isPlaying()) return;
  timer_.stop();
  emit playingChanged();
}

void Player::setSpeed(double speed) {
  speed_ = std::isfinite(speed) ? std::clamp(speed, kSlowest, kFastest) : kSlowest;
}

void Player::seek(double position) {
  const double to = std::isfinite(position) ? std::clamp(position, 0.0, duration()) : 0.0;
  if (to < position_) setBack();
  fileUpTo(to);
  if (isPlaying()) sinceLast_.restart();
}

void Player::setBack() {
  next_ = 0;
  if (const auto first = recording_.firstPage()) board_.turnTo(first);
  board_.clear();
  std::string last;
  for (const Recording::Event& event : recording_.events) {
    if (std::exchange(last, event.page) == event.page) continue;
    if (const auto page = vwb::VelWbVecSwitchPage::pageFromInfo(event.page)) {
      board_.addPage({page->WBID, page->curPage});
    }
  }
}

void Player::advance() {
  const double passed = static_cast<double>(sinceLast_.restart()) / 1000;
  fileUpTo(std::min(position_ + passed * speed_, duration()));
  if (isAtEnd()) pause();
}

void Player::fileUpTo(double position) {
  position_ = position;
  const double time = position < duration() ? recording_.begin() + position : recording_.end();
  for (; !isAtEnd() && recording_.events[next_].time <= time; ++next_) {
    const Recording::Event& event = recording_.events[next_];
    // A copy: the board changes what it files, and the recording may be played again.
    const vwb::VectorPtr vector = event.vector->copyWithZone();
    if (const auto page = vwb::recordPointerCast<vwb::VelWbVecSwitchPage>(vector)) {
      board_.turnTo(page);
    } else {
      board_.file(event.page, vector);
    }
  }
  emit moved();
}

}  // namespace whiteboard
