#include "lesson/nats_reader.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <optional>
#include <utility>

#include "lesson/message.h"

namespace whiteboard {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kFirstPause{200};
constexpr milliseconds kLongestPause{2000};
/// After a connection that has worked for so long the pauses begin anew.
constexpr std::chrono::seconds kGoodConnection{5};
/// For so long a server that says that it has lost the lesson is asked again, and how often.
constexpr std::chrono::seconds kLossIsBelieved{6};
constexpr milliseconds kLossPause{300};
/// How long it may take to notice that the bus stops.
constexpr milliseconds kNextWait{100};

}  // namespace

void NatsReader::run() {
  milliseconds pause = kFirstPause;
  while (!state_.isStopping()) {
    isLive_ = false;
    try {
      serve();
    } catch (const NatsFailure& failure) {
      state_.lost(failure);
    } catch (const std::exception& failure) {  // no memory, say
      state_.lost(NatsFailure(failure.what()));
    }
    const bool wasGood =
        isLive_ && std::chrono::steady_clock::now() - liveSince_ >= kGoodConnection;
    if (wasGood) pause = kFirstPause;
    if (!state_.pause(pause)) break;
    pause = std::min(2 * pause, kLongestPause);
  }
  nats_ReleaseThreadMemory();
}

void NatsReader::serve() {
  const NatsBus::Options& options = state_.options();
  const auto connection =
      std::make_shared<LessonConnection>(options.url, options.lesson, options.token);
  state_.connected(connection);
  const StreamState stream = open(*connection);
  target_ = stream.messages == 0 ? 0 : stream.last;
  next_ = state_.opened(stream);
  isFirst_ = true;
  connection->listen([state = state_.weak_from_this()](std::string_view text) {
    if (const auto present = state.lock()) present->shown(text);
  });
  connection->subscribe(next_);
  while (!state_.isStopping()) {
    if (!isLive_ && next_ > target_) {
      isLive_ = true;
      liveSince_ = std::chrono::steady_clock::now();
      state_.caughtUp();
    }
    if (const auto message = connection->next(kNextWait)) receive(*message);
  }
  connection->close();
}

StreamState NatsReader::open(LessonConnection& connection) {
  const auto deadline = std::chrono::steady_clock::now() + kLossIsBelieved;
  while (state_.hasLost(connection.findStream()) && std::chrono::steady_clock::now() < deadline) {
    if (!state_.pause(kLossPause)) break;
  }
  if (state_.options().makesLesson) return connection.openStream(state_.options().replicas);
  if (const auto stream = connection.findStream()) return *stream;
  throw NatsFailure("The server has no lesson of this name.", true);
}

void NatsReader::receive(const ReceivedMessage& message) {
  // The subscription may begin anew by itself, and repeat what has been.
  if (message.sequence() < next_) return;
  if (message.sequence() > next_) {
    // Either messages were lost on the way, then they come after another subscription; or the
    // stream does not have them, then what it has comes first.
    if (!isFirst_) throw NatsFailure("Messages were lost on the way.");
    state_.missing();
  }
  isFirst_ = false;
  next_ = message.sequence() + 1;
  Arrival arrival;
  arrival.sequence = message.sequence();
  arrival.time = message.time();
  if (auto content = decodeMessage(message.text())) {
    arrival.page = std::move(content->page);
    arrival.vector = std::move(content->vector);
  }
  state_.arrived(std::move(arrival), message.id());
  // The end of the stream may be missing.
  if (message.pending() == 0) target_ = std::min(target_, message.sequence());
}

}  // namespace whiteboard
