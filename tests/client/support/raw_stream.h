/// @file
/// A lesson's stream, made and changed by something other than the transport.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <nats/nats.h>

namespace whiteboard {

/// Threads: one.
class RawStream {
 public:
  struct Limits {
    /// How long the server knows the identifiers of messages, milliseconds; at least 100.
    int window = 1000;
    /// Bytes of a message; -1: any.
    int messageSize = -1;
    /// How many it takes before it is full; -1: any.
    int messages = -1;
  };

  /// Makes the stream of the lesson "maths". Messages may be removed from it.
  /// @throws std::runtime_error
  RawStream(const std::string& url, Limits limits);
  /// The stream that is there.
  /// @throws std::runtime_error
  explicit RawStream(const std::string& url);

  /// Stores a message. Returns its place in the stream; 0 when the server knows the identifier.
  std::uint64_t store(const std::string& id, const std::string& text);
  void remove(std::uint64_t sequence);

  /// The names of those that the server serves the stream to.
  std::vector<std::string> consumers();
  /// How often the server gives such a one a sign of life, in seconds.
  double heartbeatOf(const std::string& consumer);
  /// Serves it no longer, and does not tell it.
  void removeConsumer(const std::string& consumer);

 private:
  std::unique_ptr<natsConnection, decltype(&natsConnection_Destroy)> connection_;
  std::unique_ptr<jsCtx, decltype(&jsCtx_Destroy)> jetStream_;
};

}  // namespace whiteboard
