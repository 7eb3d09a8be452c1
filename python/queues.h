// The queues of the boards that this process has opened.
#pragma once

#include <VelWhiteBoard/foundation/queue/operation_queue.h>
#include <memory>

namespace bindings {

/// To be called before anything that may use a queue.
/// @throws std::runtime_error in a process that was forked from one that has used queues: they do
///   not work there.
void useQueues();

/// Whether the process was forked from one that has used queues.
bool isForkedFromUser();

/// Remembers a queue as long as it lives.
void addOpenQueue(const std::shared_ptr<VelWhiteBoard::OperationQueue>& queue);

/// Waits until all that the remembered queues have now is done, not for what is added meanwhile.
void waitForOpenQueues();

}  // namespace bindings
