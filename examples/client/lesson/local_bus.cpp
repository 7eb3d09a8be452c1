#include "lesson/local_bus.h"

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <chrono>
#include <optional>
#include <utility>

#include "lesson/inbox.h"
#include "lesson/message.h"

namespace whiteboard {

namespace {

double now() {
  const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::duration<double>(sinceEpoch).count();
}

}  // namespace

LocalBus::LocalBus(double created) {
  status_.kind = BusStatus::Kind::kLive;
  status_.created = created;
}

void LocalBus::start(Notify notify) {
  const std::lock_guard<std::mutex> hold(mutex_);
  notify_ = std::move(notify);
}

void LocalBus::publish(const std::string& page, VelWhiteBoard::VectorPtr vector) {
  std::optional<Message> message;
  if (canBeSent(page, vector)) message = decodeMessage(encodeMessage(page, *vector));
  Notify notify;
  {
    const std::lock_guard<std::mutex> hold(mutex_);
    if (message) {
      arrivals_.push_back(
          {++count_, now(), true, std::move(message->page), std::move(message->vector)});
    } else {
      ++status_.dropped;
      if (vector) refused_.push_back({page, std::move(vector)});
    }
    notify = notify_;
  }
  if (notify) notify();
}

void LocalBus::show(const std::string& page, VelWhiteBoard::VectorPtr vector) {
  if (!canBeSent(page, vector)) return;
  auto message = decodeMessage(encodeMessage(page, *vector));
  if (!message) return;
  Notify notify;
  {
    const std::lock_guard<std::mutex> hold(mutex_);
    arrivals_.push_back({0, now(), true, std::move(message->page), std::move(message->vector)});
    notify = notify_;
  }
  if (notify) notify();
}

std::vector<OwnVector> LocalBus::takeRefused() {
  const std::lock_guard<std::mutex> hold(mutex_);
  return std::exchange(refused_, {});
}

std::vector<Arrival> LocalBus::take(std::size_t atMost) {
  const std::lock_guard<std::mutex> hold(mutex_);
  return takeFront(arrivals_, atMost);
}

BusStatus LocalBus::status() const {
  const std::lock_guard<std::mutex> hold(mutex_);
  return status_;
}

}  // namespace whiteboard
