#include "lesson/nats_texts.h"

#include <string>

namespace whiteboard {

namespace {

/// The reason, without a full stop; empty when the library's own text is to be used.
std::string knownReason(natsStatus status, jsErrCode code) {
  switch (code) {
    case JSNotEnabledErr:
    case JSNotEnabledForAccountErr:
      return "the server keeps no lessons (JetStream is off)";
    case JSAccountResourcesExceededErr:
    case JSInsufficientResourcesErr:
    case JSStorageResourcesExceededErr:
      return "the server has no room left";
    default:
      break;
  }
  switch (status) {
    case NATS_NO_SERVER:
      return "no server answers at this address";
    case NATS_TIMEOUT:
      return "the server does not answer";
    case NATS_NO_RESPONDERS:
      return "the server keeps no lessons (JetStream is off)";
    case NATS_CONNECTION_CLOSED:
    case NATS_CONNECTION_DISCONNECTED:
    case NATS_IO_ERROR:
    case NATS_STALE_CONNECTION:
      return "the connection is lost";
    case NATS_SECURE_CONNECTION_WANTED:
      return "the server has no TLS";
    case NATS_SECURE_CONNECTION_REQUIRED:
      return "the server wants TLS: the address must begin with tls://";
    case NATS_SSL_ERROR:
      return "no TLS connection, the server's certificate may not be trusted";
    default:
      return {};
  }
}

}  // namespace

NatsFailure failureOf(natsStatus status, jsErrCode code, const char* what) {
  if (status == NATS_CONNECTION_AUTH_FAILED) {
    return NatsFailure("The server does not accept the token.", true);
  }
  std::string reason = knownReason(status, code);
  if (reason.empty()) {
    // The text of the last error of this thread.
    const char* text = nats_GetLastError(nullptr);
    reason = text != nullptr && *text != '\0' ? text : natsStatus_GetText(status);
    if (code != 0) reason += " (" + std::to_string(static_cast<int>(code)) + ")";
  }
  return NatsFailure(std::string("Cannot ") + what + ": " + reason + ".");
}

}  // namespace whiteboard
