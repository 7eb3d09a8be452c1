// What went wrong with a server, for a person.
#pragma once

#include <nats/nats.h>

#include "lesson/lesson_connection.h"

namespace whiteboard {

/// @param code of JetStream; 0 when there is none.
/// @param what was tried, such as "connect".
NatsFailure failureOf(natsStatus status, jsErrCode code, const char* what);

}  // namespace whiteboard
