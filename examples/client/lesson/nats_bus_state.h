// What the threads of a NatsBus share.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lesson/bus.h"
#include "lesson/lesson_connection.h"
#include "lesson/nats_bus.h"
#include "lesson/outbox.h"

namespace whiteboard {

/// The arrivals, the outbox and the status of a NatsBus.
///
/// Threads: all operations may be called from any thread, except where one is named.
class NatsBusState : public std::enable_shared_from_this<NatsBusState> {
 public:
  using Connection = std::shared_ptr<LessonConnection>;

  /// Reads the file of unsent messages.
  explicit NatsBusState(NatsBus::Options options);

  const NatsBus::Options& options() const { return options_; }

  // For the bus.
  void setNotify(Bus::Notify notify);
  void publish(const std::string& page, VelWhiteBoard::VectorPtr vector);
  /// Sends the text of a message without keeping it, in place of the one that waits.
  void show(std::string text);
  std::vector<OwnVector> unsentBefore() const;
  std::vector<OwnVector> takeRefused();
  std::vector<Arrival> take(std::size_t atMost);
  BusStatus status();
  /// Waits until nothing is to be sent; not at all while sending is not possible.
  void waitUntilSent(std::chrono::milliseconds atMost);
  /// From here on the threads end, nothing is sent, and nobody is notified.
  void stop();
  /// Writes the file of unsent messages, after `stop`.
  void keepUnsent();

  // For the reader.
  bool isStopping() const;
  /// Waits; tells whether to go on, as opposed to stop.
  bool pause(std::chrono::milliseconds time);
  /// There is a connection, which is closed when the bus stops.
  void connected(const Connection& connection);
  /// Whether a stream is not what was there before, or has less, or is none: a server that has just
  /// started, or a cluster without a leader, may say so for some seconds.
  bool hasLost(const std::optional<StreamState>& stream) const;
  /// The lesson's stream has been found or made. Returns the sequence to begin at.
  std::uint64_t opened(const StreamState& stream);
  /// Whatever the lesson has is there: sending may begin.
  void caughtUp();
  /// A message of the stream, the next in order. `vector` is null for one that is none.
  void arrived(Arrival arrival, std::string_view id);
  /// Somebody shows what is not kept. Messages that are none are left out.
  void shown(std::string_view text);
  /// Messages were missing in the stream itself.
  void missing();
  /// There is no connection, or no longer.
  void lost(const NatsFailure& failure);

  // For the writer.
  struct Job {
    Connection connection;
    OutgoingMessage message;
    /// Whether it has no identifier, and is sent without being kept.
    bool isShown = false;
  };
  /// Waits for something to send and for a connection to send it. None at the end.
  std::optional<Job> nextJob();
  void finished(const Job& job, const SendResult& result);
  /// The connection to be closed at the end; may be null.
  Connection connection() const;

 private:
  /// The lock of an operation that may change what `Notify` tells of. Tells when it goes.
  class Change;

  /// When nothing of an earlier run waits any more, its file goes.
  void removeFileIfSent();
  bool isLoss(const std::optional<StreamState>& stream) const;
  /// The lesson never takes a message that waits.
  void refuse(const std::string& id);

  const NatsBus::Options options_;

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  // All of these under `mutex_`.
  bool isStopping_ = false;
  /// Whether `Notify` has been called since somebody last looked.
  bool isTold_ = false;
  BusStatus::Kind kind_ = BusStatus::Kind::kConnecting;
  double created_ = 0;
  std::uint64_t dropped_ = 0;
  std::string connectionProblem_;
  std::string sendProblem_;
  /// What stays true until the end.
  std::string lossProblem_;
  std::uint64_t last_ = 0;
  std::deque<Arrival> arrivals_;
  std::vector<OwnVector> refused_;
  Outbox outbox_;
  /// The text of what is shown next; empty for nothing.
  std::string toShow_;
  bool fileIsThere_ = false;
  Connection connection_;
  /// `connection_` while it may be used to send.
  Connection live_;

  /// Held during each call of `notify_`.
  std::mutex notifyMutex_;
  Bus::Notify notify_;
};

}  // namespace whiteboard
