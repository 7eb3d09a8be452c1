/// @file
/// What the tests of the transport do again and again.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "lesson/message.h"
#include "lesson/nats_bus.h"

namespace whiteboard {

/// Waits until it is so; tells whether it has become so within a minute.
inline bool eventually(const std::function<bool()>& isSo) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (!isSo()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}

/// A text box: two of them are never joined.
inline VelWhiteBoard::VectorPtr box(const std::string& ID) {
  auto made = VelWhiteBoard::VelWbVecText::initWithType("text");
  made->ID = ID;
  return made;
}

/// NAME1, NAME2 and so on.
inline std::vector<std::string> numbered(const std::string& name, int count) {
  std::vector<std::string> all;
  for (int i = 1; i <= count; ++i) all.push_back(name + std::to_string(i));
  return all;
}

/// A bus, and everything that has arrived.
class Participant {
 public:
  explicit Participant(NatsBus::Options options) : bus_(std::make_unique<NatsBus>(options)) {
    bus_->start({});
  }
  explicit Participant(const std::string& url)
      : Participant(NatsBus::Options{url, "maths", "", ""}) {}

  void publish(const std::string& ID) { bus_->publish("1_1", box(ID)); }
  NatsBus& bus() { return *bus_; }
  BusStatus status() const { return bus_->status(); }
  void leave() { bus_.reset(); }

  /// Waits until so many have arrived.
  bool has(std::size_t count) {
    return eventually([&] {
      takeAll();
      return arrivals_.size() >= count;
    });
  }
  bool isLive() const { return becomes(BusStatus::Kind::kLive); }
  /// Waits for this status.
  bool becomes(BusStatus::Kind kind) const {
    return eventually([&] { return status().kind == kind; });
  }
  /// Waits for a problem whose text has this in it.
  bool tells(std::string_view text) const {
    return eventually([&] { return status().problem.find(text) != std::string::npos; });
  }
  bool hasSentAll() const {
    return eventually([&] { return status().unsent == 0; });
  }

  /// Waits until so many own vectors have been refused; their identifiers, in order.
  std::vector<std::string> refused(std::size_t count) {
    std::vector<std::string> all;
    eventually([&] {
      for (const OwnVector& own : bus_->takeRefused()) all.push_back(own.vector->ID.value());
      return all.size() >= count;
    });
    return all;
  }

  const std::vector<Arrival>& arrivals() const { return arrivals_; }
  /// The identifiers of the vectors, in the order of arrival.
  std::vector<std::string> IDs() const {
    std::vector<std::string> all;
    for (const Arrival& arrival : arrivals_) all.push_back(arrival.vector->ID.value());
    return all;
  }
  /// Their places in the lesson's order.
  std::vector<std::uint64_t> sequences() const {
    std::vector<std::uint64_t> all;
    for (const Arrival& arrival : arrivals_) all.push_back(arrival.sequence);
    return all;
  }

 private:
  void takeAll() {
    constexpr std::size_t kAtOnce = 100;
    for (auto some = bus_->take(kAtOnce); !some.empty(); some = bus_->take(kAtOnce)) {
      for (Arrival& arrival : some) arrivals_.push_back(std::move(arrival));
    }
  }

  std::unique_ptr<NatsBus> bus_;
  std::vector<Arrival> arrivals_;
};

}  // namespace whiteboard
