// All pages of a board, small.
#pragma once

#include <QImage>
#include <QListWidget>
#include <QTimer>
#include <functional>
#include <set>
#include <string>

#include "lesson/board.h"

namespace whiteboard {

/// Shows every page as a small picture. Pictures of pages that have changed are drawn anew once a
/// second, when nothing else is to be done.
///
/// It says which page was clicked; turning the page is the owner's.
class PagesPanel : public QListWidget {
  Q_OBJECT

 public:
  /// What the page that is shown looks like: its view has drawn it already.
  using PictureShown = std::function<QImage()>;

  PagesPanel(Board& board, PictureShown pictureShown, QWidget* parent = nullptr);

 signals:
  void chosen(const Board::PageNumber& page);

 private:
  void list();
  void drawNext();
  QImage small(const VelWhiteBoard::VectorList& entries) const;
  Board::PageNumber numberAt(int row) const;

  Board& board_;
  PictureShown pictureShown_;
  std::set<Board::PageNumber> changed_;
  QTimer timer_;
};

}  // namespace whiteboard
