// Receives a lesson.
#pragma once

#include <chrono>
#include <cstdint>

#include "lesson/nats_bus_state.h"

namespace whiteboard {

/// Connects again and again, and hands the messages of the stream to the state.
///
/// Threads: for one thread. `state` must stay as long as the reader.
class NatsReader {
 public:
  explicit NatsReader(NatsBusState& state) : state_(state) {}

  /// Returns when the bus stops.
  void run();

 private:
  /// One connection, from its beginning to the stop. @throws NatsFailure
  void serve();
  /// Looks the stream up, or makes it. Asks again for some seconds when the lesson seems lost.
  StreamState open(LessonConnection& connection);
  void receive(const ReceivedMessage& message);

  NatsBusState& state_;
  /// What the stream of this connection had when it was opened.
  std::uint64_t target_ = 0;
  /// The sequence of the message that comes next.
  std::uint64_t next_ = 0;
  bool isFirst_ = true;
  bool isLive_ = false;
  /// When this connection had caught up.
  std::chrono::steady_clock::time_point liveSince_;
};

}  // namespace whiteboard
