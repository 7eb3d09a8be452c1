#include "lesson/lesson_connection.h"

#include <algorithm>
#include <cstddef>
#include <sstream>
#include <utility>
#include <vector>

#include "lesson/nats_texts.h"

namespace whiteboard {

namespace {

constexpr double kNanosecond = 1e-9;
/// How long to wait for a server, in milliseconds.
constexpr std::int64_t kConnectWait = 5000;
constexpr std::int64_t kRequestWait = 2000;
constexpr std::int64_t kSendWait = 2000;
/// A server does not answer one who may not send, it only reports; after that, others are not
/// waited for that long.
constexpr std::int64_t kForbiddenWait = 300;
/// How many bytes a millisecond the slowest supported connection carries.
constexpr std::int64_t kSlowestRate = 32;
/// A connection on which nothing comes back for three of these is given up. Milliseconds.
constexpr std::int64_t kPingInterval = 2000;
constexpr int kPingsOut = 2;
/// A server gives a sign of life so often when it has nothing to send. Nanoseconds.
constexpr std::int64_t kHeartbeat = 1'000'000'000;
/// A write that makes no progress for so long fails. Milliseconds.
constexpr std::int64_t kWriteWait = 40000;

void require(natsStatus status, const char* what, jsErrCode code = jsErrCode(0)) {
  if (status != NATS_OK) throw failureOf(status, code, what);
}

using OptionsOwner = std::unique_ptr<natsOptions, decltype(&natsOptions_Destroy)>;

/// What is between the commas.
std::vector<std::string> partsOf(const std::string& list) {
  std::vector<std::string> parts;
  std::istringstream rest(list);
  for (std::string part; std::getline(rest, part, ',');) parts.push_back(part);
  return parts;
}

OptionsOwner optionsFor(const std::string& url, const std::string& token,
                        ConnectionAlarms& alarms) {
  natsOptions* made = nullptr;
  require(natsOptions_Create(&made), "prepare a connection");
  OptionsOwner options(made, &natsOptions_Destroy);
  const auto set = [](natsStatus status) { require(status, "use these settings"); };
  const std::vector<std::string> servers = partsOf(url);
  std::vector<const char*> texts;
  for (const std::string& server : servers) texts.push_back(server.c_str());
  set(natsOptions_SetServers(made, texts.data(), static_cast<int>(texts.size())));
  if (url.starts_with("tls://")) set(natsOptions_SetSecure(made, true));
  if (!token.empty()) set(natsOptions_SetToken(made, token.c_str()));
  set(natsOptions_SetName(made, "whiteboard"));
  set(natsOptions_SetAllowReconnect(made, false));
  set(natsOptions_SetTimeout(made, kConnectWait));
  set(natsOptions_SetPingInterval(made, kPingInterval));
  set(natsOptions_SetMaxPingsOut(made, kPingsOut));
  set(natsOptions_SetWriteDeadline(made, kWriteWait));
  set(alarms.watch(made));
  return options;
}

/// What cannot be undone by one participant is forbidden to all: the order has no gaps.
jsStreamConfig configOf(const char* stream, const char** subject, int replicas) {
  jsStreamConfig config;
  jsStreamConfig_Init(&config);
  config.Name = stream;
  config.Subjects = subject;
  config.SubjectsLen = 1;
  config.Storage = js_FileStorage;
  config.Replicas = replicas;
  config.Discard = js_DiscardNew;
  config.DenyDelete = true;
  config.DenyPurge = true;
  return config;
}

/// What waits to be taken of what is shown; more is dropped.
constexpr int kMostShown = 256;
constexpr int kMostShownBytes = 4'000'000;

using Taking = std::function<void(std::string_view text)>;

void giveText(natsConnection*, natsSubscription*, natsMsg* message, void* taking) {
  const int size = std::max(natsMsg_GetDataLength(message), 0);
  (*static_cast<Taking*>(taking))({natsMsg_GetData(message), static_cast<std::size_t>(size)});
  natsMsg_Destroy(message);
}

void endTaking(void* taking) { const std::unique_ptr<Taking> owner(static_cast<Taking*>(taking)); }

/// What the server says, which is destroyed.
StreamState takeState(jsStreamInfo* info) {
  const StreamState state{static_cast<double>(info->Created) * kNanosecond, info->State.LastSeq,
                          info->State.Msgs};
  jsStreamInfo_Destroy(info);
  return state;
}

}  // namespace

ReceivedMessage::ReceivedMessage(natsMsg* message) : message_(message) {
  jsMsgMetaData* data = nullptr;
  require(natsMsg_GetMetaData(&data, message), "read a message");
  sequence_ = data->Sequence.Stream;
  time_ = static_cast<double>(data->Timestamp) * kNanosecond;
  pending_ = data->NumPending;
  jsMsgMetaData_Destroy(data);
}

std::string_view ReceivedMessage::id() const {
  const char* value = nullptr;
  const natsStatus status = natsMsgHeader_Get(message_.get(), "Nats-Msg-Id", &value);
  return status == NATS_OK && value != nullptr ? value : std::string_view();
}

std::string_view ReceivedMessage::text() const {
  const int size = std::max(natsMsg_GetDataLength(message_.get()), 0);
  return {natsMsg_GetData(message_.get()), static_cast<std::size_t>(size)};
}

LessonConnection::LessonConnection(const std::string& url, const std::string& lesson,
                                   const std::string& token)
    : stream_("lesson-" + lesson),
      subject_("lesson." + lesson),
      shownSubject_(subject_ + ".now"),
      alarms_(subject_) {
  const OptionsOwner options = optionsFor(url, token, alarms_);
  natsConnection* connection = nullptr;
  require(natsConnection_Connect(&connection, options.get()), "connect");
  connection_.reset(connection);
  jsOptions waiting;
  jsOptions_Init(&waiting);
  waiting.Wait = kRequestWait;
  jsCtx* jetStream = nullptr;
  require(natsConnection_JetStream(&jetStream, connection, &waiting), "use JetStream");
  jetStream_.reset(jetStream);
}

// A subscription to an open connection would ask the server to remove it, and wait.
LessonConnection::~LessonConnection() { close(); }

std::optional<StreamState> LessonConnection::findStream() {
  jsStreamInfo* info = nullptr;
  auto code = jsErrCode(0);
  const natsStatus status =
      js_GetStreamInfo(&info, jetStream_.get(), stream_.c_str(), nullptr, &code);
  if (status == NATS_NOT_FOUND || code == JSStreamNotFoundErr) return std::nullopt;
  require(status, "open the lesson", code);
  return takeState(info);
}

StreamState LessonConnection::openStream(int replicas) {
  if (const auto found = findStream()) return *found;
  jsStreamInfo* info = nullptr;
  auto code = jsErrCode(0);
  const char* subject = subject_.c_str();
  jsStreamConfig config = configOf(stream_.c_str(), &subject, replicas);
  // Two who do so at once both succeed.
  const natsStatus status = js_AddStream(&info, jetStream_.get(), &config, nullptr, &code);
  require(status, "open the lesson", code);
  return takeState(info);
}

void LessonConnection::subscribe(std::uint64_t from) {
  jsSubOptions options;
  jsSubOptions_Init(&options);
  options.Stream = stream_.c_str();
  // Not the library's ordered consumer: that one is made anew on a thread of its own, also while
  // the connection is given up. The reader sees by the sequences when something is missing.
  options.Config.AckPolicy = js_AckNone;
  options.Config.MaxDeliver = 1;
  options.Config.FlowControl = true;
  options.Config.MemoryStorage = true;
  options.Config.Replicas = 1;
  options.Config.DeliverPolicy = js_DeliverByStartSequence;
  options.Config.OptStartSeq = from;
  options.Config.Heartbeat = kHeartbeat;
  natsSubscription* subscription = nullptr;
  auto code = jsErrCode(0);
  require(
      js_SubscribeSync(&subscription, jetStream_.get(), subject_.c_str(), nullptr, &options, &code),
      "receive the lesson", code);
  subscription_.reset(subscription);
}

void LessonConnection::listen(std::function<void(std::string_view text)> take) {
  auto taking = std::make_unique<Taking>(std::move(take));
  natsSubscription* subscription = nullptr;
  require(natsConnection_Subscribe(&subscription, connection_.get(), shownSubject_.c_str(),
                                   &giveText, taking.get()),
          "receive the lesson");
  shown_.reset(subscription);
  // The library calls until the subscription has ended, and then once more to say so.
  require(natsSubscription_SetOnCompleteCB(subscription, &endTaking, taking.get()),
          "receive the lesson");
  taking.release();
  natsSubscription_SetPendingLimits(subscription, kMostShown, kMostShownBytes);
}

void LessonConnection::show(const std::string& text) {
  natsConnection_Publish(connection_.get(), shownSubject_.c_str(), text.data(),
                         static_cast<int>(text.size()));
}

std::optional<ReceivedMessage> LessonConnection::next(std::chrono::milliseconds atMost) {
  natsMsg* message = nullptr;
  const natsStatus status = natsSubscription_NextMsg(&message, subscription_.get(), atMost.count());
  if (alarms_.isSilent()) {
    natsMsg_Destroy(message);
    throw failureOf(NATS_TIMEOUT, jsErrCode(0), "receive the lesson");
  }
  if (status == NATS_TIMEOUT) return std::nullopt;
  require(status, "receive the lesson");
  return ReceivedMessage(message);
}

SendResult LessonConnection::send(const OutgoingMessage& message) {
  natsMsg* made = nullptr;
  natsStatus status = natsMsg_Create(&made, subject_.c_str(), nullptr, message.text.data(),
                                     static_cast<int>(message.text.size()));
  if (status != NATS_OK) return {SendResult::Kind::kFailed, natsStatus_GetText(status)};
  const std::unique_ptr<natsMsg, decltype(&natsMsg_Destroy)> owner(made, &natsMsg_Destroy);
  jsPubOptions options;
  jsPubOptions_Init(&options);
  options.MsgId = message.id.c_str();
  options.MaxWait = (mayNotSend_ ? kForbiddenWait : kSendWait) +
                    static_cast<std::int64_t>(message.text.size()) / kSlowestRate;
  auto code = jsErrCode(0);
  alarms_.takeForbidden();
  status = js_PublishMsg(nullptr, jetStream_.get(), made, &options, &code);
  mayNotSend_ = status == NATS_TIMEOUT && alarms_.takeForbidden();
  if (status == NATS_OK) return {SendResult::Kind::kSent, {}};
  if (mayNotSend_) {
    return {SendResult::Kind::kRefused, "The server does not let this participant write."};
  }
  const bool isTooLarge = status == NATS_MAX_PAYLOAD || code == JSStreamMessageExceedsMaximumErr;
  const bool isForGood = isTooLarge || code == JSBadRequestErr || code == JSStreamSealedErr;
  return {isForGood ? SendResult::Kind::kRefused : SendResult::Kind::kFailed,
          isTooLarge ? "The server does not take messages of this size."
                     : failureOf(status, code, "send").what()};
}

void LessonConnection::close() { natsConnection_Close(connection_.get()); }

}  // namespace whiteboard
