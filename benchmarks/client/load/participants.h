// The participants of the lessons.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <nats/nats.h>

#include "benchmarks/client/load/pieces.h"
#include "lesson/nats_bus.h"

namespace load {

/// Participants as the client has them: each with a bus, four threads and a connection of its own.
/// One more thread takes what has arrived.
class Buses {
 public:
  Buses();
  ~Buses();
  Buses(const Buses&) = delete;
  Buses& operator=(const Buses&) = delete;

  /// @param receipt stays as long as this object.
  whiteboard::NatsBus& add(const whiteboard::NatsBus::Options& options, Receipt& receipt);
  /// Waits until all are connected and have what is there; tells whether that came in time.
  bool becomeLive(int seconds);
  /// What the first one that has a problem says.
  std::string problem() const;

 private:
  struct Participant {
    std::unique_ptr<whiteboard::NatsBus> bus;
    Receipt* receipt = nullptr;
  };

  void collect();

  std::mutex mutex_;
  std::condition_variable changed_;
  bool isStopping_ = false;
  std::vector<Participant*> ready_;
  std::deque<Participant> participants_;
  std::thread collector_;
};

/// Participants that only read, many on one connection, each with a subscription.
class Readers {
 public:
  enum class Kind {
    kConsumers,  ///< to the stream, as the bus has it: the server keeps track of each
    kPlain,      ///< to the subject: the server sends what comes, and keeps nothing
  };

  Readers(Kind kind, const std::string& url, std::size_t connections);
  ~Readers();
  Readers(const Readers&) = delete;
  Readers& operator=(const Readers&) = delete;

  /// @throws std::runtime_error
  void add(const std::string& lesson, Receipt& receipt);

 private:
  Kind kind_;
  std::vector<natsConnection*> connections_;
  std::vector<jsCtx*> contexts_;
  std::vector<natsSubscription*> subscriptions_;
};

/// Sends so many pieces to lessons that are open already, in turns, on one connection, without
/// waiting for the answer to each. Returns how long it took until the streams had all, in seconds.
/// @throws std::runtime_error when the streams do not take all of them.
double flood(const std::string& url, const std::vector<std::string>& lessons, std::size_t pieces);

}  // namespace load
