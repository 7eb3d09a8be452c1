// Lessons on a NATS server.
#pragma once

#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "lesson/bus.h"

namespace whiteboard {

class NatsBusState;

/// A lesson in a stream of a NATS server with JetStream: the stream is the lesson's one order, and
/// keeps it. The lesson NAME is the stream `lesson-NAME` with the subject `lesson.NAME`; the first
/// participant makes it. What is only shown goes over the subject `lesson.NAME.now`, which no
/// stream keeps.
///
/// A thread connects, again and again, and receives; another one sends, a message at a time, as
/// long as everything that the lesson has been handed out. Each message has an identifier, so what
/// is sent again after a failure is in the lesson once.
///
/// `BusStatus::dropped` counts received messages that were none, and own ones that nobody would
/// accept or that the server does not take, mostly because they are too large.
///
/// When the server has lost the lesson, or a part of it that was handed out already, arrivals begin
/// again at the lesson's beginning, and `problem` says so from then on.
class NatsBus : public Bus {
 public:
  struct Options {
    /// `nats://host:port` or `tls://host:port`; several of one cluster with commas between them.
    /// One of them is connected to, by chance, and another one when it does not answer.
    std::string url;
    /// See `isLessonName`.
    std::string lesson;
    /// What the server wants to see; empty for none.
    std::string token;
    /// A file of this lesson and this participant. What is unsent at the end is written there, and
    /// is sent at the next start; the file stays until all of it has been sent. Empty: it is lost.
    std::string unsentFile;
    /// How many servers of a cluster keep the lesson: 1, 3 or 5. It counts when the lesson is made;
    /// a server that is alone makes a lesson with 1 only.
    int replicas = 1;
    /// Whether a lesson that the server does not have is made. Otherwise the status is `kRefused`,
    /// and `problem` says that there is none.
    bool makesLesson = true;
  };

  /// @throws std::invalid_argument for a name that no lesson may have.
  explicit NatsBus(Options options);
  /// Gives what waits a short time to be sent, less than half a second, and then stops within
  /// another half. The observer given to `start` is not called any more.
  ~NatsBus() override;

  void start(Notify notify) override;
  void publish(const std::string& page, VelWhiteBoard::VectorPtr vector) override;
  void show(const std::string& page, VelWhiteBoard::VectorPtr vector) override;
  std::vector<OwnVector> unsentBefore() override;
  std::vector<OwnVector> takeRefused() override;
  /// `Notify` is not called again before `take` or `status` has been called: take until there is
  /// nothing left.
  std::vector<Arrival> take(std::size_t atMost) override;
  BusStatus status() const override;

 private:
  /// A thread whose end can be waited for with a limit.
  struct Worker {
    std::thread thread;
    std::future<void> ended;
  };

  static Worker work(std::packaged_task<void()> task);
  static void finish(Worker& worker, std::chrono::steady_clock::time_point deadline);

  /// Also owned by the threads: one that waits for a server that hangs is left behind.
  std::shared_ptr<NatsBusState> state_;
  Worker reader_;
  Worker writer_;
};

}  // namespace whiteboard
