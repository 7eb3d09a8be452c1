/// @file
/// What one save of one page writes.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "VelWhiteBoard/foundation/mutex.h"
#include "VelWhiteBoard/foundation/property_list_writer.h"
#include "VelWhiteBoard/storage/damaged_files.h"
#include "VelWhiteBoard/storage/page_list.h"
#include "VelWhiteBoard/storage/page_log.h"

namespace VelWhiteBoard {

/// Which of a page's two files is written first.
enum class SaveOrder { wholeFirst, snapFirst };

/// A page at the instant when its save was queued.
///
/// Nothing is copied then but the lists, which share their entries with the storage's. In return
/// the storage announces every vector that it is about to change while a save is under way, and the
/// save copies that one first; the files get the state of the instant, to the last position. Copies
/// are cheap: paths share their positions.
///
/// Threads: made and announced to by the storage, written by the queue; both at any time.
class PageSave {
 public:
  PageSave(PageLog whole, std::optional<std::string> wholePath, PageList snap,
           std::optional<std::string> snapPath, SaveOrder order,
           std::shared_ptr<DamagedFiles> damaged);

  /// Called before `vector` changes. Keeps it as it is, unless the save is over or has it already.
  void aboutToChange(const VectorPtr& vector);

  /// A newer save of the same files has been queued: unless the writing has begun, nothing will be
  /// written, and what the save holds is let go.
  void supersede();

  /// Lets `newer`, which is not queued, be written in this one's place and turn. False when it must
  /// be queued itself: the writing has begun, or something else was queued that it must follow.
  bool replaceBy(PageSave& newer);
  /// Something has been queued that later saves must follow.
  void close();

  /// Writes the two files, those that have a path; failures leave the old file. To be called once.
  void write();

  /// Whether there is nothing left to write, so that changes need not be announced.
  bool isOver() const;
  /// Whether the writing has not begun.
  bool isWaiting() const;

  /// Whether this save and `other` write the same files.
  bool writesSameFilesAs(const PageSave& other) const;
  /// Whether this save writes one of the two files.
  bool writesAny(const std::optional<std::string>& wholePath,
                 const std::optional<std::string>& snapPath) const;
  /// Whether some file is written by both.
  bool sharesAFileWith(const PageSave& other) const {
    return writesAny(other.wholePath_, other.snapPath_);
  }

 private:
  enum class Phase { waiting, writing, over };

  /// A vector that has changed since, and how it was. The vector is held so that no other one gets
  /// its address, under which the copy is found.
  struct Kept {
    VectorPtr vector;
    std::shared_ptr<const Record> copy;
  };

  void writeWhole();
  void writeSnap();
  bool addAll(const PageList& list, PropertyListWriter& writer);
  using KeptVectors = std::unordered_map<const Record*, Kept>;
  /// What a save holds. To let go of the last reference to many vectors takes its time, so that is
  /// done outside the lock.
  struct Contents {
    PageLog whole;
    PageList snap;
    KeptVectors kept;
  };

  /// Ends the save and takes out of it what it holds.
  Contents finish() VELWHITEBOARD_REQUIRES(mutex_);

  const std::optional<std::string> wholePath_;
  const std::optional<std::string> snapPath_;
  const std::shared_ptr<DamagedFiles> damaged_;

  mutable Mutex mutex_;
  Phase phase_ VELWHITEBOARD_GUARDED_BY(mutex_) = Phase::waiting;
  bool isClosed_ VELWHITEBOARD_GUARDED_BY(mutex_) = false;
  // Once `phase_` is `writing`, only the writing thread touches these, without the lock.
  SaveOrder order_;
  PageLog whole_;
  PageList snap_;
  KeptVectors kept_ VELWHITEBOARD_GUARDED_BY(mutex_);
};

/// The saves of a storage that are queued or being written.
///
/// Threads: as the storage guards it.
class PendingSaves {
 public:
  /// Announces that a vector is about to change.
  void aboutToChange(const VectorPtr& vector);
  /// Takes a new save in. When many of the same files wait, because the disk hangs, it takes the
  /// place of the newest of them, or the oldest is superseded: the files will end the same, and
  /// what waits takes no more memory than a few saves do.
  ///
  /// @return whether the save is to be queued; false when one that is queued already will write it.
  bool add(const std::shared_ptr<PageSave>& save);
  /// Later saves go to another queue: they must not take the place of those that wait now.
  void close();
  /// A removal of these two files is queued: it stands between the saves of one of them that wait
  /// now and those that come.
  void closeThoseOf(const std::string& wholePath, const std::string& snapPath);

 private:
  std::vector<std::shared_ptr<PageSave>> saves_;
};

}  // namespace VelWhiteBoard
