// One participant in a lesson.
#pragma once

#include <QObject>
#include <QTimer>
#include <VelWhiteBoard/VelWhiteBoard.h>
#include <atomic>
#include <memory>
#include <string>

#include "lesson/board.h"
#include "lesson/bus.h"
#include "lesson/undo.h"

namespace whiteboard {

/// Connects a board with the other participants: own vectors go to the bus and are shown as ink;
/// what the bus hands out, own vectors included, is filed in its order. What the lesson does not
/// take is shown no longer.
///
/// Threads: that of the windows.
class Session : public QObject {
  Q_OBJECT

 public:
  enum class Kind {
    kAlone,   ///< the board's folder is all there is
    kShared,  ///< the bus has the lesson, and the folder a copy that is made anew from it
  };

  /// `user` must differ between all participants, and between two programs of one of them.
  Session(Board& board, std::unique_ptr<Bus> bus, Kind kind, const std::string& user);
  ~Session() override;

  Board& board() { return board_; }
  const BusStatus& status() const { return status_; }
  /// An identifier that no other vector of the lesson has.
  std::string newIdentifier();
  /// Shows a change at once, without sending it.
  void show(const VelWhiteBoard::VelWbBaseVector& change) { board_.showInk(change); }
  /// Sends a vector for the page that is shown.
  void send(const VelWhiteBoard::VectorPtr& vector);
  /// Shows and sends.
  void draw(const VelWhiteBoard::VectorPtr& vector);
  void remove(const std::string& ID);
  void clearPage();
  /// Shows a pointer or a magnifier to everybody on this page, until `stopPointing` or the next
  /// vector takes it off. The lesson does not keep it.
  void point(const VelWhiteBoard::VectorPtr& vector);
  void stopPointing(const std::string& ID);

  /// Shows a page, for everybody while pages are turned together. Not while the pen is down.
  void turnTo(const Board::PageNumber& page);
  void turnToNext();
  void turnToPrevious();
  /// A new page behind all others.
  void addPage();
  bool turnsTogether() const { return turnsTogether_; }
  void setTurnsTogether(bool together) { turnsTogether_ = together; }

  void undo();
  void redo();
  bool canUndo() const { return undo_.canUndo(board_.pageKey()); }
  bool canRedo() const { return undo_.canRedo(board_.pageKey()); }
  /// While the pen is down nothing is taken back, and no other participant turns the page.
  void setPenDown(bool down);

 signals:
  void statusChanged();

 private:
  void takeArrivals();
  void file(const Arrival& arrival);
  /// Files a pointer or a magnifier that somebody shows, or takes one off.
  void fileShown(const Arrival& arrival);
  VelWhiteBoard::VectorPtr removeOf(const std::string& ID);
  /// Shows what an earlier run could not send.
  void showUnsent();
  /// Shows no longer what the lesson does not take.
  void takeRefused();
  void turnAsOthers(const Board::Page& page, bool isOwn);
  void turnNow();
  void updateStatus();

  Board& board_;
  Kind kind_;
  std::string session_;  // how those of this session begin
  std::uint64_t identifiers_ = 0;
  std::uint64_t lastSequence_ = 0;  // 0 before the first arrival
  Undo undo_;
  BusStatus status_;
  bool turnsTogether_ = true;
  bool isPenDown_ = false;
  /// Where others have turned to while this participant could not follow: the pen was down, or the
  /// lesson's history was coming in.
  Board::Page turnLater_;
  /// Own page switches that have not come back.
  int turnsUnderWay_ = 0;
  std::atomic<bool> isNotified_ = false;
  std::unique_ptr<Bus> bus_;  // goes first, because it notifies
};

}  // namespace whiteboard
