/// @file
/// The pages that a board's users went through.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "VelWhiteBoard/foundation/mutex.h"
#include "VelWhiteBoard/storage/damaged_files.h"
#include "VelWhiteBoard/storage/page_list.h"
#include "VelWhiteBoard/vectors/commands.h"

namespace VelWhiteBoard {

/// The recorded page switches, oldest first. Beside each record of the client stands a copy of it
/// as it was when a switch was recorded last: that is what the file gets, so that a client's later
/// edits of its own records are no race with the queue.
///
/// Threads: as the storage guards it.
class VisitedPages {
 public:
  using Page = std::shared_ptr<VelWbVecSwitchPage>;

  VisitedPages() = default;
  explicit VisitedPages(const std::vector<Page>& pages);

  const std::vector<Page>& pages() const { return pages_; }

  /// Records a switch. One in the same millisecond as the last recorded one replaces it.
  void record(const Page& page);

  /// What the file is to hold, at this instant. Looks at every record: a client may have edited its
  /// own since.
  PageList forFile();

 private:
  void add(const Page& page);

  std::vector<Page> pages_;
  PageList recorded_;
};

/// Where "page.plist" is, asked for by a write only when it runs.
class PageFilePath {
 public:
  std::string get() const {
    const MutexHold hold(mutex_);
    return path_;
  }
  void set(std::string path) {
    const MutexHold hold(mutex_);
    path_ = std::move(path);
  }

 private:
  mutable Mutex mutex_;
  std::string path_ VELWHITEBOARD_GUARDED_BY(mutex_);
};

/// One queued write of the visited pages.
class VisitedPagesSave {
 public:
  VisitedPagesSave(PageList pages, std::shared_ptr<const PageFilePath> path,
                   std::shared_ptr<DamagedFiles> damaged);

  /// A newer write has been queued: unless this one has begun, it need not be done.
  void supersede();
  /// Lets newer pages be written in this one's turn. False when they must be queued: the writing
  /// has begun, or the queue is another one by now.
  bool replaceBy(PageList pages);
  /// Later writes go to another queue.
  void close();
  /// Writes the file, once.
  void write();

 private:
  const std::shared_ptr<const PageFilePath> path_;
  const std::shared_ptr<DamagedFiles> damaged_;
  Mutex mutex_;
  PageList pages_ VELWHITEBOARD_GUARDED_BY(mutex_);
  bool isOver_ VELWHITEBOARD_GUARDED_BY(mutex_) = false;
  bool isClosed_ VELWHITEBOARD_GUARDED_BY(mutex_) = false;
};

}  // namespace VelWhiteBoard
