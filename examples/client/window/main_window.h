// The window of a participant.
#pragma once

#include <QMainWindow>
#include <memory>

#include "lesson/session.h"
#include "window/board_view.h"
#include "window/pages_panel.h"
#include "window/status_line.h"
#include "window/toolbox.h"

namespace whiteboard {

/// The board in the middle, tools at the left, pages at the right, colours and commands above.
class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  MainWindow(Session& session, bool isShared);
  ~MainWindow() override;

  BoardView& view() { return *view_; }
  Toolbox& toolbox() { return *toolbox_; }
  StatusLine& status() { return *status_; }

 protected:
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void addCommands(bool isShared);
  QAction* addCommand(QToolBar& bar, const QIcon& icon, const QString& title,
                      const QKeySequence& keys);
  void updateCommands();
  void clearPage();
  void paste();
  void chooseImage();
  void insert(const QImage& picture);
  void exportPages();

  Session& session_;
  BoardView* view_;
  std::unique_ptr<Toolbox> toolbox_;
  PagesPanel* pages_;
  StatusLine* status_;
  QAction* undo_ = nullptr;
  QAction* redo_ = nullptr;
  QAction* previous_ = nullptr;
  QAction* next_ = nullptr;
};

}  // namespace whiteboard
