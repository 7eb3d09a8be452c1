#include "VelWhiteBoard/foundation/atomic_write.h"

#include <cerrno>

namespace VelWhiteBoard {
namespace {

// Every lost turn means that another writer has finished, so a writer hardly ever loses twice. The
// bound is for a file system whose file identities cannot be trusted: there it ends the search.
constexpr int kMaxTurns = 1000;

// What is in the way under the temporary's name, when opening it gives one of these, is nothing of
// ours: a symbolic link, a pipe or socket, a leftover of another user.
bool isObstacle(int negatedError) {
  switch (-negatedError) {
    case ELOOP:
    case ENXIO:
    case EACCES:
    case EPERM:
      return true;
    default:
      return false;
  }
}

// Some file systems cannot sync a folder, and a folder may be closed to reading.
bool cannotSyncFolder(int negatedError) {
  return negatedError == -EINVAL || negatedError == -EOPNOTSUPP || negatedError == -EACCES;
}

std::string folderOf(const std::string& path) {
  const std::size_t separator = path.find_last_of('/');
  if (separator == std::string::npos) return ".";
  return separator == 0 ? "/" : path.substr(0, separator);
}

}  // namespace

AtomicWrite::AtomicWrite(SystemCalls& calls, const std::string& path)
    : calls_(calls), path_(path), temporary_(path + std::string(kTemporarySuffix)), file_(calls) {}

AtomicWrite::~AtomicWrite() {
  // Removed while still locked: a waiting writer must not have begun to fill it. A failure leaves a
  // temporary for the next write to use.
  if (ownsTemporary_) {
    uninterrupted([&] { return calls_.remove(SystemCalls::kNoFolder, temporary_, false); });
  }
  // Unlocked by hand, because a forked child may hold the same open file, and with it the lock.
  if (locked_) calls_.unlock(file_.get());
}

bool AtomicWrite::fail(FileStep step, int negatedError, const std::string& path) {
  if (result_.ok()) result_ = FileResult::failure(step, -negatedError, path);
  return false;
}

bool AtomicWrite::begin() {
  for (int turn = 0; turn < kMaxTurns; ++turn) {
    switch (takeTurn()) {
      case Turn::kFailed:
        return false;
      case Turn::kLost:
        continue;
      case Turn::kOurs:
        break;
    }
    ownsTemporary_ = true;
    const int result = uninterrupted([&] { return calls_.truncate(file_.get()); });
    return result >= 0 || fail(FileStep::kWrite, result, temporary_);
  }
  return fail(FileStep::kLock, -EBUSY, temporary_);
}

AtomicWrite::Turn AtomicWrite::takeTurn() {
  if (locked_) calls_.unlock(file_.get());
  locked_ = false;
  if (const Turn opened = openTemporary(); opened != Turn::kOurs) return opened;
  // Some network and user-space file systems have no locks. Then only the turns of several writers
  // of one file are lost; the replacement itself stays atomic.
  locked_ = uninterrupted([&] { return calls_.lock(file_.get()); }) >= 0;
  const int result = nameLeadsElsewhere();
  if (result > 0) return Turn::kLost;
  if (result == 0) return Turn::kOurs;
  return afterBlindLook(result);
}

AtomicWrite::Turn AtomicWrite::openTemporary() {
  file_ = OpenHandle(calls_,
                     uninterrupted([&] { return calls_.open(temporary_, OpenMode::kTemporary); }));
  if (!file_.isOpen()) return afterObstacle(-file_.error());
  const int result = uninterrupted([&] { return calls_.statusOfHandle(file_.get(), identity_); });
  if (result < 0) return afterBlindLook(result);
  // A second name would mean that emptying the temporary empties somebody's file.
  const bool usable = identity_.kind == FileKind::kFile && identity_.links <= 1;
  return usable ? Turn::kOurs : afterObstacle(-EPERM);
}

// Tries once to clear the temporary's name; if that fails, the obstacle is what gets reported.
AtomicWrite::Turn AtomicWrite::afterObstacle(int negatedError) {
  if (isObstacle(negatedError) && !obstacleRemoved_) {
    obstacleRemoved_ = true;
    const int result =
        uninterrupted([&] { return calls_.remove(SystemCalls::kNoFolder, temporary_, false); });
    if (result >= 0) return Turn::kLost;
  }
  fail(FileStep::kOpen, negatedError, temporary_);
  return Turn::kFailed;
}

// Whose file lies under the temporary's name could not be told. It may be a new one of our making:
// ours to remove if a second look, while no other writer can be at it, tells so.
AtomicWrite::Turn AtomicWrite::afterBlindLook(int negatedError) {
  fail(FileStep::kStatus, negatedError, temporary_);
  if (!locked_) locked_ = uninterrupted([&] { return calls_.lock(file_.get()); }) >= 0;
  const int result = uninterrupted([&] { return calls_.statusOfHandle(file_.get(), identity_); });
  ownsTemporary_ = locked_ && result >= 0 && nameLeadsElsewhere() == 0;
  return Turn::kFailed;
}

// 0: the temporary's name leads to the open file. Positive: to another or to none. Negative: an
// error.
int AtomicWrite::nameLeadsElsewhere() {
  FileInfo named;
  const int result = uninterrupted([&] { return calls_.status(temporary_, false, named); });
  if (result == -ENOENT) return 1;
  if (result < 0) return result;
  return named.device == identity_.device && named.inode == identity_.inode ? 0 : 1;
}

bool AtomicWrite::append(std::string_view bytes) {
  if (!result_.ok()) return false;
  // Large pieces go straight through; small ones are gathered, so that a producer may write a few
  // bytes at a time.
  if (pending_.size() + bytes.size() < kFileBlockSize) {
    pending_ += bytes;
    return true;
  }
  if (!flush()) return false;
  if (bytes.size() >= kFileBlockSize) return writeOut(bytes);
  pending_ = bytes;
  return true;
}

bool AtomicWrite::flush() {
  const bool written = writeOut(pending_);
  pending_.clear();
  return written;
}

bool AtomicWrite::writeOut(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::int64_t taken =
        uninterrupted([&] { return calls_.write(file_.get(), bytes.data(), bytes.size()); });
    // Nothing taken and no reason given: trying for ever would hang the save queue.
    if (taken == 0) return fail(FileStep::kWrite, -EIO, temporary_);
    if (taken < 0) return fail(FileStep::kWrite, static_cast<int>(taken), temporary_);
    bytes.remove_prefix(static_cast<std::size_t>(taken));
  }
  return true;
}

// Failing to is no failure of the write: the contents are what matters, and some volumes know no
// permissions.
void AtomicWrite::keepPermissions() {
  FileInfo old;
  const int result = uninterrupted([&] { return calls_.status(path_, false, old); });
  if (result < 0 || old.kind != FileKind::kFile) return;
  uninterrupted([&] { return calls_.setPermissions(file_.get(), old.permissions); });
}

bool AtomicWrite::commit() {
  if (!result_.ok() || !flush()) return false;
  keepPermissions();
  int result = uninterrupted([&] { return calls_.sync(file_.get()); });
  if (result < 0) return fail(FileStep::kSync, result, temporary_);
  // Once more, for the sake of volumes without locks and of people who tidy up folders: another
  // file under our name must not become the page.
  result = nameLeadsElsewhere();
  if (result < 0) return fail(FileStep::kStatus, result, temporary_);
  if (result > 0) {
    ownsTemporary_ = false;
    return fail(FileStep::kRename, -ESTALE, temporary_);
  }
  result = uninterrupted([&] { return calls_.rename(temporary_, path_); });
  if (result < 0) return fail(FileStep::kRename, result, temporary_);
  ownsTemporary_ = false;  // by now the name may lead to the next writer's temporary
  return syncFolder();
}

bool AtomicWrite::syncFolder() {
  const std::string folder = folderOf(path_);
  const int result = uninterrupted([&] { return calls_.syncFolder(folder); });
  return result >= 0 || cannotSyncFolder(result) || fail(FileStep::kSyncFolder, result, folder);
}

}  // namespace VelWhiteBoard
