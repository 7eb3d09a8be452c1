// A lesson that is played again.
#pragma once

#include <QAction>
#include <QLabel>
#include <QMainWindow>
#include <QSlider>
#include <QSpinBox>

#include "lesson/player.h"
#include "window/board_view.h"

namespace whiteboard {

/// Shows the board of a player, its pages, and a bar: play, pause, speed, a slider that jumps and
/// shows how far the lesson is.
class ReplayWindow : public QMainWindow {
  Q_OBJECT

 public:
  ReplayWindow(Board& board, Player& player);

  BoardView& view() { return *view_; }
  QSlider& slider() { return *slider_; }

 private:
  void addBar();
  void showState();

  Player& player_;
  BoardView* view_;
  QAction* play_ = nullptr;
  QSlider* slider_ = nullptr;
  QSpinBox* speed_ = nullptr;
  QLabel* time_ = nullptr;
};

}  // namespace whiteboard
