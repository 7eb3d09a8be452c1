// Sends what a participant has published.
#pragma once

#include "lesson/nats_bus_state.h"

namespace whiteboard {

/// Sends the outbox, one message after the other, each when the stream has the one before. Returns
/// when the bus stops.
void sendAll(NatsBusState& state);

}  // namespace whiteboard
