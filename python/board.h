// A storage that shares no record with its callers.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace bindings {

using PagePtr = std::shared_ptr<VelWhiteBoard::VelWbVecSwitchPage>;

/// A storage that keeps copies of what it is given and answers copies of what it has. So Python
/// never holds a record that another thread may change, and needs no lock to look at one.
///
/// Knows nothing of Python. Every operation may wait for a disk or for another thread, and is to be
/// called without the interpreter's lock. An operation in a process that was forked from one that
/// has opened a board throws std::runtime_error: the queues do not work there. Any thread.
class Board {
 public:
  /// Opens or creates the board below `path`.
  static std::shared_ptr<Board> open(const std::string& path);
  /// The same, but null when there is no board.
  static std::shared_ptr<Board> openExisting(const std::string& path);

  /// The pages that were visited, each once, in the order of the first visit, and behind them those
  /// that only have files, in the order of the files' names.
  std::vector<PagePtr> pages() const;
  /// Every recorded switch, oldest first.
  std::vector<PagePtr> visitedPages() const;
  /// Null before the first switch.
  PagePtr currentPage() const;

  /// The entries of a page's snapshot.
  VelWhiteBoard::VectorList entries(const VelWhiteBoard::VelWbVecSwitchPage& page) const;
  /// A page's log: from memory when the page has been shown, else from its file.
  VelWhiteBoard::VectorList log(const VelWhiteBoard::VelWbVecSwitchPage& page) const;
  /// The current page's entry with an identifier, or null.
  VelWhiteBoard::VectorPtr entry(std::string_view ID) const;

  /// As the storage's operations of the same names; each keeps what it is given, so it must be a
  /// copy that nobody else has.
  VelWhiteBoard::VectorList switchPage(const PagePtr& page);
  void saveVector(const VelWhiteBoard::VectorPtr& vector);
  void saveVectors(const VelWhiteBoard::VectorList& vectors, const PagePtr& page);
  void appendVectors(const VelWhiteBoard::VectorList& vectors, const PagePtr& page);
  void clearPage(const VelWhiteBoard::VelWbVecSwitchPage& page);
  void clear();

  /// Switches to a page switch, saves any other vector on the current page.
  void receive(const VelWhiteBoard::VectorPtr& vector);

  /// Queues the writing of the current page and of what could not be written before.
  void save();
  /// Queues the writing of the current page when 20 seconds have passed since the last save.
  void saveWhenDue();
  /// Waits until everything that was queued is written.
  void waitUntilFinished();
  /// The files whose last write or removal has failed.
  std::vector<std::string> failedFiles() const;

  void setChangeObserver(VelWhiteBoard::ChangeObserver observer);
  void setWriteObserver(VelWhiteBoard::WriteObserver observer);

  /// For what neither keeps nor answers records.
  VelWhiteBoard::VWBVectorStorage& storage() const;

 private:
  struct Failures;

  explicit Board(const std::string& path);

  VelWhiteBoard::VectorList copiesOf(const VelWhiteBoard::VectorList& entries) const;

  std::string path_;
  std::shared_ptr<VelWhiteBoard::VWBVectorStorage> storage_;
  std::shared_ptr<Failures> failures_;
};

}  // namespace bindings
