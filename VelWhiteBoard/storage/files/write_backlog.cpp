#include "VelWhiteBoard/storage/files/write_backlog.h"

#include <cstddef>
#include <utility>

namespace VelWhiteBoard {

namespace {

/// More than ever wait for a disk that works.
constexpr std::size_t kMostWaiting = 16;

}  // namespace

WriteBacklog::Prepared WriteBacklog::prepare(const std::string& files,
                                             std::unique_ptr<QueuedWrite> write,
                                             std::shared_ptr<OperationQueue> queue) {
  const std::shared_ptr<QueuedWrite> shared = std::move(write);
  Prepared prepared;
  prepared.write_.push_back(
      {shared, OperationQueue::makeOperation([shared] { shared->run(); }), std::move(queue)});
  prepared.place_ = &waiting_[files];
  return prepared;
}

void WriteBacklog::queue(Prepared& prepared) noexcept {
  if (prepared.place_ == nullptr) return;
  WaitingWrites& waiting = *std::exchange(prepared.place_, nullptr);
  const Waiting& added = prepared.write_.front();
  added.queue->addOperation(added.operation);
  waiting.splice(waiting.end(), prepared.write_);

  // What has begun no longer waits.
  for (auto each = waiting.begin(); each != waiting.end();) {
    const auto next = std::next(each);
    const std::shared_ptr<QueuedWrite> write = each->write.lock();
    if (!write || write->hasBegun()) {
      prepared.write_.splice(prepared.write_.end(), waiting, each);
    }
    each = next;
  }
  while (waiting.size() > kMostWaiting) {
    const Waiting& oldest = waiting.front();
    oldest.queue->removeOperation(oldest.operation);
    prepared.write_.splice(prepared.write_.end(), waiting, waiting.begin());
  }
}

}  // namespace VelWhiteBoard
