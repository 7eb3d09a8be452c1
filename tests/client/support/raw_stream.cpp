#include "tests/client/support/raw_stream.h"

#include <stdexcept>

namespace whiteboard {

namespace {

constexpr const char* kStream = "lesson-maths";

void require(natsStatus status) {
  if (status != NATS_OK) throw std::runtime_error(natsStatus_GetText(status));
}

}  // namespace

RawStream::RawStream(const std::string& url)
    : connection_(nullptr, &natsConnection_Destroy), jetStream_(nullptr, &jsCtx_Destroy) {
  natsConnection* connection = nullptr;
  require(natsConnection_ConnectTo(&connection, url.c_str()));
  connection_.reset(connection);
  jsCtx* jetStream = nullptr;
  require(natsConnection_JetStream(&jetStream, connection, nullptr));
  jetStream_.reset(jetStream);
}

RawStream::RawStream(const std::string& url, Limits limits) : RawStream(url) {
  constexpr std::int64_t kNanoseconds = 1'000'000;
  const char* subject = "lesson.maths";
  jsStreamConfig config;
  jsStreamConfig_Init(&config);
  config.Name = kStream;
  config.Subjects = &subject;
  config.SubjectsLen = 1;
  config.Duplicates = limits.window * kNanoseconds;
  config.MaxMsgSize = limits.messageSize;
  config.MaxMsgs = limits.messages;
  config.Discard = js_DiscardNew;
  require(js_AddStream(nullptr, jetStream_.get(), &config, nullptr, nullptr));
}

std::uint64_t RawStream::store(const std::string& id, const std::string& text) {
  jsPubOptions options;
  jsPubOptions_Init(&options);
  options.MsgId = id.c_str();
  jsPubAck* stored = nullptr;
  require(js_Publish(&stored, jetStream_.get(), "lesson.maths", text.data(),
                     static_cast<int>(text.size()), &options, nullptr));
  const std::uint64_t sequence = stored->Duplicate ? 0 : stored->Sequence;
  jsPubAck_Destroy(stored);
  return sequence;
}

std::vector<std::string> RawStream::consumers() {
  jsConsumerNamesList* list = nullptr;
  require(js_ConsumerNames(&list, jetStream_.get(), kStream, nullptr, nullptr));
  const std::vector<std::string> names(list->List, list->List + list->Count);
  jsConsumerNamesList_Destroy(list);
  return names;
}

double RawStream::heartbeatOf(const std::string& consumer) {
  jsConsumerInfo* info = nullptr;
  require(js_GetConsumerInfo(&info, jetStream_.get(), kStream, consumer.c_str(), nullptr, nullptr));
  const double seconds = static_cast<double>(info->Config->Heartbeat) / 1e9;
  jsConsumerInfo_Destroy(info);
  return seconds;
}

void RawStream::removeConsumer(const std::string& consumer) {
  require(js_DeleteConsumer(jetStream_.get(), kStream, consumer.c_str(), nullptr, nullptr));
}

void RawStream::remove(std::uint64_t sequence) {
  require(js_DeleteMsg(jetStream_.get(), kStream, sequence, nullptr, nullptr));
}

}  // namespace whiteboard
