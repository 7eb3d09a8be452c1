#include "window/replay_window.h"

#include <QDockWidget>
#include <QSignalBlocker>
#include <QToolBar>
#include <cmath>

#include "window/icons.h"
#include "window/pages_panel.h"

namespace whiteboard {

namespace {

/// The slider counts in tenths of a second.
constexpr double kSteps = 10;

QString textOf(double seconds) {
  const auto whole = static_cast<qint64>(seconds);
  return QString("%1:%2").arg(whole / 60).arg(whole % 60, 2, 10, QChar('0'));
}

}  // namespace

ReplayWindow::ReplayWindow(Board& board, Player& player)
    : player_(player), view_(new BoardView(board, this)) {
  setCentralWidget(view_);
  addBar();
  auto* dock = new QDockWidget(tr("Pages"), this);
  dock->setFeatures(QDockWidget::NoDockWidgetFeatures);
  dock->setTitleBarWidget(new QWidget(dock));
  auto* pages = new PagesPanel(
      board, [this] { return view_->picture(); }, dock);
  pages->setEnabled(false);  // the lesson turns them
  dock->setWidget(pages);
  addDockWidget(Qt::RightDockWidgetArea, dock);
  setContextMenuPolicy(Qt::NoContextMenu);
  setWindowIcon(iconOf(Sign::kWindow));
  connect(&player_, &Player::moved, this, &ReplayWindow::showState);
  connect(&player_, &Player::playingChanged, this, &ReplayWindow::showState);
  showState();
  resize(1100, 680);
}

void ReplayWindow::addBar() {
  auto* bar = new QToolBar(tr("Replay"), this);
  bar->setMovable(false);
  bar->setIconSize({24, 24});
  play_ = bar->addAction(iconOf(Sign::kPlay), tr("Play"));
  play_->setShortcut(QKeySequence("Space"));
  connect(play_, &QAction::triggered, this,
          [this] { player_.isPlaying() ? player_.pause() : player_.play(); });

  slider_ = new QSlider(Qt::Horizontal, bar);
  slider_->setRange(0, static_cast<int>(std::ceil(player_.duration() * kSteps)));
  slider_->setPageStep(static_cast<int>(10 * kSteps));
  connect(slider_, &QSlider::valueChanged, this,
          [this](int value) { player_.seek(value / kSteps); });
  bar->addWidget(slider_);

  time_ = new QLabel(bar);
  time_->setMinimumWidth(96);
  time_->setAlignment(Qt::AlignCenter);
  bar->addWidget(time_);

  speed_ = new QSpinBox(bar);
  speed_->setRange(static_cast<int>(Player::kSlowest), static_cast<int>(Player::kFastest));
  speed_->setPrefix(QString::fromUtf8("\u00d7 "));
  speed_->setToolTip(tr("Speed"));
  connect(speed_, &QSpinBox::valueChanged, this, [this](int times) { player_.setSpeed(times); });
  bar->addWidget(speed_);
  addToolBar(Qt::BottomToolBarArea, bar);
}

void ReplayWindow::showState() {
  const bool playing = player_.isPlaying();
  play_->setIcon(iconOf(playing ? Sign::kPause : Sign::kPlay));
  play_->setText(playing ? tr("Pause") : tr("Play"));
  const QSignalBlocker silent(slider_);
  slider_->setValue(static_cast<int>(std::lround(player_.position() * kSteps)));
  time_->setText(QString("%1 / %2").arg(textOf(player_.position()), textOf(player_.duration())));
}

}  // namespace whiteboard
