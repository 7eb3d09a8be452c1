/// @file
/// A page's whole list.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "VelWhiteBoard/foundation/file_system.h"
#include "VelWhiteBoard/foundation/mutex.h"
#include "VelWhiteBoard/storage/damaged_files.h"
#include "VelWhiteBoard/storage/page_list.h"

namespace VelWhiteBoard {

/// The part of a log that is still in its file, which has been opened but not been read.
///
/// A log is long and a page is drawn without it, so nobody should wait for it. Opening it is enough
/// to have it: what the file holds at that instant is what will be read, whatever becomes of the
/// file.
///
/// Threads: any.
class UnreadLog {
 public:
  /// @param path the file's, to be noted in `damaged` when it turns out to be unreadable.
  UnreadLog(std::unique_ptr<OpenedFile> file, std::string path,
            std::shared_ptr<DamagedFiles> damaged);
  ~UnreadLog();
  UnreadLog(const UnreadLog&) = delete;
  UnreadLog& operator=(const UnreadLog&) = delete;

  /// Whether another file may be kept open; each costs the process one of its handles.
  static bool mayKeepAnother();

  /// The vectors of the file; reads them the first time. A damaged file holds none.
  PageList list();

 private:
  const std::string path_;
  const std::shared_ptr<DamagedFiles> damaged_;
  Mutex mutex_;
  std::unique_ptr<OpenedFile> file_ VELWHITEBOARD_GUARDED_BY(mutex_);
  PageList list_ VELWHITEBOARD_GUARDED_BY(mutex_);
};

/// A page's whole list: what the file held, read or not, and what came since. A copy costs next to
/// nothing, like that of a PageList.
///
/// Threads: none of its own; distinct logs, copies included, may be used from distinct threads.
class PageLog {
 public:
  PageLog() = default;
  explicit PageLog(const VectorList& vectors) : since_(vectors) {}
  /// The log in a page's file; empty when there is none. Waits for the disk only to open the file.
  static PageLog open(const std::string& path, const std::shared_ptr<DamagedFiles>& damaged);

  void push_back(const VectorPtr& vector) { since_.push_back(vector); }

  /// The vectors of the file; may read them.
  PageList before() const { return unread_ ? unread_->list() : PageList(); }
  /// The vectors that came since.
  const PageList& since() const { return since_; }

  /// All vectors; may read the file.
  VectorList vectors() const;

 private:
  std::shared_ptr<UnreadLog> unread_;
  PageList since_;
};

}  // namespace VelWhiteBoard
