// A lesson without a network.
#pragma once

#include <deque>
#include <mutex>
#include <string>
#include <vector>

#include "lesson/bus.h"

namespace whiteboard {

/// For working alone: what is published arrives at once. It passes through the text of a message,
/// so it arrives as it would from a server. Nothing is kept.
class LocalBus : public Bus {
 public:
  /// @param created when the lesson was created, seconds since 1970-01-01; for `BusStatus`.
  explicit LocalBus(double created);

  void start(Notify notify) override;
  void publish(const std::string& page, VelWhiteBoard::VectorPtr vector) override;
  void show(const std::string& page, VelWhiteBoard::VectorPtr vector) override;
  std::vector<OwnVector> takeRefused() override;
  std::vector<Arrival> take(std::size_t atMost) override;
  BusStatus status() const override;

 private:
  mutable std::mutex mutex_;
  // All of these under `mutex_`.
  BusStatus status_;
  Notify notify_;
  std::deque<Arrival> arrivals_;
  std::vector<OwnVector> refused_;
  std::uint64_t count_ = 0;
};

}  // namespace whiteboard
