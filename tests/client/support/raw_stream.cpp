#include "tests/client/support/raw_stream.h"

#include <stdexcept>

namespace whiteboard {

namespace {

void require(natsStatus status) {
  if (status != NATS_OK) throw std::runtime_error(natsStatus_GetText(status));
}

}  // namespace

RawStream::RawStream(const std::string& url, Limits limits)
    : connection_(nullptr, &natsConnection_Destroy), jetStream_(nullptr, &jsCtx_Destroy) {
  constexpr std::int64_t kNanoseconds = 1'000'000;
  natsConnection* connection = nullptr;
  require(natsConnection_ConnectTo(&connection, url.c_str()));
  connection_.reset(connection);
  jsCtx* jetStream = nullptr;
  require(natsConnection_JetStream(&jetStream, connection, nullptr));
  jetStream_.reset(jetStream);
  const char* subject = "lesson.maths";
  jsStreamConfig config;
  jsStreamConfig_Init(&config);
  config.Name = "lesson-maths";
  config.Subjects = &subject;
  config.SubjectsLen = 1;
  config.Duplicates = limits.window * kNanoseconds;
  config.MaxMsgSize = limits.messageSize;
  config.MaxMsgs = limits.messages;
  config.Discard = js_DiscardNew;
  require(js_AddStream(nullptr, jetStream, &config, nullptr, nullptr));
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

void RawStream::remove(std::uint64_t sequence) {
  require(js_DeleteMsg(jetStream_.get(), "lesson-maths", sequence, nullptr, nullptr));
}

}  // namespace whiteboard
