#include "lesson/connection_alarms.h"

#include <mutex>
#include <set>
#include <string_view>
#include <utility>

namespace whiteboard {

namespace {

/// All that there are, so that a late report is not given to one that has gone.
struct Present {
  std::mutex mutex;
  std::set<const void*> alarms;
};

Present& present() {
  static Present all;
  return all;
}

}  // namespace

ConnectionAlarms::ConnectionAlarms(std::string subject) : subject_(std::move(subject)) {
  const std::lock_guard<std::mutex> hold(present().mutex);
  present().alarms.insert(this);
}

ConnectionAlarms::~ConnectionAlarms() {
  const std::lock_guard<std::mutex> hold(present().mutex);
  present().alarms.erase(this);
}

natsStatus ConnectionAlarms::watch(natsOptions* options) {
  return natsOptions_SetErrorHandler(options, &ConnectionAlarms::take, this);
}

void ConnectionAlarms::take(natsConnection* connection, natsSubscription*, natsStatus status,
                            void* alarms) {
  const std::lock_guard<std::mutex> hold(present().mutex);
  if (!present().alarms.contains(alarms)) return;
  auto& own = *static_cast<ConnectionAlarms*>(alarms);
  if (status == NATS_MISSED_HEARTBEAT) own.isSilent_ = true;
  if (status != NATS_NOT_PERMITTED) return;
  // The same report comes for other subjects.
  const char* text = nullptr;
  natsConnection_GetLastError(connection, &text);
  const std::string_view what = text != nullptr ? text : "";
  if (what.find('"' + own.subject_ + '"') != std::string_view::npos) own.isForbidden_ = true;
}

}  // namespace whiteboard
