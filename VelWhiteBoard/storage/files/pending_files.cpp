#include "VelWhiteBoard/storage/files/pending_files.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <utility>

#include "VelWhiteBoard/foundation/queue/mutex.h"

namespace VelWhiteBoard {

namespace pending_files {

struct Pending {
  std::shared_ptr<OperationQueue> queue;
  /// Counts what has ever been pending.
  std::uint64_t number = 0;
  bool hasBegun = false;
};

}  // namespace pending_files

namespace {

using Clock = std::chrono::steady_clock;

/// Progress within an operation is not announced, so it is looked for this often.
constexpr std::chrono::milliseconds kBetweenLooks{10};
/// A queue that is held up in so many looks in a row is not waited for: a quarter of a second, more
/// if the process was stopped meanwhile.
constexpr int kMostLooks = 25;
/// Nor is a disk that takes longer. A sync takes seconds on a busy one.
constexpr std::chrono::seconds kLongestStandstillOfADisk{30};

using Queues = std::vector<std::shared_ptr<OperationQueue>>;
using pending_files::Pending;

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
        const Pending& file = each->second;
        if (file.number <= last && !file.queue->isThisThreadInside()) found.push_back(file.queue);
      }
    }
    return found;
  }

  /// Whether one of the queues is working on a file, whichever, or waits until others have done so.
  bool isAnySlow(const Queues& queues) const VELWHITEBOARD_REQUIRES(mutex) {
    for (const auto& queue : queues) {
      if (queue->isWaitingForThread()) return true;
    }
    return std::any_of(pending.begin(), pending.end(), [&queues](const auto& each) {
      const Pending& file = each.second;
      return file.hasBegun && std::find(queues.begin(), queues.end(), file.queue) != queues.end();
    });
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
    place = all.pending.emplace(name, Pending{std::move(queue), all.newest + 1, false});
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

void PendingFile::begin() noexcept {
  const MutexHold hold(Register::shared().mutex);
  entry_->place->second.hasBegun = true;
}

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
  Clock::time_point progressedAt = Clock::now();
  Clock::time_point lookedAt = progressedAt;
  int looksWhileHeldUp = 0;
  std::uint64_t before = 0;
  std::size_t countBefore = 0;
  for (;;) {
    Queues concerned;  // dropped without the lock
    const MutexHold hold(all.mutex);
    if (!last) last = all.newest;
    concerned = all.concerned(names, *last);
    if (concerned.empty()) return true;
    const std::uint64_t progress = progressOf(concerned);
    const Clock::time_point now = Clock::now();
    if (progress != before || concerned.size() != countBefore) {
      progressedAt = now;
      looksWhileHeldUp = 0;
      before = progress;
      countBefore = concerned.size();
    } else if (now - lookedAt >= kBetweenLooks) {
      lookedAt = now;
      const bool mayBeSlow = now - progressedAt < kLongestStandstillOfADisk;
      looksWhileHeldUp = mayBeSlow && all.isAnySlow(concerned) ? 0 : looksWhileHeldUp + 1;
      if (looksWhileHeldUp >= kMostLooks) return false;
    }
    all.ended.waitFor(all.mutex, kBetweenLooks);
  }
}

}  // namespace VelWhiteBoard
