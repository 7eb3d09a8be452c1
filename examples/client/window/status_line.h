// How it stands with the lesson, in a line.
#pragma once

#include <QLabel>
#include <QStatusBar>
#include <QTimer>

#include "lesson/session.h"

namespace whiteboard {

/// Says in a window's lowest line whether the lesson is connected, and whether everything is saved.
class StatusLine : public QObject {
  Q_OBJECT

 public:
  StatusLine(Session& session, QStatusBar& bar, bool isShared);

  /// For tests: what is said.
  QString connection() const { return connection_->text(); }
  QString saved() const { return saved_->text(); }

 private:
  void update();

  Session& session_;
  bool isShared_;
  QLabel* connection_;
  QLabel* saved_;
  QTimer timer_;
};

}  // namespace whiteboard
