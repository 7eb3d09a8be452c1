#include "lesson/nats_bus_state.h"

#include <cmath>
#include <utility>

#include "lesson/inbox.h"
#include "lesson/message.h"
#include "lesson/unsent_file.h"

namespace whiteboard {

/// The servers of a cluster may differ so much about when a lesson was made, in seconds.
constexpr double kSameCreation = 10;

class NatsBusState::Change {
 public:
  explicit Change(NatsBusState& state) : state_(state), hold_(state.mutex_) {}
  ~Change() {
    state_.changed_.notify_all();
    const bool tell = !std::exchange(state_.isTold_, true);
    hold_.unlock();
    if (!tell) return;
    const std::lock_guard<std::mutex> holdNotify(state_.notifyMutex_);
    if (state_.notify_) state_.notify_();
  }
  Change(const Change&) = delete;
  Change& operator=(const Change&) = delete;

 private:
  NatsBusState& state_;
  std::unique_lock<std::mutex> hold_;
};

NatsBusState::NatsBusState(NatsBus::Options options) : options_(std::move(options)) {
  for (OutgoingMessage& message : readUnsent(options_.unsentFile)) {
    fileIsThere_ = true;
    outbox_.restore(std::move(message));
  }
}

void NatsBusState::setNotify(Bus::Notify notify) {
  const std::lock_guard<std::mutex> hold(notifyMutex_);
  notify_ = std::move(notify);
}

void NatsBusState::publish(const std::string& page, VelWhiteBoard::VectorPtr vector) {
  // The caller knows that the status changes, and may hold a lock of its own.
  const std::lock_guard<std::mutex> hold(mutex_);
  if (!outbox_.add(page, vector)) {
    ++dropped_;
    if (vector) refused_.push_back({page, std::move(vector)});
  }
  changed_.notify_all();
}

void NatsBusState::show(std::string text) {
  const std::lock_guard<std::mutex> hold(mutex_);
  if (!live_) return;
  toShow_ = std::move(text);
  changed_.notify_all();
}

std::vector<OwnVector> NatsBusState::unsentBefore() const {
  const std::lock_guard<std::mutex> hold(mutex_);
  return outbox_.restored();
}

std::vector<OwnVector> NatsBusState::takeRefused() {
  const std::lock_guard<std::mutex> hold(mutex_);
  isTold_ = false;
  return std::exchange(refused_, {});
}

std::vector<Arrival> NatsBusState::take(std::size_t atMost) {
  const std::lock_guard<std::mutex> hold(mutex_);
  isTold_ = false;
  return takeFront(arrivals_, atMost);
}

BusStatus NatsBusState::status() {
  const std::lock_guard<std::mutex> hold(mutex_);
  isTold_ = false;
  BusStatus status;
  status.kind = kind_;
  status.created = created_;
  status.unsent = outbox_.size();
  status.dropped = dropped_;
  for (const std::string* problem : {&connectionProblem_, &sendProblem_, &lossProblem_}) {
    if (status.problem.empty()) status.problem = *problem;
  }
  return status;
}

void NatsBusState::waitUntilSent(std::chrono::milliseconds atMost) {
  std::unique_lock<std::mutex> hold(mutex_);
  changed_.wait_for(hold, atMost, [this] { return !live_ || outbox_.empty(); });
}

void NatsBusState::stop() {
  {
    const std::lock_guard<std::mutex> hold(mutex_);
    isStopping_ = true;
    changed_.notify_all();
  }
  setNotify({});
}

void NatsBusState::keepUnsent() {
  const std::lock_guard<std::mutex> hold(mutex_);
  if (fileIsThere_ || !outbox_.empty()) writeUnsent(options_.unsentFile, outbox_.all());
}

bool NatsBusState::isStopping() const {
  const std::lock_guard<std::mutex> hold(mutex_);
  return isStopping_;
}

bool NatsBusState::pause(std::chrono::milliseconds time) {
  std::unique_lock<std::mutex> hold(mutex_);
  return !changed_.wait_for(hold, time, [this] { return isStopping_; });
}

void NatsBusState::connected(const Connection& connection) {
  const std::lock_guard<std::mutex> hold(mutex_);
  connection_ = connection;
}

bool NatsBusState::hasLost(const std::optional<StreamState>& stream) const {
  const std::lock_guard<std::mutex> hold(mutex_);
  return isLoss(stream);
}

bool NatsBusState::isLoss(const std::optional<StreamState>& stream) const {
  if (created_ == 0) return false;
  return !stream || std::abs(stream->created - created_) > kSameCreation || stream->last < last_;
}

std::uint64_t NatsBusState::opened(const StreamState& stream) {
  const Change change(*this);
  if (isLoss(stream)) {
    last_ = 0;
    created_ = 0;
    lossProblem_ = "The server has lost what it had of this lesson, or a part of it.";
  }
  if (created_ == 0) created_ = stream.created;
  kind_ = BusStatus::Kind::kCatchingUp;
  connectionProblem_.clear();
  return last_ + 1;
}

void NatsBusState::caughtUp() {
  const Change change(*this);
  kind_ = BusStatus::Kind::kLive;
  live_ = connection_;
}

void NatsBusState::arrived(Arrival arrival, std::string_view id) {
  const Change change(*this);
  last_ = arrival.sequence;
  arrival.isOwn = outbox_.isOwn(id);
  if (outbox_.remove(id)) {
    sendProblem_.clear();
    removeFileIfSent();
  }
  if (arrival.vector) {
    arrivals_.push_back(std::move(arrival));
  } else {
    ++dropped_;
  }
}

void NatsBusState::shown(std::string_view text) {
  auto content = decodeMessage(text);
  if (!content) return;
  const Change change(*this);
  if (kind_ != BusStatus::Kind::kLive) return;
  Arrival arrival;
  arrival.page = std::move(content->page);
  arrival.vector = std::move(content->vector);
  // Only the last position counts.
  const bool isNext = !arrivals_.empty() && arrivals_.back().sequence == 0 &&
                      arrivals_.back().vector->ID == arrival.vector->ID;
  if (isNext) arrivals_.pop_back();
  arrivals_.push_back(std::move(arrival));
}

void NatsBusState::missing() {
  const Change change(*this);
  lossProblem_ = "A part of this lesson is missing on the server.";
}

void NatsBusState::lost(const NatsFailure& failure) {
  // Closed when the lock is free again: that may take time.
  Connection ended;
  const Change change(*this);
  kind_ = failure.isRefused ? BusStatus::Kind::kRefused : BusStatus::Kind::kConnecting;
  connectionProblem_ = failure.what();
  live_.reset();
  toShow_.clear();
  ended.swap(connection_);
}

std::optional<NatsBusState::Job> NatsBusState::nextJob() {
  std::unique_lock<std::mutex> hold(mutex_);
  changed_.wait(
      hold, [this] { return isStopping_ || (live_ && (!outbox_.empty() || !toShow_.empty())); });
  if (isStopping_) return std::nullopt;
  if (!toShow_.empty()) return Job{live_, {{}, std::exchange(toShow_, {})}, true};
  auto message = outbox_.next();
  if (!message) return std::nullopt;
  return Job{live_, std::move(*message)};
}

void NatsBusState::finished(const Job& job, const SendResult& result) {
  const Change change(*this);
  sendProblem_ = result.problem;
  if (result.kind == SendResult::Kind::kFailed) {
    if (live_ == job.connection) live_.reset();
    return;
  }
  if (result.kind == SendResult::Kind::kRefused) {
    ++dropped_;
    lossProblem_ = "A message was not sent: " + result.problem;
    sendProblem_.clear();
    return refuse(job.message.id);
  }
  if (outbox_.remove(job.message.id)) removeFileIfSent();
}

void NatsBusState::refuse(const std::string& id) {
  if (auto content = outbox_.contentOf(id)) refused_.push_back(std::move(*content));
  outbox_.remove(id);
  removeFileIfSent();
  // It would be sent again by the next run if this one did not come to its end.
  if (fileIsThere_) writeUnsent(options_.unsentFile, outbox_.all());
}

NatsBusState::Connection NatsBusState::connection() const {
  const std::lock_guard<std::mutex> hold(mutex_);
  return connection_;
}

void NatsBusState::removeFileIfSent() {
  if (!fileIsThere_ || outbox_.hasRestored()) return;
  fileIsThere_ = !writeUnsent(options_.unsentFile, {});
}

}  // namespace whiteboard
