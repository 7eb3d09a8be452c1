#include "window/status_line.h"

#include <QDateTime>

namespace whiteboard {

namespace {

constexpr int kLookMilliseconds = 400;

enum class Mood { kGood, kWaiting, kBad };

void say(QLabel& label, const QString& text, Mood mood) {
  if (label.text() == text) return;
  const char* const colour = mood == Mood::kGood      ? "#2E7D4F"
                             : mood == Mood::kWaiting ? "#8A6A12"
                                                      : "#C0392B";
  label.setText(text);
  label.setStyleSheet(QString("color: %1; padding: 0 8px;").arg(colour));
}

QString connectionText(const BusStatus& status) {
  const QString problem = QString::fromStdString(status.problem);
  switch (status.kind) {
    case BusStatus::Kind::kLive:
      return problem.isEmpty() ? QObject::tr("Connected")
                               : QObject::tr("Connected: %1").arg(problem);
    case BusStatus::Kind::kCatchingUp:
      return QObject::tr("Catching up");
    case BusStatus::Kind::kRefused:
      return QObject::tr("Not let in: %1").arg(problem);
    case BusStatus::Kind::kConnecting:
      break;
  }
  return problem.isEmpty() ? QObject::tr("Connecting")
                           : QObject::tr("Not connected: %1").arg(problem);
}

}  // namespace

StatusLine::StatusLine(Session& session, QStatusBar& bar, bool isShared)
    : QObject(&bar),
      session_(session),
      isShared_(isShared),
      connection_(new QLabel(&bar)),
      saved_(new QLabel(&bar)) {
  bar.addWidget(connection_);
  bar.addPermanentWidget(saved_);
  timer_.setInterval(kLookMilliseconds);
  connect(&timer_, &QTimer::timeout, this, &StatusLine::update);
  connect(&session_, &Session::statusChanged, this, &StatusLine::update);
  timer_.start();
  update();
}

void StatusLine::update() {
  const BusStatus& status = session_.status();
  QString text = isShared_ ? connectionText(status) : tr("On this computer");
  if (status.unsent > 0) text += tr(" - %1 to send").arg(status.unsent);
  if (status.dropped > 0) text += tr(" - %1 messages dropped").arg(status.dropped);
  const bool isGood = !isShared_ || status.kind == BusStatus::Kind::kLive;
  const bool isBad = status.kind == BusStatus::Kind::kRefused || !status.problem.empty();
  say(*connection_, text, isBad ? Mood::kBad : isGood ? Mood::kGood : Mood::kWaiting);

  const SaveState::Summary saves = session_.board().saveState();
  if (!saves.problem.empty()) {
    say(*saved_, tr("Not saved: %1").arg(QString::fromStdString(saves.problem)), Mood::kBad);
  } else if (session_.board().isUnsaved()) {
    say(*saved_, tr("Not saved yet"), Mood::kWaiting);
  } else if (saves.lastWritten > 0) {
    const QDateTime time = QDateTime::fromSecsSinceEpoch(saves.lastWritten);
    say(*saved_, tr("Saved %1").arg(time.toString("HH:mm")), Mood::kGood);
  } else {
    say(*saved_, tr("Nothing to save"), Mood::kGood);
  }
}

}  // namespace whiteboard
