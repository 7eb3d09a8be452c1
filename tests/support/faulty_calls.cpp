#include "tests/support/faulty_calls.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace VelWhiteBoard {

std::string_view callName(Call call) {
  constexpr std::array<std::string_view, kAllCalls.size()> kNames = {
      "open",           "close",      "status",     "read",      "write",  "truncate",
      "setPermissions", "sync",       "syncFolder", "tryLock",   "unlock", "rename",
      "renameToNew",    "makeFolder", "remove",     "removeAll", "list"};
  return kNames[static_cast<std::size_t>(call)];
}

Fault Fault::noSpace(int nth) { return {Call::kWrite, nth, ENOSPC, Way::kNoSpace, kForEver}; }

void FaultyCalls::inject(const Fault& fault) {
  const std::lock_guard<std::mutex> lock(mutex_);
  faults_.push_back(fault);
}

void FaultyCalls::before(Call call, int nth, std::function<void()> action) {
  const std::lock_guard<std::mutex> lock(mutex_);
  hooks_.push_back({call, nth, std::move(action)});
}

void FaultyCalls::heal() {
  const std::lock_guard<std::mutex> lock(mutex_);
  faults_.clear();
  hooks_.clear();
}

int FaultyCalls::count(Call call) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = counts_.find(call);
  return found == counts_.end() ? 0 : found->second;
}

void FaultyCalls::resetCounts() {
  const std::lock_guard<std::mutex> lock(mutex_);
  counts_.clear();
}

int FaultyCalls::faultsMet() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return faultsMet_;
}

std::size_t FaultyCalls::openHandles() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return handles_.size();
}

std::size_t FaultyCalls::mostOpenHandles() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return mostHandles_;
}

std::optional<Fault> FaultyCalls::meet(Call call) {
  std::vector<std::function<void()>> actions;
  std::optional<Fault> met;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    ++counts_[call];
    for (Hook& hook : hooks_) {
      if (hook.call == call && --hook.callsLeft == 0) actions.push_back(hook.action);
    }
    for (Fault& fault : faults_) {
      if (fault.call != call || fault.times == 0) continue;
      if (fault.nth > 1) {
        --fault.nth;
      } else if (!met) {
        met = fault;
        --fault.times;
        // The disk is full from here on: what half of the first write still went into was the rest.
        if (fault.way == Fault::Way::kNoSpace) fault.way = Fault::Way::kError;
        ++faultsMet_;
      }
    }
  }
  for (const auto& action : actions) action();
  return met;
}

int FaultyCalls::opened(int handle) {
  if (handle < 0) return handle;
  const std::lock_guard<std::mutex> lock(mutex_);
  handles_.insert(handle);
  mostHandles_ = std::max(mostHandles_, handles_.size());
  return handle;
}

template <class Real>
int FaultyCalls::through(Call call, const Real& real) {
  if (const auto fault = meet(call)) return -fault->error;
  return real();
}

int FaultyCalls::open(const std::string& path, OpenMode mode) {
  return opened(through(Call::kOpen, [&] { return real_.open(path, mode); }));
}

int FaultyCalls::close(int handle) {
  const auto fault = meet(Call::kClose);
  {
    // Before the real call: once it is made, another thread may be given the same number.
    const std::lock_guard<std::mutex> lock(mutex_);
    handles_.erase(handle);
  }
  const int result = real_.close(handle);  // a close that fails has closed all the same
  return fault ? -fault->error : result;
}

int FaultyCalls::status(const std::string& path, bool followLinks, FileInfo& info) {
  return through(Call::kStatus, [&] { return real_.status(path, followLinks, info); });
}

int FaultyCalls::statusOfHandle(int handle, FileInfo& info) {
  return through(Call::kStatus, [&] { return real_.statusOfHandle(handle, info); });
}

std::int64_t FaultyCalls::read(int handle, char* bytes, std::size_t size) {
  if (const auto fault = meet(Call::kRead)) return -fault->error;
  return real_.read(handle, bytes, size);
}

std::int64_t FaultyCalls::write(int handle, const char* bytes, std::size_t size) {
  const auto fault = meet(Call::kWrite);
  if (!fault) return real_.write(handle, bytes, size);
  switch (fault->way) {
    case Fault::Way::kShortWrite:
    case Fault::Way::kNoSpace:
      return real_.write(handle, bytes, (size + 1) / 2);
    case Fault::Way::kError:
    case Fault::Way::kNothing:
      return -fault->error;
  }
  return -EIO;
}

int FaultyCalls::truncate(int handle) {
  return through(Call::kTruncate, [&] { return real_.truncate(handle); });
}

int FaultyCalls::setPermissions(int handle, std::uint32_t permissions) {
  return through(Call::kSetPermissions, [&] { return real_.setPermissions(handle, permissions); });
}

int FaultyCalls::sync(int handle) {
  return through(Call::kSync, [&] { return real_.sync(handle); });
}

int FaultyCalls::syncFolder(const std::string& path) {
  return through(Call::kSyncFolder, [&] { return real_.syncFolder(path); });
}

int FaultyCalls::tryLock(int handle) {
  return through(Call::kTryLock, [&] { return real_.tryLock(handle); });
}

int FaultyCalls::unlock(int handle) {
  return through(Call::kUnlock, [&] { return real_.unlock(handle); });
}

int FaultyCalls::rename(const std::string& from, const std::string& to) {
  return through(Call::kRename, [&] { return real_.rename(from, to); });
}

int FaultyCalls::renameToNew(const std::string& from, const std::string& to) {
  return through(Call::kRenameToNew, [&] { return real_.renameToNew(from, to); });
}

int FaultyCalls::makeFolder(const std::string& path, std::uint32_t permissions) {
  return through(Call::kMakeFolder, [&] { return real_.makeFolder(path, permissions); });
}

int FaultyCalls::remove(const std::string& path) {
  return through(Call::kRemove, [&] { return real_.remove(path); });
}

int FaultyCalls::removeAll(const std::string& path) {
  return through(Call::kRemoveAll, [&] { return real_.removeAll(path); });
}

int FaultyCalls::list(int handle, std::vector<std::string>& names) {
  const auto fault = meet(Call::kList);
  const int result = real_.list(handle, names);  // one that fails may have listed a part
  return fault ? -fault->error : result;
}

}  // namespace VelWhiteBoard
