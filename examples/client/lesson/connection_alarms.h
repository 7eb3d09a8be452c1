// What a connection learns while nobody waits for it.
#pragma once

#include <atomic>
#include <string>

#include <nats/nats.h>

namespace whiteboard {

/// Takes the errors that a connection reports on a thread of its library. The library may report
/// one when the connection has gone already; then it is dropped.
///
/// Threads: `isSilent`, `takeForbidden` and `take` may be called from any thread.
class ConnectionAlarms {
 public:
  /// @param subject to which the connection sends.
  explicit ConnectionAlarms(std::string subject);
  ~ConnectionAlarms();
  ConnectionAlarms(const ConnectionAlarms&) = delete;
  ConnectionAlarms& operator=(const ConnectionAlarms&) = delete;

  /// To be called before the connection is made.
  natsStatus watch(natsOptions* options);

  /// Whether nothing has come from the server, not even the signs of life that it sends for a
  /// subscription, for so long that the subscription must be made anew.
  bool isSilent() const { return isSilent_; }
  /// Whether the server has said since the last call that this participant may not send.
  bool takeForbidden() { return isForbidden_.exchange(false); }

 private:
  static void take(natsConnection* connection, natsSubscription* subscription, natsStatus status,
                   void* alarms);

  const std::string subject_;
  std::atomic<bool> isSilent_ = false;
  std::atomic<bool> isForbidden_ = false;
};

}  // namespace whiteboard
