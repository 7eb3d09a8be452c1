// Plays a recorded lesson.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <cstddef>

#include "lesson/board.h"
#include "lesson/recording.h"

namespace whiteboard {

/// Files the vectors of a recording into a board, at the times at which they were made. The board
/// belongs to the player: it is emptied when the lesson is set back.
///
/// Positions are seconds since the recording's first vector. Threads: that of the windows.
class Player : public QObject {
  Q_OBJECT

 public:
  static constexpr double kSlowest = 1;
  static constexpr double kFastest = 60;

  Player(Board& board, Recording recording);

  double duration() const { return recording_.end() - recording_.begin(); }
  double position() const { return position_; }
  bool isPlaying() const { return timer_.isActive(); }
  bool isAtEnd() const { return next_ == recording_.events.size(); }

  /// From the beginning again, when it is at the end.
  void play();
  void pause();
  /// How much faster than the lesson; limited to `kSlowest` to `kFastest`.
  void setSpeed(double speed);
  /// Jumps. A position outside the lesson becomes its beginning or its end.
  void seek(double position);

 signals:
  void moved();  ///< another position
  void playingChanged();

 private:
  /// Empties the board.
  void setBack();
  void advance();
  void fileUpTo(double position);

  Board& board_;
  Recording recording_;
  std::size_t next_ = 0;  // the first event that has not been filed
  double position_ = 0;
  double speed_ = 1;
  QTimer timer_;
  QElapsedTimer sinceLast_;
};

}  // namespace whiteboard
