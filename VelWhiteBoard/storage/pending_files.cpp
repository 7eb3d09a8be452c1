#include "VelWhiteBoard/storage/pending_files.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <utility>

#include "VelWhiteBoard/foundation/mutex.h"

namespace VelWhiteBoard {

namespace {

using Clock = std::chrono::steady_clock;

/// A queue that makes no progress for so long is not waited for.
constexpr std::chrono::milliseconds kLongestStandstill{250};
/// Progress within an operation is not announced, so it is looked for this often.
constexpr std::chrono::milliseconds kBetweenLooks{10};

using Queues = std::vector<std::shared_ptr<OperationQueue>>;

struct Register {
  Mutex mutex;
  Condition ended;
  std::multimap<std::string, std::shared_ptr<OperationQueue>> queues
      VELWHITEBOARD_GUARDED_BY(mutex);

  static Register& shared() {
    // Never destroyed: operations still end while the process does.
    static Register& instance = *new Register;
    return instance;
  }

  /// The queues, other than those that this thread is inside of, that have something to do with one
  /// of the files.
  Queues concerned(const std::vector<std::string>& names) VELWHITEBOARD_REQUIRES(mutex) {
    Queues found;
    for (const std::string& name : names) {
      const auto [first, last] = queues.equal_range(name);
      for (auto each = first; each != last; ++each) {
        if (!each->second->isThisThreadInside()) found.push_back(each->second);
      }
    }
    return found;
  }
};

std::uint64_t progressOf(const Queues& queues) {
  std::uint64_t progress = 0;
  for (const auto& queue : queues) progress += queue->progress();
  return progress;
}

}  // namespace

struct PendingFile::Entry {
  Entry(const std::string& name, std::shared_ptr<OperationQueue> queue) {
    const MutexHold hold(Register::shared().mutex);
    place = Register::shared().queues.emplace(name, std::move(queue));
  }
  ~Entry() {
    decltype(Register::queues)::node_type ended;  // freed without the lock
    const MutexHold hold(Register::shared().mutex);
    ended = Register::shared().queues.extract(place);
    Register::shared().ended.notifyAll();
  }
  Entry(const Entry&) = delete;
  Entry& operator=(const Entry&) = delete;

  decltype(Register::queues)::iterator place;
};

PendingFile::PendingFile(const std::string& name, std::shared_ptr<OperationQueue> queue)
    : entry_(std::make_unique<Entry>(name, std::move(queue))) {}

PendingFile::PendingFile(PendingFile&& other) noexcept = default;
PendingFile& PendingFile::operator=(PendingFile&& other) noexcept = default;
PendingFile::~PendingFile() = default;

std::string pendingName(const std::string& path) {
  std::error_code error;
  const std::filesystem::path absolute = std::filesystem::absolute(path, error);
  return error ? path : absolute.lexically_normal().string();
}

bool arePending(const std::vector<std::string>& names) {
  Register& pending = Register::shared();
  Queues concerned;  // dropped without the lock
  const MutexHold hold(pending.mutex);
  concerned = pending.concerned(names);
  return !concerned.empty();
}

bool waitForPendingFiles(const std::vector<std::string>& names) {
  Register& pending = Register::shared();
  Clock::time_point deadline = Clock::now() + kLongestStandstill;
  std::uint64_t before = 0;
  std::size_t countBefore = 0;
  for (;;) {
    Queues concerned;  // dropped without the lock
    const MutexHold hold(pending.mutex);
    concerned = pending.concerned(names);
    if (concerned.empty()) return true;
    const std::uint64_t progress = progressOf(concerned);
    if (progress != before || concerned.size() != countBefore) {
      deadline = Clock::now() + kLongestStandstill;
      before = progress;
      countBefore = concerned.size();
    } else if (Clock::now() >= deadline) {
      return false;
    }
    pending.ended.waitFor(pending.mutex, kBetweenLooks);
  }
}

}  // namespace VelWhiteBoard
