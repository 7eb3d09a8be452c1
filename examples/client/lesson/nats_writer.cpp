#include "lesson/nats_writer.h"

#include <nats/nats.h>

#include "lesson/message.h"

namespace whiteboard {

void sendAll(NatsBusState& state) {
  while (const auto job = state.nextJob()) {
    if (job->isShown) {
      job->connection->show(job->message.text);
      continue;
    }
    // Nobody would accept a longer one.
    const bool isTooLarge = job->message.text.size() > kMessageSizeLimit;
    const SendResult result =
        isTooLarge ? SendResult{SendResult::Kind::kRefused, "It is larger than a message may be."}
                   : job->connection->send(job->message);
    state.finished(*job, result);
    // The reader notices, and connects again: what the stream has is known then.
    if (result.kind == SendResult::Kind::kFailed) job->connection->close();
  }
  // So that the reader need not wait for an answer.
  if (const auto connection = state.connection()) connection->close();
  nats_ReleaseThreadMemory();
}

}  // namespace whiteboard
