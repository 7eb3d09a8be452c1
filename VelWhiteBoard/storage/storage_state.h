/// @file
/// What a storage is made of.
#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "VelWhiteBoard/foundation/mutex.h"
#include "VelWhiteBoard/storage/damaged_files.h"
#include "VelWhiteBoard/storage/page_cache.h"
#include "VelWhiteBoard/storage/page_save.h"
#include "VelWhiteBoard/storage/snap_update.h"
#include "VelWhiteBoard/storage/vector_storage.h"
#include "VelWhiteBoard/storage/visited_pages.h"

namespace VelWhiteBoard {

/// The fields of a storage.
///
/// Two locks. `semphore` is the one that the interface promises: held by the operations that change
/// the board, over as much of their work as they say, files being read included. `guard` lies
/// beneath it and makes each look at the fields atomic; it is never held while anything is waited
/// for, neither a file nor another lock but those of a save, and no caller ever sees it. Order:
/// `semphore`, then `guard`.
///
/// A semaphore that nobody outside was ever given cannot be held by anybody outside. As long as
/// that is so, an operation that needs no file holds just `guard`: signalling a semaphore is a
/// system call, several hundred nanoseconds, and a pen comes by here with every piece.
struct VWBVectorStorage::State {
  // Constant or synchronised by themselves.
  const std::shared_ptr<PageFilePath> pageFile = std::make_shared<PageFilePath>();
  const std::shared_ptr<DamagedFiles> damaged = std::make_shared<DamagedFiles>();

  std::atomic<bool> ignoreChanges = true;

  mutable Mutex guard;
  SwitchPagePtr currentPage VELWHITEBOARD_GUARDED_BY(guard);
  /// The key of `currentPage`, empty without one: where vectors are filed now.
  std::string currentKey VELWHITEBOARD_GUARDED_BY(guard);
  bool hasNewChange VELWHITEBOARD_GUARDED_BY(guard) = false;
  std::string folder VELWHITEBOARD_GUARDED_BY(guard);
  std::optional<std::string> wholeFile VELWHITEBOARD_GUARDED_BY(guard);
  std::optional<std::string> snapFile VELWHITEBOARD_GUARDED_BY(guard);
  VisitedPages visited VELWHITEBOARD_GUARDED_BY(guard);
  PageCache cache VELWHITEBOARD_GUARDED_BY(guard);
  SnapQuery snapQuery VELWHITEBOARD_GUARDED_BY(guard);
  std::vector<std::string> pageCacheList VELWHITEBOARD_GUARDED_BY(guard);
  std::chrono::system_clock::time_point lastSaveDate VELWHITEBOARD_GUARDED_BY(guard);
  std::shared_ptr<OperationQueue> saveQueue VELWHITEBOARD_GUARDED_BY(guard);
  std::shared_ptr<Semaphore> semphore VELWHITEBOARD_GUARDED_BY(guard) =
      std::make_shared<Semaphore>(1);
  PendingSaves pendingSaves VELWHITEBOARD_GUARDED_BY(guard);
  std::shared_ptr<VisitedPagesSave> lastVisitedPagesSave VELWHITEBOARD_GUARDED_BY(guard);

  /// Whether the semaphore was ever handed out.
  bool isSemphoreShared VELWHITEBOARD_GUARDED_BY(guard) = false;
  /// How many operations hold the semaphore but not the guard, because they read files.
  int longOperations VELWHITEBOARD_GUARDED_BY(guard) = 0;

  class ShortOperation;
  class LongOperation;

  /// Whether a timed save is due at `now`: more than 20 seconds after the last one.
  bool isSaveDue(std::chrono::system_clock::time_point now) const VELWHITEBOARD_REQUIRES(guard);

  /// Queues the writing of a page's lists as they are now.
  void queuePageSave(const std::string& key, std::optional<std::string> wholePath,
                     std::optional<std::string> snapPath, SaveOrder order)
      VELWHITEBOARD_REQUIRES(guard);

  /// Queues the writing of the visited pages as they are now.
  void queueVisitedPagesSave() VELWHITEBOARD_REQUIRES(guard);

  /// What the files of a page hold; absent for a list that is cached.
  CachedPage readLists(const std::string& key) const VELWHITEBOARD_EXCLUDES(guard);

  /// Caches what was read of a page. Lists that somebody else has brought in meanwhile are kept:
  /// they may hold more than the files. Afterwards the page has both lists, whatever happened.
  CachedPage& cacheLists(const std::string& key, CachedPage read) VELWHITEBOARD_REQUIRES(guard);

  /// Whether the page has stored vectors.
  bool hasVectors(const std::string& key) const VELWHITEBOARD_EXCLUDES(guard);
};

/// Holds the semaphore and the guard, for an operation that waits for nothing in between.
class VELWHITEBOARD_THREAD_ANNOTATION(scoped_lockable) VWBVectorStorage::State::ShortOperation {
 public:
  explicit ShortOperation(State& state)
      VELWHITEBOARD_THREAD_ANNOTATION(acquire_capability(state.guard));
  ~ShortOperation() VELWHITEBOARD_THREAD_ANNOTATION(release_capability());
  ShortOperation(const ShortOperation&) = delete;
  ShortOperation& operator=(const ShortOperation&) = delete;

 private:
  State& state_;
  std::shared_ptr<Semaphore> held_;
};

/// Holds the semaphore, for an operation that reads files in between and looks at the fields now
/// and then.
class VWBVectorStorage::State::LongOperation {
 public:
  explicit LongOperation(State& state);
  ~LongOperation();
  LongOperation(const LongOperation&) = delete;
  LongOperation& operator=(const LongOperation&) = delete;

 private:
  State& state_;
  std::shared_ptr<Semaphore> held_;
};

}  // namespace VelWhiteBoard
