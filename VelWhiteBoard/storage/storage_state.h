/// @file
/// What a storage is made of.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "VelWhiteBoard/foundation/queue/mutex.h"
#include "VelWhiteBoard/storage/files/protected_file.h"
#include "VelWhiteBoard/storage/files/timed_saves.h"
#include "VelWhiteBoard/storage/files/write_backlog.h"
#include "VelWhiteBoard/storage/lists/history.h"
#include "VelWhiteBoard/storage/lists/snap_query.h"
#include "VelWhiteBoard/storage/lists/visited_pages.h"
#include "VelWhiteBoard/storage/page_cache.h"
#include "VelWhiteBoard/storage/vector_storage.h"

namespace VelWhiteBoard {

/// By which rule a batch brings its vectors into a page that is not current.
enum class BatchRule { kAppending, kSaving };

/// Which of a page's two files is written first.
enum class SaveOrder { kWholeFirst, kSnapFirst };

/// What was read of a page; a list that was cached has not been read.
struct ReadPage {
  std::optional<WholeList> whole;
  std::unique_ptr<SnapList> snap;
};

/// The fields of a storage.
///
/// Two locks. `semphore` is the one that the interface promises: the operations that change the
/// board hold it over as much of their work as they say, reading files included. `guard` lies
/// beneath it and makes each look at the fields atomic; it is never held while a file is read or
/// written, or while another lock than those of the storage's parts is waited for. Order:
/// `semphore`, `guard`.
///
/// Until `semphore()` or `setSemphore()` is called no client can hold the semaphore, so an
/// operation that reads no file holds just `guard`: signalling a semaphore is a system call,
/// several hundred nanoseconds, and a pen comes by here with every piece.
///
/// Failure: every operation first prepares all that may throw, and then changes the fields in steps
/// that cannot.
struct VWBVectorStorage::State {
  // Constant or synchronised by themselves.
  const std::shared_ptr<History> history = std::make_shared<History>();
  ProtectedFiles files;
  const std::shared_ptr<FileSlot> pageFile = std::make_shared<FileSlot>(files.at(""));
  std::atomic<bool> ignoreChanges = true;

  mutable Mutex guard;
  SwitchPagePtr currentPage VELWHITEBOARD_GUARDED_BY(guard);
  bool hasNewChange VELWHITEBOARD_GUARDED_BY(guard) = false;
  /// Whether a vector was accepted on the current page after the last write of it was queued.
  bool hasUnqueuedChange VELWHITEBOARD_GUARDED_BY(guard) = false;
  std::string folder VELWHITEBOARD_GUARDED_BY(guard);
  std::optional<std::string> wholeFile VELWHITEBOARD_GUARDED_BY(guard);
  std::optional<std::string> snapFile VELWHITEBOARD_GUARDED_BY(guard);
  VisitedPages visited VELWHITEBOARD_GUARDED_BY(guard);
  PageCache cache VELWHITEBOARD_GUARDED_BY(guard);
  SnapQuery snapQuery VELWHITEBOARD_GUARDED_BY(guard);
  std::vector<std::string> pageCacheList VELWHITEBOARD_GUARDED_BY(guard);
  TimedSaves timedSaves VELWHITEBOARD_GUARDED_BY(guard);
  std::shared_ptr<OperationQueue> saveQueue VELWHITEBOARD_GUARDED_BY(guard);
  std::shared_ptr<Semaphore> semphore VELWHITEBOARD_GUARDED_BY(guard) =
      std::make_shared<Semaphore>(1);
  WriteBacklog backlog VELWHITEBOARD_GUARDED_BY(guard);

  /// Whether a client may hold the semaphore.
  bool isSemphoreShared VELWHITEBOARD_GUARDED_BY(guard) = false;
  /// How many operations hold the semaphore but not the guard, because they read files.
  int longOperations VELWHITEBOARD_GUARDED_BY(guard) = 0;
  /// Null without an observer. How many reports there have been.
  std::shared_ptr<const ChangeObserver> changeObserver VELWHITEBOARD_GUARDED_BY(guard);
  std::uint64_t reports VELWHITEBOARD_GUARDED_BY(guard) = 0;
  /// Pages to which a batch is being appended, and the end of each batch.
  std::set<std::string> busyPages VELWHITEBOARD_GUARDED_BY(guard);
  Condition batchEnded;
  /// How often pages have been cleared: what was read of one before is not to be cached after.
  std::atomic<std::uint64_t> clearings = 0;
  /// How many operations wait for the semaphore; a batch gives way to them.
  std::atomic<int> waitingForSemphore = 0;

  class ShortOperation;
  class LongOperation;
  class Batch;
  class Reporting;

  /// The key of the current page, empty without one: where vectors are filed now.
  const std::string& currentKey() VELWHITEBOARD_REQUIRES(guard);

  /// Makes the writing of a page's lists ready, as they are now. A path that is absent is skipped.
  WriteBacklog::Prepared preparePageWrite(const std::string& key,
                                          const std::optional<std::string>& wholePath,
                                          const std::optional<std::string>& snapPath,
                                          SaveOrder order) VELWHITEBOARD_REQUIRES(guard);
  /// The same to the files that a page was last written to.
  WriteBacklog::Prepared preparePageWrite(const std::string& key,
                                          std::shared_ptr<const FileSlot> whole,
                                          std::shared_ptr<const FileSlot> snap, SaveOrder order)
      VELWHITEBOARD_REQUIRES(guard);
  /// Makes the writing of a list of visited pages ready.
  WriteBacklog::Prepared prepareVisitedPagesWrite(SharedVectorList pages)
      VELWHITEBOARD_REQUIRES(guard);

  /// Waits for the queued writes and removals of those files of a page that will be read. Answers
  /// whether there are none left.
  bool waitForPageFiles(const std::string& key) VELWHITEBOARD_EXCLUDES(guard);
  /// Whether that would have to wait.
  bool arePageFilesPending(const std::string& key) VELWHITEBOARD_EXCLUDES(guard);
  /// What the files of a page hold; lists that are cached are not read. `isNewest` says whether no
  /// write or removal of them is queued any more: otherwise they do not count as read.
  ReadPage readLists(const std::string& key, bool isNewest) VELWHITEBOARD_EXCLUDES(guard);
  /// Caches what was read of a page. A list that was cached meanwhile stays: it may hold more than
  /// the file. Afterwards the page has both lists.
  CachedPage& cacheLists(const std::string& key, ReadPage& read) VELWHITEBOARD_REQUIRES(guard);

  /// Builds the state in memory anew from the folder, which has been removed or not.
  void reload(bool isRemoved) VELWHITEBOARD_EXCLUDES(guard);
  /// Lets other operations have their turn, for one that goes on and on.
  void giveWay() VELWHITEBOARD_EXCLUDES(guard);
  /// Waits until no batch is being appended to a page.
  void waitForBatch(const std::string& key) VELWHITEBOARD_EXCLUDES(guard);
  /// Makes a page current. The semaphore is held, and no batch is being appended to the page.
  VectorList switchTo(const SwitchPagePtr& page, const std::string& key, bool isNewest,
                      Reporting& reporting) VELWHITEBOARD_EXCLUDES(guard);
  void saveFile(bool force) VELWHITEBOARD_EXCLUDES(guard);
  /// Forgets a page and queues the removal of its files; hands out what it held.
  void clearPage(const VelWbVecSwitchPage& page, const std::string& key,
                 PageCache::Pages::node_type& cleared, SnapQuery& query, Reporting& reporting)
      VELWHITEBOARD_REQUIRES(guard);
  /// Whether the page has stored vectors.
  bool hasVectors(const std::string& key) const VELWHITEBOARD_EXCLUDES(guard);
  /// Saves a vector, if `page` (null: any) is the current one. Answers whether it is.
  bool saveOn(const VelWbVecSwitchPage* page, const VectorPtr& vector)
      VELWHITEBOARD_EXCLUDES(guard);
  /// Files vectors under a page, as they would be saved where it is current.
  void file(std::span<const VectorPtr> vectors, const VelWbVecSwitchPage& page, BatchRule rule)
      VELWHITEBOARD_EXCLUDES(guard);

 private:
  std::vector<std::string> namesToRead(const std::string& key) VELWHITEBOARD_EXCLUDES(guard);
  std::shared_ptr<const FileSlot> slotOf(const std::optional<std::string>& path,
                                         const std::shared_ptr<const FileSlot>& last)
      VELWHITEBOARD_REQUIRES(guard);

  struct {
    std::int64_t WBID = 0;
    std::uint64_t curPage = 0;
    std::string key;
  } keyOfCurrent_ VELWHITEBOARD_GUARDED_BY(guard);
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

/// Whether two page switches lead to the same lists: the resource is not compared.
inline bool isSamePage(const VelWbVecSwitchPage& page, const VelWbVecSwitchPage& other) {
  return page.curPage == other.curPage && page.WBID == other.WBID;
}

}  // namespace VelWhiteBoard
