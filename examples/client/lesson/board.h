// A board with all of its pages, as a window shows it.
#pragma once

#include <QObject>
#include <QTimer>
#include <VelWhiteBoard/VelWhiteBoard.h>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "lesson/own_ink.h"
#include "lesson/save_state.h"

namespace whiteboard {

/// The board and the page that is shown, with own ink on top. Everything that changes the board
/// goes through this object, on the thread of the windows.
class Board : public QObject {
  Q_OBJECT

 public:
  using Page = std::shared_ptr<VelWhiteBoard::VelWbVecSwitchPage>;
  /// The board and the number of a page, in the order in which pages are shown.
  using PageNumber = std::pair<std::int64_t, std::uint64_t>;

  /// Opens the board in a folder, and the page that was shown there last; `first` when there is
  /// none.
  explicit Board(const std::string& folder, const PageNumber& first = {1, 1});
  /// Queues what is not written yet. The writes run to their end.
  ~Board() override;

  const VelWhiteBoard::VWBVectorStorage& storage() const { return *storage_; }
  /// The page that is shown; never null.
  Page page() const { return page_; }
  std::string pageKey() const { return page_->pageInfo(); }
  PageNumber number() const { return {page_->WBID, page_->curPage}; }
  const std::set<PageNumber>& pages() const { return pages_; }
  /// The entries of a page, lowest first.
  VelWhiteBoard::VectorList entries(const PageNumber& page);
  /// The same with own ink, as the page is shown.
  VelWhiteBoard::VectorList shownEntries(const PageNumber& page);
  /// The entry of the page that is shown, with own ink; null when there is none.
  VelWhiteBoard::VectorPtr shownEntry(const std::string& ID) const;

  /// Files what the lesson has, for the page for which it was made. What is for another page than
  /// the one that is shown is collected for a second.
  void file(const std::string& page, const VelWhiteBoard::VectorPtr& vector);
  /// Shows a page.
  void turnTo(const Page& page);
  /// Lists a page of which nothing may be stored yet.
  void addPage(const PageNumber& page);
  /// Forgets the pages that are listed.
  void clear();
  /// Forgets everything, to be made anew from elsewhere. What was in the folder is kept beside it,
  /// in "whiteBoard.before", until the next time. Waits for writes that are queued.
  void beginAnew();

  const OwnInk& ink() const { return ink_; }
  /// Shows an own change at once, on the page that is shown or on any.
  void showInk(const VelWhiteBoard::VelWbBaseVector& change) { showInk(pageKey(), change); }
  void showInk(const std::string& page, const VelWhiteBoard::VelWbBaseVector& change);
  void inkSent(const VelWhiteBoard::VelWbBaseVector& change) { ink_.sent(change); }
  /// An own change has come back, or is not taken by the lesson.
  void inkReceived(const VelWhiteBoard::VelWbBaseVector& vector);
  void forgetInk(const std::string& ID);
  void restoreInk(const std::string& ID, const std::optional<OwnInk::Ink>& before);
  void holdInk(const std::string& ID) { ink_.hold(ID); }

  SaveState::Summary saveState() const { return saves_->summary(); }
  /// Whether something is not in the files yet, or could not be written.
  bool isUnsaved() const;
  /// Begins to write everything that is not written.
  void save();

 signals:
  /// What the board reports, on the thread of the windows.
  void changed(const VelWhiteBoard::ChangeReport& report);
  /// The own ink with this identifier has changed from position `firstNew` on, or is gone.
  void inkChanged(const std::string& ID, std::size_t firstNew);
  /// Own ink hides all entries of a page from now on, or no longer.
  void inkOfPageChanged();
  /// Another page is about to be shown; what is being done on this one ends now.
  void aboutToTurn();
  /// Pages have come or gone, or another one is shown.
  void pagesChanged();

 private:
  void flush();
  void tell(const OwnInk::Change& change);
  VelWhiteBoard::VectorPtr entryOn(const std::string& page, const std::string& ID);
  /// Lists pages on which there is nothing but own ink.
  void addPagesOfInk();

  std::shared_ptr<VelWhiteBoard::VWBVectorStorage> storage_;
  std::shared_ptr<SaveState> saves_;
  Page page_;
  std::set<PageNumber> pages_;
  OwnInk ink_;
  std::map<std::string, VelWhiteBoard::VectorList> forOtherPages_;
  bool isUnsaved_ = false;
  /// The number of reports of writes with which the last save is in the files.
  std::uint64_t writtenAfter_ = 0;
  QTimer saveTimer_;
  QTimer flushTimer_;
};

/// A page switch from the library's factory, which gives it `type`, `ts` and `ID`.
Board::Page pageSwitchTo(const Board::PageNumber& number);

}  // namespace whiteboard
