#include "lesson/nats_bus.h"

#include <stdexcept>
#include <utility>

#include "lesson/lesson_name.h"
#include "lesson/message.h"
#include "lesson/nats_bus_state.h"
#include "lesson/nats_reader.h"
#include "lesson/nats_writer.h"

namespace whiteboard {

namespace {

constexpr std::chrono::milliseconds kSendAtEnd{400};
constexpr std::chrono::milliseconds kEndOfThreads{500};

}  // namespace

NatsBus::NatsBus(Options options) {
  if (!isLessonName(options.lesson)) {
    throw std::invalid_argument("not the name of a lesson: " + options.lesson);
  }
  state_ = std::make_shared<NatsBusState>(std::move(options));
}

NatsBus::~NatsBus() {
  state_->waitUntilSent(kSendAtEnd);
  state_->stop();
  const auto deadline = std::chrono::steady_clock::now() + kEndOfThreads;
  finish(writer_, deadline);
  finish(reader_, deadline);
  state_->keepUnsent();
}

NatsBus::Worker NatsBus::work(std::packaged_task<void()> task) {
  Worker worker;
  worker.ended = task.get_future();
  worker.thread = std::thread(std::move(task));
  return worker;
}

void NatsBus::finish(Worker& worker, std::chrono::steady_clock::time_point deadline) {
  if (!worker.thread.joinable()) return;
  if (worker.ended.wait_until(deadline) == std::future_status::ready) {
    worker.thread.join();
  } else {
    worker.thread.detach();
  }
}

void NatsBus::start(Notify notify) {
  state_->setNotify(std::move(notify));
  reader_ = work(std::packaged_task<void()>([state = state_] { NatsReader(*state).run(); }));
  writer_ = work(std::packaged_task<void()>([state = state_] { sendAll(*state); }));
}

void NatsBus::publish(const std::string& page, VelWhiteBoard::VectorPtr vector) {
  state_->publish(page, std::move(vector));
}

void NatsBus::show(const std::string& page, VelWhiteBoard::VectorPtr vector) {
  if (canBeSent(page, vector)) state_->show(encodeMessage(page, *vector));
}

std::vector<OwnVector> NatsBus::unsentBefore() { return state_->unsentBefore(); }

std::vector<OwnVector> NatsBus::takeRefused() { return state_->takeRefused(); }

std::vector<Arrival> NatsBus::take(std::size_t atMost) { return state_->take(atMost); }

BusStatus NatsBus::status() const { return state_->status(); }

}  // namespace whiteboard
