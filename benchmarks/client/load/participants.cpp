#include "benchmarks/client/load/participants.h"

#include <chrono>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "lesson/message.h"

namespace load {

namespace {

using Kind = whiteboard::BusStatus::Kind;

void require(natsStatus status, const char* what) {
  if (status == NATS_OK) return;
  throw std::runtime_error(std::string("cannot ") + what + ": " + natsStatus_GetText(status));
}

/// @param closure the Receipt.
void receive(natsConnection*, natsSubscription*, natsMsg* message, void* closure) {
  if (message == nullptr) return;
  const std::int64_t time = now();
  std::uint64_t sequence = 0;
  jsMsgMetaData* data = nullptr;
  if (natsMsg_GetReply(message) != nullptr && natsMsg_GetMetaData(&data, message) == NATS_OK) {
    sequence = data->Sequence.Stream;
    jsMsgMetaData_Destroy(data);
  }
  const std::string_view text(natsMsg_GetData(message),
                              static_cast<std::size_t>(natsMsg_GetDataLength(message)));
  static_cast<Receipt*>(closure)->add(sequence, readText(text), time);
  natsMsg_Destroy(message);
}

}  // namespace

Buses::Buses() : collector_([this] { collect(); }) {}

Buses::~Buses() {
  {
    const std::lock_guard<std::mutex> hold(mutex_);
    isStopping_ = true;
    changed_.notify_all();
  }
  collector_.join();
  // Many at once, because each waits for its threads.
  std::vector<std::thread> ends;
  for (std::size_t part = 0; part < 16; ++part) {
    ends.emplace_back([this, part] {
      for (std::size_t i = part; i < participants_.size(); i += 16) participants_[i].bus.reset();
    });
  }
  for (std::thread& end : ends) end.join();
}

whiteboard::NatsBus& Buses::add(const whiteboard::NatsBus::Options& options, Receipt& receipt) {
  Participant& participant = participants_.emplace_back();
  participant.bus = std::make_unique<whiteboard::NatsBus>(options);
  participant.receipt = &receipt;
  participant.bus->start([this, &participant] {
    const std::lock_guard<std::mutex> hold(mutex_);
    ready_.push_back(&participant);
    changed_.notify_one();
  });
  return *participant.bus;
}

bool Buses::becomeLive(int seconds) {
  const std::int64_t end = now() + std::int64_t{seconds} * 1'000'000'000;
  for (Participant& participant : participants_) {
    while (participant.bus->status().kind != Kind::kLive) {
      if (now() > end) return false;
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
  }
  return true;
}

std::string Buses::problem() const {
  for (const Participant& participant : participants_) {
    const std::string text = participant.bus->status().problem;
    if (!text.empty()) return text;
  }
  return {};
}

void Buses::collect() {
  while (true) {
    std::vector<Participant*> ready;
    {
      std::unique_lock<std::mutex> hold(mutex_);
      changed_.wait(hold, [this] { return isStopping_ || !ready_.empty(); });
      if (isStopping_) return;
      ready.swap(ready_);
    }
    for (Participant* participant : ready) {
      while (true) {
        const auto arrivals = participant->bus->take(1000);
        if (arrivals.empty()) break;
        const std::int64_t time = now();
        for (const whiteboard::Arrival& arrival : arrivals) {
          participant->receipt->add(arrival.sequence, readVector(arrival.vector), time);
        }
      }
    }
  }
}

Readers::Readers(Kind kind, const std::string& url, std::size_t connections) : kind_(kind) {
  // Of several servers the first one.
  const std::string first = url.substr(0, url.find(','));
  require(nats_Open(-1), "use the library");
  require(nats_SetMessageDeliveryPoolSize(2), "use two threads");
  for (std::size_t i = 0; i < connections; ++i) {
    natsOptions* options = nullptr;
    require(natsOptions_Create(&options), "prepare a connection");
    natsOptions_SetURL(options, first.c_str());
    natsOptions_UseGlobalMessageDelivery(options, true);
    natsConnection* connection = nullptr;
    const natsStatus status = natsConnection_Connect(&connection, options);
    natsOptions_Destroy(options);
    require(status, "connect");
    connections_.push_back(connection);
    jsCtx* context = nullptr;
    require(natsConnection_JetStream(&context, connection, nullptr), "use JetStream");
    contexts_.push_back(context);
  }
}

Readers::~Readers() {
  for (natsConnection* connection : connections_) natsConnection_Close(connection);
  for (natsSubscription* subscription : subscriptions_) natsSubscription_Destroy(subscription);
  for (jsCtx* context : contexts_) jsCtx_Destroy(context);
  for (natsConnection* connection : connections_) natsConnection_Destroy(connection);
}

void Readers::add(const std::string& lesson, Receipt& receipt) {
  const std::size_t place = subscriptions_.size() % connections_.size();
  const std::string subject = "lesson." + lesson;
  const std::string stream = "lesson-" + lesson;
  natsSubscription* made = nullptr;
  if (kind_ == Kind::kPlain) {
    require(
        natsConnection_Subscribe(&made, connections_[place], subject.c_str(), &receive, &receipt),
        "subscribe");
    require(natsConnection_Flush(connections_[place]), "subscribe");
  } else {
    jsSubOptions options;
    jsSubOptions_Init(&options);
    options.Stream = stream.c_str();
    options.Ordered = true;
    auto code = jsErrCode(0);
    require(js_Subscribe(&made, contexts_[place], subject.c_str(), &receive, &receipt, nullptr,
                         &options, &code),
            "subscribe to the stream");
  }
  subscriptions_.push_back(made);
}

double flood(const std::string& url, const std::vector<std::string>& lessons, std::size_t pieces) {
  natsConnection* connection = nullptr;
  require(natsConnection_ConnectTo(&connection, url.c_str()), "connect");
  const std::unique_ptr<natsConnection, decltype(&natsConnection_Destroy)> owner(
      connection, &natsConnection_Destroy);
  jsOptions options;
  jsOptions_Init(&options);
  options.PublishAsync.MaxPending = 1000;
  jsCtx* made = nullptr;
  require(natsConnection_JetStream(&made, connection, &options), "use JetStream");
  const std::unique_ptr<jsCtx, decltype(&jsCtx_Destroy)> context(made, &jsCtx_Destroy);
  Pieces source(0, pieces, 1);
  const std::int64_t begin = now();
  for (std::size_t i = 0; i < pieces; ++i) {
    const std::string subject = "lesson." + lessons[i % lessons.size()];
    const std::string text = whiteboard::encodeMessage("42_1", *source.next());
    const std::string id = "flood-" + std::to_string(i);
    jsPubOptions publish;
    jsPubOptions_Init(&publish);
    publish.MsgId = id.c_str();
    require(js_PublishAsync(made, subject.c_str(), text.data(), static_cast<int>(text.size()),
                            &publish),
            "send");
  }
  require(js_PublishAsyncComplete(made, nullptr), "send everything");
  const std::int64_t end = now();
  natsMsgList refused{};
  if (js_PublishAsyncGetPendingList(&refused, made) == NATS_OK) {
    natsMsgList_Destroy(&refused);
    throw std::runtime_error("the streams do not take all pieces");
  }
  return static_cast<double>(end - begin) / 1e9;
}

}  // namespace load
