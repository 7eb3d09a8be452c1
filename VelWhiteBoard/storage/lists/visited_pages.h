/// @file
/// The pages that a board's users went through.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "VelWhiteBoard/storage/lists/shared_vector_list.h"
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

  /// A switch that is ready to be recorded.
  struct Next {
    Page page;
    /// Whether it replaces the last recorded one: both are of the same millisecond.
    bool replaces = false;
    /// What the file is to hold then.
    SharedVectorList forFile;
  };

  VisitedPages() = default;
  explicit VisitedPages(const std::vector<Page>& pages);

  const std::vector<Page>& pages() const { return pages_; }

  /// Makes a switch ready. Looks at every record: a client may have edited its own since.
  Next prepare(const Page& page);
  /// Records it; nothing else may have been changed in between.
  void record(Next next) noexcept;

  /// What the file is to hold, at this instant.
  SharedVectorList forFile();

 private:
  std::vector<Page> pages_;
  SharedVectorList recorded_;
};

}  // namespace VelWhiteBoard
