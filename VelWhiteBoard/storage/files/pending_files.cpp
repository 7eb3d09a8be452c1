#include "VelWhiteBoard/storage/files/pending_files.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <utility>

#include "VelWhiteBoard/foundation/queue/mutex.h"

namespace VelWhiteBoard {

namespace {

using Clock = std::chrono::steady_clock;

/// A queue that makes no progress for so long is not waited for.
constexpr std::chrono::milliseconds kLongestStandstill{250};
/// Progress within an operation is not announced, so it is looked for this often.
constexpr std::chrono::milliseconds kBetweenLooks{10};

using Queues = std::vector<std::shared_ptr<OperationQueue>>;

struct Pending {
  std::shared_ptr<OperationQueue> queue;
  /// Counts what has ever been pending.
  std::uint64_t number = 0;
};

struct Register {
  Mutex mutex;
  Condition ended;
  std::uint64_t newest VELWHITEBOARD_GUARDED_BY(mutex) = 0;
  std::multimap<std::string, Pending> pending VELWHITEBOARD_GUARDED_BY(mutex);

  static Register& shared() {
    // Never destroyed: operations still end while the process does.
    static Register& instance = *new Register;
    return instance;
  }

  /// The queues, other than those that this thread is inside of, that have something to do with one
  /// of the files; what is newer than `last` does not count.
  Queues concerned(const std::vector<std::string>& names, std::uint64_t last)
      VELWHITEBOARD_REQUIRES(mutex) {
    Queues found;
    for (const std::string& name : names) {
      const auto [first, end] = pending.equal_range(name);
      for (auto each = first; each != end; ++each) {
        const auto& [queue, number] = each->second;
        if (number <= last && !queue->isThisThreadInside()) found.push_back(queue);
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
    Register& all = Register::shared();
    const MutexHold hold(all.mutex);
    place = all.pending.emplace(name, Pending{std::move(queue), all.newest + 1});
    ++all.newest;
  }
  ~Entry() {
    Register& all = Register::shared();
    decltype(Register::pending)::node_type ended;  // freed without the lock
    const MutexHold hold(all.mutex);
    ended = all.pending.extract(place);
    all.ended.notifyAll();
  }
  Entry(const Entry&) = delete;
  Entry& operator=(const Entry&) = delete;

  decltype(Register::pending)::iterator place;
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
  Register& all = Register::shared();
  Queues concerned;  // dropped without the lock
  const MutexHold hold(all.mutex);
  concerned = all.concerned(names, all.newest);
  return !concerned.empty();
}

bool waitForPendingFiles(const std::vector<std::string>& names) {
  Register& all = Register::shared();
  std::optional<std::uint64_t> last;
  Clock::time_point deadline = Clock::now() + kLongestStandstill;
  std::uint64_t before = 0;
  std::size_t countBefore = 0;
  for (;;) {
    Queues concerned;  // dropped without the lock
    const MutexHold hold(all.mutex);
    if (!last) last = all.newest;
    concerned = all.concerned(names, *last);
    if (concerned.empty()) return true;
    const std::uint64_t progress = progressOf(concerned);
    if (progress != before || concerned.size() != countBefore) {
      deadline = Clock::now() + kLongestStandstill;
      before = progress;
      countBefore = concerned.size();
    } else if (Clock::now() >= deadline) {
      return false;
    }
    all.ended.waitFor(all.mutex, kBetweenLooks);
  }
}

}  // namespace VelWhiteBoard
