#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "VelWhiteBoard/foundation/files/system_calls.h"

namespace VelWhiteBoard {

/// The kinds of system call that can be made to fail, one for each function of SystemCalls; the two
/// that ask for a status are one kind.
enum class Call {
  kOpen,
  kClose,
  kStatus,
  kRead,
  kWrite,
  kTruncate,
  kSetPermissions,
  kSync,
  kSyncFolder,
  kTryLock,
  kUnlock,
  kRename,
  kRenameToNew,
  kMakeFolder,
  kRemove,
  kRemoveAll,
  kList,
};

inline constexpr std::array kAllCalls = {
    Call::kOpen,        Call::kClose,      Call::kStatus,         Call::kRead,
    Call::kWrite,       Call::kTruncate,   Call::kSetPermissions, Call::kSync,
    Call::kSyncFolder,  Call::kTryLock,    Call::kUnlock,         Call::kRename,
    Call::kRenameToNew, Call::kMakeFolder, Call::kRemove,         Call::kRemoveAll,
    Call::kList};

std::string_view callName(Call call);

/// One thing that goes wrong: the `nth` call of a kind, counted from the injection on.
struct Fault {
  enum class Way {
    kError,       ///< the call does nothing and answers `error`
    kShortWrite,  ///< half of the bytes are written, and that is the answer
    kNoSpace,     ///< half of the bytes are written; every later write answers `error`
    kNothing,     ///< the call does nothing and answers 0
  };

  Call call = Call::kWrite;
  int nth = 1;
  int error = 0;
  Way way = Way::kError;
  int times = 1;  ///< how many calls in a row, from the nth on

  static constexpr int kForEver = 1 << 30;

  static Fault failing(Call call, int nth, int error) { return {call, nth, error, Way::kError, 1}; }
  static Fault failingFrom(Call call, int nth, int error) {
    return {call, nth, error, Way::kError, kForEver};
  }
  static Fault shortWrite(int nth) { return {Call::kWrite, nth, 0, Way::kShortWrite, 1}; }
  static Fault noSpace(int nth);
  static Fault writingNothing(int nth) { return {Call::kWrite, nth, 0, Way::kNothing, 1}; }
};

/// System calls that fail on demand, on top of others that work. Counts what passes through. Any
/// number of threads may call; faults and hooks are set between their calls.
class FaultyCalls final : public SystemCalls {
 public:
  explicit FaultyCalls(SystemCalls& real = SystemCalls::posix()) : real_(real) {}

  /// Adds a fault; several may be in force.
  void inject(const Fault& fault);
  /// Runs `action` just before the `nth` call of a kind from now on, on the calling thread: the
  /// moment at which somebody else interferes.
  void before(Call call, int nth, std::function<void()> action);
  /// Ends every fault and forgets every hook.
  void heal();

  /// How many calls of a kind were made since the construction or the last `resetCounts`.
  int count(Call call) const;
  void resetCounts();
  /// How many calls were made to fail or to do less.
  int faultsMet() const;
  /// Handles opened through this object and not closed yet, and the most there ever were at once.
  std::size_t openHandles() const;
  std::size_t mostOpenHandles() const;

  int open(const std::string& path, OpenMode mode) override;
  int close(int handle) override;
  int status(const std::string& path, bool followLinks, FileInfo& info) override;
  int statusOfHandle(int handle, FileInfo& info) override;
  std::int64_t read(int handle, char* bytes, std::size_t size) override;
  void expectFilling(char* memory, std::size_t size) override { real_.expectFilling(memory, size); }
  std::int64_t write(int handle, const char* bytes, std::size_t size) override;
  int truncate(int handle) override;
  int setPermissions(int handle, std::uint32_t permissions) override;
  int sync(int handle) override;
  int syncFolder(const std::string& path) override;
  int tryLock(int handle) override;
  int unlock(int handle) override;
  int rename(const std::string& from, const std::string& to) override;
  int renameToNew(const std::string& from, const std::string& to) override;
  int makeFolder(const std::string& path, std::uint32_t permissions) override;
  int remove(const std::string& path) override;
  int removeAll(const std::string& path) override;
  int list(int handle, std::vector<std::string>& names) override;

 private:
  struct Hook {
    Call call;
    int callsLeft;
    std::function<void()> action;
  };

  /// Counts a call, runs its hooks and tells how it must fail, if it must.
  std::optional<Fault> meet(Call call);
  int opened(int handle);
  template <class Real>
  int through(Call call, const Real& real);

  SystemCalls& real_;
  mutable std::mutex mutex_;
  std::map<Call, int> counts_;
  std::vector<Fault> faults_;
  std::vector<Hook> hooks_;
  std::set<int> handles_;
  std::size_t mostHandles_ = 0;
  int faultsMet_ = 0;
};

}  // namespace VelWhiteBoard
