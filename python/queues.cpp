#include "queues.h"

#include <atomic>
#include <future>
#include <mutex>
#include <stdexcept>
#include <unistd.h>
#include <vector>

namespace bindings {

namespace vwb = VelWhiteBoard;

namespace {

/// The first process that has used queues; 0: none has.
std::atomic<pid_t> user{0};

/// Never destroyed: threads may open boards while the process ends.
struct OpenQueues {
  std::mutex mutex;
  std::vector<std::weak_ptr<vwb::OperationQueue>> queues;
};

OpenQueues& openQueues() {
  static OpenQueues* const open = new OpenQueues;
  return *open;
}

}  // namespace

void useQueues() {
  pid_t none = 0;
  if (user.compare_exchange_strong(none, getpid())) return;
  if (isForkedFromUser()) {
    throw std::runtime_error(
        "a process that was forked from one that uses storages cannot use storages: start it with "
        "the method 'spawn'");
  }
}

bool isForkedFromUser() {
  const pid_t first = user;
  return first != 0 && first != getpid();
}

void addOpenQueue(const std::shared_ptr<vwb::OperationQueue>& queue) {
  OpenQueues& open = openQueues();
  const std::lock_guard<std::mutex> hold(open.mutex);
  std::erase_if(open.queues, [](const auto& each) { return each.expired(); });
  open.queues.push_back(queue);
}

void waitForOpenQueues() {
  std::vector<std::future<void>> ends;
  {
    OpenQueues& open = openQueues();
    const std::lock_guard<std::mutex> hold(open.mutex);
    for (const auto& each : open.queues) {
      const std::shared_ptr<vwb::OperationQueue> queue = each.lock();
      if (!queue) continue;
      // A queue runs one operation at a time: this one comes last.
      const auto end = std::make_shared<std::promise<void>>();
      ends.push_back(end->get_future());
      queue->addOperationWithBlock([end] { end->set_value(); });
    }
  }
  for (const std::future<void>& end : ends) end.wait();
}

}  // namespace bindings
