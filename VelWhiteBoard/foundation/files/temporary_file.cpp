#include "VelWhiteBoard/foundation/files/temporary_file.h"

#include <algorithm>
#include <cerrno>
#include <thread>

#include "VelWhiteBoard/foundation/queue/operation_queue.h"

namespace VelWhiteBoard {
namespace {

using Clock = std::chrono::steady_clock;

// Longer than writing a page takes, except on a failing disk.
constexpr std::chrono::seconds kLongestWait{1};
constexpr std::chrono::microseconds kFirstPause{100};
constexpr std::chrono::milliseconds kLongestPause{10};

// Every lost turn means that another writer has finished, so a writer hardly ever loses twice. The
// limit ends the search on a file system whose file identities cannot be trusted.
constexpr int kMaxTurns = 1000;

constexpr char kNumberSeparator = '-';
// There is one such name for each writer that gave up waiting, and for each leftover of a crash.
constexpr int kMaxOwnNames = 1000;
// With a name of its own a writer loses only to a cleaner that runs at that moment.
constexpr int kMaxLostOwnNames = 3;

// Errors which mean that a foreign object has the temporary's name: a symbolic link, a pipe or
// socket, another user's file, a folder.
bool isForeignObject(int error) {
  switch (error) {
    case ELOOP:
    case ENXIO:
    case EACCES:
    case EPERM:
    case EISDIR:
      return true;
    default:
      return false;
  }
}

// 0: `path` leads to the file with this identity. Positive: to another file, or to no file.
// Negative: an error.
int leadsElsewhere(SystemCalls& calls, const std::string& path, const FileInfo& identity) {
  FileInfo named;
  const int result = uninterrupted([&] { return calls.status(path, false, named); });
  if (result == -ENOENT) return 1;
  if (result < 0) return result;
  return named.device == identity.device && named.inode == identity.inode ? 0 : 1;
}

int removeFile(SystemCalls& calls, const std::string& path) {
  return uninterrupted([&] { return calls.remove(path); });
}

}  // namespace

TemporaryFile::TemporaryFile(SystemCalls& calls, const std::string& target)
    : calls_(calls), target_(target), file_(calls) {}

TemporaryFile::~TemporaryFile() { release(); }

// Removes the file while it is still locked: a waiting writer must not have begun to fill it.
void TemporaryFile::release() {
  if (ownsName_) removeFile(calls_, path_);
  ownsName_ = false;
  // Unlocked explicitly, because a forked child may share the open file, and with it the lock.
  if (locked_) calls_.unlock(file_.get());
  locked_ = false;
  file_.close();
}

TemporaryFile::Try TemporaryFile::fail(FileStep step, int negatedError) {
  if (failure_.ok()) failure_ = FileResult::failure(step, -negatedError, path_);
  return Try::kFailed;
}

FileResult TemporaryFile::open() {
  Try outcome = takeSharedName();
  if (outcome != Try::kTaken && outcome != Try::kFailed) outcome = takeOwnName();
  return outcome == Try::kTaken ? FileResult::success() : failure_;
}

TemporaryFile::Try TemporaryFile::takeSharedName() {
  path_ = target_ + std::string(kTemporarySuffix);
  const Deadline deadline = Clock::now() + kLongestWait;
  Try outcome = Try::kLost;
  bool obstacleRemoved = false;
  for (int turn = 0; turn < kMaxTurns && outcome == Try::kLost; ++turn) {
    outcome = tryName(OpenMode::kTemporary, deadline);
    if (outcome == Try::kTakenByOther && !obstacleRemoved && removeFile(calls_, path_) >= 0) {
      obstacleRemoved = true;
      outcome = Try::kLost;
    }
  }
  if (outcome != Try::kTaken) return outcome;
  const int result = uninterrupted([&] { return calls_.truncate(file_.get()); });
  return result >= 0 ? Try::kTaken : fail(FileStep::kWrite, result);
}

TemporaryFile::Try TemporaryFile::takeOwnName() {
  const std::string shared = path_;
  int lost = 0;
  for (int number = 1; number <= kMaxOwnNames && lost < kMaxLostOwnNames; ++number) {
    path_ = shared + kNumberSeparator + std::to_string(number);
    const Try outcome = tryName(OpenMode::kNewTemporary, Clock::now());
    if (outcome == Try::kTaken || outcome == Try::kFailed) return outcome;
    if (outcome != Try::kTakenByOther) ++lost;
  }
  return fail(FileStep::kLock, -EBUSY);
}

TemporaryFile::Try TemporaryFile::tryName(OpenMode mode, Deadline deadline) {
  release();
  file_ = OpenHandle(calls_, uninterrupted([&] { return calls_.open(path_, mode); }));
  if (!file_.isOpen()) {
    const bool isNew = mode == OpenMode::kNewTemporary;
    const bool isTaken = isNew ? file_.error() == EEXIST : isForeignObject(file_.error());
    return isTaken ? Try::kTakenByOther : fail(FileStep::kOpen, -file_.error());
  }
  int result = uninterrupted([&] { return calls_.statusOfHandle(file_.get(), identity_); });
  if (result < 0) return afterBlindLook(result);
  // If the file has a second name, emptying it would empty another program's file.
  if (identity_.kind != FileKind::kFile || identity_.links > 1) return Try::kTakenByOther;
  if (isHeldUntil(deadline)) return Try::kHeld;
  result = leadsElsewhere(calls_, path_, identity_);
  if (result < 0) return afterBlindLook(result);
  ownsName_ = result == 0;
  return ownsName_ ? Try::kTaken : Try::kLost;
}

// Takes the lock; true when another writer still holds it at the deadline. Some network and
// user-space file systems have no locks. Then writers of one file do not take turns; the
// replacement itself stays atomic.
bool TemporaryFile::isHeldUntil(Deadline deadline) {
  std::chrono::microseconds pause = kFirstPause;
  for (;;) {
    const int result = uninterrupted([&] { return calls_.tryLock(file_.get()); });
    locked_ = result >= 0;
    if (result != -EWOULDBLOCK) return false;
    if (Clock::now() >= deadline) return true;
    OperationQueue::reportProgress();  // the wait is bounded
    std::this_thread::sleep_for(pause);
    pause = std::min<std::chrono::microseconds>(2 * pause, kLongestPause);
  }
}

// The status of the file could not be read. This writer may just have created it. It removes it if
// a second check, made while no other writer can use the file, shows that the name leads to it.
TemporaryFile::Try TemporaryFile::afterBlindLook(int negatedError) {
  if (!locked_) locked_ = uninterrupted([&] { return calls_.tryLock(file_.get()); }) >= 0;
  const int result = uninterrupted([&] { return calls_.statusOfHandle(file_.get(), identity_); });
  ownsName_ = locked_ && result >= 0 && leadsElsewhere(calls_, path_, identity_) == 0;
  return fail(FileStep::kStatus, negatedError);
}

FileResult TemporaryFile::renameOverTarget() {
  // Checked once more, since volumes may lack locks and users may delete files: another file under
  // this name must not become the target.
  int result = leadsElsewhere(calls_, path_, identity_);
  if (result < 0) return FileResult::failure(FileStep::kStatus, -result, path_);
  if (result > 0) {
    ownsName_ = false;
    return FileResult::failure(FileStep::kRename, ESTALE, path_);
  }
  result = uninterrupted([&] { return calls_.rename(path_, target_); });
  if (result < 0) return FileResult::failure(FileStep::kRename, -result, path_);
  ownsName_ = false;  // by now the name may lead to the next writer's temporary
  return FileResult::success();
}

bool isTemporaryName(std::string_view name, std::string_view targetSuffix) {
  constexpr std::string_view kDigits = "0123456789";
  const std::size_t numberEnd = name.find_last_not_of(kDigits);
  if (numberEnd == std::string_view::npos) return false;
  const bool hasNumber = numberEnd + 1 < name.size();
  if (hasNumber && name[numberEnd] != kNumberSeparator) return false;
  if (hasNumber) name = name.substr(0, numberEnd);
  if (!name.ends_with(kTemporarySuffix)) return false;
  name.remove_suffix(kTemporarySuffix.size());
  return name.ends_with(targetSuffix);
}

FileResult removeUnusedTemporary(SystemCalls& calls, const std::string& path) {
  OpenHandle file(calls, uninterrupted([&] { return calls.open(path, OpenMode::kLeftover); }));
  if (!file.isOpen()) {
    const bool isNone = file.error() == ENOENT || isForeignObject(file.error());
    return isNone ? FileResult::success()
                  : FileResult::failure(FileStep::kOpen, file.error(), path);
  }
  FileInfo identity;
  int result = uninterrupted([&] { return calls.statusOfHandle(file.get(), identity); });
  if (result < 0) return FileResult::failure(FileStep::kStatus, -result, path);
  if (identity.kind != FileKind::kFile) return FileResult::success();
  // Without the lock nothing is removed, on volumes that have no locks either: a writer may be
  // filling the file.
  result = uninterrupted([&] { return calls.tryLock(file.get()); });
  if (result == -EWOULDBLOCK) return FileResult::success();
  if (result < 0) return FileResult::failure(FileStep::kLock, -result, path);
  // The writer that held the lock until now may have renamed the file: then the name is another's.
  FileStep step = FileStep::kStatus;
  result = leadsElsewhere(calls, path, identity);
  if (result == 0) {
    step = FileStep::kRemove;
    result = removeFile(calls, path);
  }
  calls.unlock(file.get());
  return result >= 0 ? FileResult::success() : FileResult::failure(step, -result, path);
}

}  // namespace VelWhiteBoard
