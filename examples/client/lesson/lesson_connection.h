// One connection to a NATS server, from its beginning to its first error.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include <nats/nats.h>

#include "lesson/connection_alarms.h"
#include "lesson/outbox.h"

namespace whiteboard {

/// The connection does not work, or no longer. `what` tells a person why.
class NatsFailure : public std::runtime_error {
 public:
  explicit NatsFailure(const std::string& text, bool refused = false)
      : std::runtime_error(text), isRefused(refused) {}

  /// The server does not let this participant in.
  const bool isRefused;
};

/// A message of the lesson's stream. `text` and `id` are valid as long as it lives.
class ReceivedMessage {
 public:
  /// Takes the message over.
  explicit ReceivedMessage(natsMsg* message);

  std::uint64_t sequence() const { return sequence_; }
  /// When the server took it, seconds since 1970-01-01.
  double time() const { return time_; }
  /// How many messages the server had for us after this one.
  std::uint64_t pending() const { return pending_; }
  /// The identifier that its author has given; empty when there is none.
  std::string_view id() const;
  std::string_view text() const;

 private:
  struct Destroy {
    void operator()(natsMsg* message) const { natsMsg_Destroy(message); }
  };

  std::unique_ptr<natsMsg, Destroy> message_;
  std::uint64_t sequence_ = 0;
  double time_ = 0;
  std::uint64_t pending_ = 0;
};

/// What a server says about the stream of a lesson.
struct StreamState {
  /// Seconds since 1970-01-01.
  double created = 0;
  /// The sequence of the newest message; 0 when there has been none.
  std::uint64_t last = 0;
  /// How many messages the stream has.
  std::uint64_t messages = 0;
};

/// How the sending of a message ended.
struct SendResult {
  enum class Kind {
    kSent,     ///< the stream has it
    kRefused,  ///< the server will never take this message
    kFailed,   ///< not known; the connection is to be given up
  };
  Kind kind = Kind::kFailed;
  /// Why it was not sent, for a person.
  std::string problem;
};

/// A connection, and the subscription to the stream of one lesson. It does not connect again.
///
/// Threads: `subscribe` and `next` are for one thread, `send` for one, which may be another;
/// `close` for any. `close` makes the others end, with an error.
class LessonConnection {
 public:
  /// Connects. May take seconds, much longer when names are resolved slowly.
  /// @param url one or more, as `NatsBus::Options` has it.
  /// @param token empty for none.
  /// @throws NatsFailure
  LessonConnection(const std::string& url, const std::string& lesson, const std::string& token);
  /// Closes. May wait for a `send` under way to notice.
  ~LessonConnection();
  LessonConnection(const LessonConnection&) = delete;
  LessonConnection& operator=(const LessonConnection&) = delete;

  /// Looks up the lesson's stream; none when the server has none.
  /// @throws NatsFailure
  std::optional<StreamState> findStream();
  /// Looks up the lesson's stream, and makes it if there is none, on so many servers.
  /// @throws NatsFailure
  StreamState openStream(int replicas = 1);
  /// From here on `next` returns the stream's messages from that sequence on. Once only.
  /// @throws NatsFailure
  void subscribe(std::uint64_t from);
  /// The next message; none when there was none for that long.
  /// @throws NatsFailure also when the server has given no sign of life for 2 to 4 seconds: what
  /// served the subscription may have been on a server that is gone.
  std::optional<ReceivedMessage> next(std::chrono::milliseconds atMost);
  /// From here on `take` is told of the text of each message that somebody shows, on a thread of
  /// the connection, and for a moment after its end. Once only.
  /// @throws NatsFailure
  void listen(std::function<void(std::string_view text)> take);
  /// Shows a message to all who listen; it is lost when that does not work. For the thread that
  /// sends.
  void show(const std::string& text);
  /// Sends a message and waits until the stream has it.
  SendResult send(const OutgoingMessage& message);
  void close();

 private:
  template <class T, void (*destroy)(T*)>
  struct Destroy {
    void operator()(T* object) const { destroy(object); }
  };
  template <class T, void (*destroy)(T*)>
  using Owner = std::unique_ptr<T, Destroy<T, destroy>>;

  std::string stream_;
  std::string subject_;
  /// Of what is shown and not kept.
  std::string shownSubject_;
  ConnectionAlarms alarms_;
  /// For the thread that sends.
  bool mayNotSend_ = false;
  // Destroyed from the last to the first.
  Owner<natsConnection, natsConnection_Destroy> connection_;
  Owner<jsCtx, jsCtx_Destroy> jetStream_;
  Owner<natsSubscription, natsSubscription_Destroy> subscription_;
  Owner<natsSubscription, natsSubscription_Destroy> shown_;
};

}  // namespace whiteboard
