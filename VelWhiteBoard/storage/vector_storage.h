/// @file
/// The vectors of one board, by page, in memory and on disk.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "VelWhiteBoard/foundation/export.h"
#include "VelWhiteBoard/foundation/queue/operation_queue.h"
#include "VelWhiteBoard/foundation/queue/semaphore.h"
#include "VelWhiteBoard/storage/files/write_report.h"
#include "VelWhiteBoard/storage/lists/change_report.h"
#include "VelWhiteBoard/vectors/base_vector.h"
#include "VelWhiteBoard/vectors/commands.h"

namespace VelWhiteBoard {

/// Keeps every vector of one board, page by page, and the board's files.
///
/// For each page there are two lists. The whole list is the page's log: every accepted vector in
/// the order of arrival. The snap list is the page's present state: pieces of a stroke folded into
/// one entry, removed vectors taken out, emptied by a clear. Lists and vectors are named by the
/// page key, `pageInfo()`; what arrives before the first page switch is kept under the empty key
/// and never written.
///
/// Order of calls: `initWithPath`, `setIgnoreChanges(false)`, `switchPage`, then `saveVector` for
/// each vector. There is no shutdown: writes that are queued when the storage goes run to their
/// end.
///
/// Ownership: the very vectors that are saved are kept, and later vectors change them. A stroke's
/// first piece is its entry in the snap list *and* in the whole list, so it keeps growing in both.
/// Callers do not edit vectors that they have saved, and do not save them in a second storage.
///
/// Threads: every operation may be called from any thread, except that `reload` and `clear` are not
/// to be called while another thread uses the storage's lists. `semphore` (count 1, not re-entrant)
/// serialises the operations that change the board, as each one says; a thread that holds it may
/// call every property accessor and every operation that says "takes no lock", which means: does
/// not wait on `semphore`. Each access to the storage's own fields is atomic all the same, through
/// an accessor too. Saving changes entries that are on a page already, so a thread that reads
/// entries while others save must hold `semphore` meanwhile.
///
/// Files are written by `saveQueue`, never by the caller, in the order in which the writes were
/// queued. What an operation queues is the page, with all its vectors, as it is at that instant,
/// however late it is written. Of more than sixteen waiting writes of the same files the oldest are
/// dropped. Before a file is read, the writes and removals of it that are queued in this process
/// are waited for. When a client's operation holds up their queue for a quarter of a second, or a
/// disk for thirty seconds, the wait ends and the file is read as it is.
///
/// Failures are silent: a file that cannot be read is an empty list, a write that fails leaves the
/// file that was there. Nothing that could not be read is lost: before such a file is replaced, it
/// is moved aside as `NAME.damaged`, or `NAME.damaged-2` and so on. A write that is under way has
/// its contents in `NAME.tmp`, which a crash may leave and the next opening removes. An operation
/// that throws `std::bad_alloc` has changed nothing, with three exceptions: `appendVectors` and
/// `clear` say what they leave, and `switchPage` may have queued the writing of the page that stays
/// current. A null vector or page is ignored.
///
/// Not meant to be derived from.
/// @ingroup storage
class VELWHITEBOARD_EXPORT VWBVectorStorage {
 public:
  /// Shared reference to a page.
  using SwitchPagePtr = std::shared_ptr<VelWbVecSwitchPage>;
  /// Lists by page key.
  using ListsByPage = std::unordered_map<std::string, VectorList>;

  /// Opens, or creates, the board in the folder "whiteBoard" below `path`. The new storage ignores
  /// changes, has no current page, and knows the visited pages from the board's "page.plist".
  static std::shared_ptr<VWBVectorStorage> initWithPath(const std::string& path);
  ~VWBVectorStorage();  ///< Saves nothing; writes that are queued run to their end.
  VWBVectorStorage(const VWBVectorStorage&) = delete;
  VWBVectorStorage& operator=(const VWBVectorStorage&) = delete;

  /// @name Files
  /// @{

  /// Builds the state in memory anew from the folder, which is created when missing: no cached
  /// lists, the visited pages from "page.plist", no new change, the last save now. `currentPage`,
  /// the files of the current page, `snapQuery` and `ignoreChanges` stay.
  ///
  /// The lists of the current page are gone too: what is saved next begins new ones, and the next
  /// save replaces the page's files by them. To go on with the page instead, switch to another page
  /// and back. Takes no lock; not for use beside other operations.
  void reload();

  /// Queues the writing of the current page's two files when something has changed since the page
  /// became current: at once when `force` is true, otherwise only when more than 20 seconds have
  /// passed since `lastSaveDate`. When the wall clock is set back, the 20 seconds are measured by a
  /// clock that is never set. `hasNewChange` stays, `lastSaveDate` becomes now. Waits on
  /// `semphore`.
  void saveFile(bool force);

  /// @}
  /// @name Vectors
  /// @{

  /// Files a vector under the current page, and asks for a timed save: `saveFile(false)`. A vector
  /// without an identifier is given one. A line that becomes a new entry and has no `path` is given
  /// one that holds its own position. A vector that continues a stroke or edits a box changes that
  /// entry; only the log keeps the vector itself. Does nothing while changes are ignored. Waits on
  /// `semphore`; costs the same however long the stroke and the log are.
  void saveVector(const VectorPtr& vector);

  /// Queues the writing of every page whose last write has failed and that is still in memory, and
  /// of the list of visited pages. The storage retries nothing by itself. Waits on `semphore`.
  ///
  /// @return whether there was any.
  bool retryFailedSaves();

  /// Whether the vector's type is one that never stays on a page: "cursor", "camera", "magnifier",
  /// "clear" or "remove". Takes no lock.
  bool ignoreVector(const VelWbBaseVector& vector) const;

  /// Files vectors under any page and queues the writing of that page's files at once. For the
  /// current page (same `curPage` and `WBID`) it is `saveVector` for each. Otherwise it is simpler
  /// on purpose: boxes are appended instead of merged, no identifiers are given, `snapQuery` and
  /// `hasNewChange` stay, and it works while changes are ignored. Each vector goes to the page that
  /// is named, also when another thread switches pages meanwhile.
  ///
  /// When it throws `std::bad_alloc`, another page is as it was; on the current page the vectors
  /// before the one that failed have been saved.
  ///
  /// When the page is not current, those of its lists that are not cached are read from its files
  /// first. Only then is `semphore` waited for. It is held for some 0.1 milliseconds at a time, so
  /// other threads may see a part of a long batch.
  void appendVectors(const VectorList& vectors, const SwitchPagePtr& toPage);

  /// Whether the page has stored vectors: its lists are cached, even empty ones, or its key is in
  /// `pageCacheList`, or its whole file exists. Takes no lock.
  bool hasVectorsWithPage(const VelWbVecSwitchPage& page) const;

  /// The page that was recorded last; null when none was. Takes no lock.
  SwitchPagePtr latestPage() const;

  /// Files vectors under any page as `saveVector` does under the current one, without switching,
  /// and queues the writing of that page's files at once. The page ends as if it had been made
  /// current, each vector been saved, and the former page been made current again; so a participant
  /// who is on another page gets the same picture as those who are on this one. `snapQuery`,
  /// `hasNewChange` and the visited pages stay. Does nothing while changes are ignored. For the
  /// current page, and in everything else, it is like `appendVectors`.
  void saveVectors(const VectorList& vectors, const SwitchPagePtr& toPage);

  /// The current page's entry with an identifier, as `snapQuery` has it; null when there is none.
  /// Takes no lock.
  VectorPtr entryWithID(std::string_view ID) const;

  /// @}
  /// @name Observers
  /// A new observer takes the place of the one before; an empty function takes it away. A call that
  /// is under way on another thread may still tell the one before. Take no lock.
  /// @{

  /// Tells what to draw anew after `saveVector`, `saveVectors`, `appendVectors`, `switchPage`,
  /// `clearPage`, `clear` and `reload`. What a setter of a property changes is not reported.
  /// Without an observer, which is how a storage begins, it costs nothing.
  void setChangeObserver(ChangeObserver observer);

  /// Tells what became of each file that was written or removed by the save queue.
  void setWriteObserver(WriteObserver observer);

  /// @}
  /// @name Pages
  /// @{

  /// Makes a page current: the page that is left is saved with everything that was accepted up to
  /// then, the lists of the new one come from the cache or from its files, and the switch is
  /// recorded in "page.plist" unless changes are ignored. A switch with the same millisecond in
  /// `ts` as the one before replaces it there; a record whose `type` is not "switchPage" does not
  /// come back from the file. Waits on `semphore`.
  ///
  /// Both files are read to the end and closed before anything changes. Whatever happens to them
  /// afterwards, the lists are whole.
  ///
  /// @return the page's snap list, to be drawn; empty when the page (same `WBID`, `resource` and
  ///   `curPage`) is current already, in which case only the save takes place.
  VectorList switchPage(const SwitchPagePtr& page);

  /// The snap list of any page, from the cache or from its file; a list from a file is not cached.
  /// The entries of a cached list are the storage's own: hold `semphore` while reading them beside
  /// other threads that save. Takes no lock.
  VectorList snapWithPage(const VelWbVecSwitchPage& page) const;

  /// Deletes the board's folder, on the caller's thread, and starts afresh. When it throws
  /// `std::bad_alloc`, the board is empty, and its folder may be missing until the next `reload`.
  /// `currentPage` stays. A write that was queued earlier may still bring its file back. Waits on
  /// `semphore`.
  void clear();

  /// Forgets one page and queues the deletion of its two files; a page is the same here when `WBID`
  /// and `curPage` are. When it is the current page, `snapQuery` is emptied and `hasNewChange` is
  /// cleared. The visited pages stay. Waits on `semphore`.
  void clearPage(const VelWbVecSwitchPage& page);

  /// @}
  /// @name Properties
  /// Accessors take no lock. Containers are answered as a copy of one instant and set as a whole;
  /// the records in them are shared. Setters drop null vectors and pages. Setting a null queue or
  /// semaphore is ignored.
  /// @{

  /// A copy of the record that was switched to; null before the first switch. Not to be edited:
  /// what is saved goes to the page that the record names.
  SwitchPagePtr currentPage() const;

  /// While true, vectors are dropped and page switches are not recorded; true at first.
  bool ignoreChanges() const;
  /// Whether what is saved from here on is dropped.
  void setIgnoreChanges(bool ignore);

  /// Whether a vector was accepted on the current page. Only then does `saveFile` queue a write,
  /// which leaves this true. Cleared by a page switch, `reload`, `clear`, and `clearPage` of the
  /// current page.
  bool hasNewChange() const;
  /// Decides whether `saveFile` queues a write.
  void setHasNewChange(bool changed);

  /// The board's folder.
  std::string folder() const;
  /// From here on a page's files are looked for there when it is read or made current. Nothing is
  /// moved; `pageFile`, `wholeFile` and `snapFile` stay.
  void setFolder(const std::string& path);

  /// The file of the visited pages.
  std::string pageFile() const;
  /// Writes of the visited pages go there, queued ones too; nothing is read or moved.
  void setPageFile(const std::string& path);

  /// The file of the current page's whole list; none before the first switch.
  std::optional<std::string> wholeFile() const;
  /// Up to the next switch the whole list is saved there; with an absent path it is not saved.
  void setWholeFile(const std::optional<std::string>& path);

  /// The file of the current page's snap list; none before the first switch.
  std::optional<std::string> snapFile() const;
  /// Up to the next switch the snap list is saved there; with an absent path it is not saved.
  void setSnapFile(const std::optional<std::string>& path);

  /// The pages visited, oldest first. What "page.plist" holds of each is the record as it was when
  /// a switch was recorded last.
  std::vector<SwitchPagePtr> pageArray() const;
  /// Replaces the list in memory; the next switch that is recorded writes it.
  void setPageArray(const std::vector<SwitchPagePtr>& pages);

  /// The cached whole lists.
  ListsByPage wholeVectorss() const;
  /// Replaces all of them: a page that is missing has no whole list in memory any more.
  void setWholeVectorss(const ListsByPage& lists);

  /// The cached snap lists.
  ListsByPage snapVectorss() const;
  /// Replaces all of them: a page that is missing has no snap list in memory any more.
  void setSnapVectorss(const ListsByPage& lists);

  /// The entries of the current page's snap list, by identifier.
  std::unordered_map<std::string, VectorPtr> snapQuery() const;
  /// Replaces what entries are found by; the snap list itself stays.
  void setSnapQuery(const std::unordered_map<std::string, VectorPtr>& query);

  /// Keys of pages that `hasVectorsWithPage` takes to have files. The library never adds one;
  /// `clearPage` and `reload` take them out.
  std::vector<std::string> pageCacheList() const;
  /// Stores any texts and reads no file.
  void setPageCacheList(const std::vector<std::string>& keys);

  /// When a save of the current page was last queued, timed or forced. `reload` and `clear` make it
  /// now.
  std::chrono::system_clock::time_point lastSaveDate() const;
  /// The 20 seconds of timed saves count from `date`.
  void setLastSaveDate(std::chrono::system_clock::time_point date);

  /// Runs every write and deletion of files, one at a time.
  std::shared_ptr<OperationQueue> saveQueue() const;
  /// Writes are queued there from here on; those of the old queue stay in it.
  void setSaveQueue(std::shared_ptr<OperationQueue> queue);

  /// The lock of the operations that change the board.
  std::shared_ptr<Semaphore> semphore() const;
  /// Later operations use the new one; whoever holds or awaits the old one keeps it.
  void setSemphore(std::shared_ptr<Semaphore> semaphore);

  /// @}

 private:
  struct VELWHITEBOARD_NO_EXPORT State;

  VWBVectorStorage();

  std::unique_ptr<State> state_;
};

}  // namespace VelWhiteBoard
