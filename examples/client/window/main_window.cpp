#include "window/main_window.h"

#include <QClipboard>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QImageReader>
#include <QMessageBox>
#include <QMimeData>
#include <QStatusBar>
#include <QUrl>

#include "window/icons.h"
#include "window/page_export.h"
#include "window/pictures.h"

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

QImage readPicture(const QString& file) {
  QImageReader reader(file);
  reader.setAutoTransform(true);  // as the camera was held
  return reader.read();
}

}  // namespace

MainWindow::MainWindow(Session& session, bool isShared)
    : session_(session),
      view_(new BoardView(session.board(), this)),
      toolbox_(std::make_unique<Toolbox>(session, *view_, this)),
      pages_(new PagesPanel(
          session.board(), [this] { return view_->picture(); }, this)),
      status_(new StatusLine(session, *statusBar(), isShared)) {
  setCentralWidget(view_);
  addToolBar(Qt::LeftToolBarArea, toolbox_->tools());
  addToolBar(Qt::TopToolBarArea, toolbox_->settings());
  addCommands(isShared);
  setContextMenuPolicy(Qt::NoContextMenu);
  statusBar()->setSizeGripEnabled(false);

  auto* dock = new QDockWidget(tr("Pages"), this);
  dock->setFeatures(QDockWidget::NoDockWidgetFeatures);
  dock->setTitleBarWidget(new QWidget(dock));
  dock->setWidget(pages_);
  addDockWidget(Qt::RightDockWidgetArea, dock);

  setAcceptDrops(true);
  setWindowIcon(iconOf(Sign::kWindow));
  connect(view_, &BoardView::penDown, &session_, &Session::setPenDown);
  connect(pages_, &PagesPanel::chosen, &session_,
          [this](const Board::PageNumber& page) { session_.turnTo(page); });
  connect(&session_.board(), &Board::pagesChanged, this, &MainWindow::updateCommands);
  connect(&session_.board(), &Board::changed, this, &MainWindow::updateCommands);
  connect(&session_, &Session::statusChanged, this, &MainWindow::updateCommands);
  updateCommands();
  view_->setFocus();
  resize(1180, 720);
}

// The tools go while the view is still there.
MainWindow::~MainWindow() { toolbox_.reset(); }

QAction* MainWindow::addCommand(QToolBar& bar, const QIcon& icon, const QString& title,
                                const QKeySequence& keys) {
  QAction* added = bar.addAction(icon, title);
  added->setShortcut(keys);
  added->setToolTip(keys.isEmpty() ? title : QString("%1 (%2)").arg(title, keys.toString()));
  return added;
}

void MainWindow::addCommands(bool isShared) {
  QToolBar& bar = *toolbox_->settings();
  bar.addSeparator();
  const auto command = [&](Sign sign, const QString& title, const QKeySequence& keys, auto run) {
    QAction* added = addCommand(bar, iconOf(sign), title, keys);
    connect(added, &QAction::triggered, this, run);
    return added;
  };
  undo_ = command(Sign::kUndo, tr("Undo"), QKeySequence("Ctrl+Z"), [this] { session_.undo(); });
  redo_ = command(Sign::kRedo, tr("Redo"), QKeySequence("Ctrl+Y"), [this] { session_.redo(); });
  command(Sign::kImage, tr("Image"), QKeySequence("Ctrl+I"), [this] { chooseImage(); });
  bar.addSeparator();
  previous_ = command(Sign::kPrevious, tr("Previous page"), QKeySequence("PgUp"),
                      [this] { session_.turnToPrevious(); });
  next_ = command(Sign::kNext, tr("Next page"), QKeySequence("PgDown"),
                  [this] { session_.turnToNext(); });
  command(Sign::kAdd, tr("New page"), QKeySequence("Ctrl+N"), [this] { session_.addPage(); });
  command(Sign::kClear, tr("Clear the page"), QKeySequence("Ctrl+Shift+Delete"),
          [this] { clearPage(); });
  bar.addSeparator();
  command(Sign::kExport, tr("Save pages as pictures"), QKeySequence("Ctrl+E"),
          [this] { exportPages(); });

  if (isShared) {
    QAction* together = bar.addAction(tr("Turn pages together"));
    together->setCheckable(true);
    together->setChecked(session_.turnsTogether());
    connect(together, &QAction::toggled, this, [this](bool on) { session_.setTurnsTogether(on); });
  }
  auto* pasting = new QAction(tr("Paste"), this);
  pasting->setShortcut(QKeySequence::Paste);
  connect(pasting, &QAction::triggered, this, &MainWindow::paste);
  addAction(pasting);
}

void MainWindow::updateCommands() {
  const auto& pages = session_.board().pages();
  const Board::PageNumber here = session_.board().number();
  undo_->setEnabled(session_.canUndo());
  redo_->setEnabled(session_.canRedo());
  previous_->setEnabled(*pages.begin() < here);
  next_->setEnabled(here < *pages.rbegin());
}

void MainWindow::insert(const QImage& picture) {
  const vwb::Size board = view_->boardSize();
  if (insertPicture(session_, picture, {board.width / 2, board.height / 2}, board)) {
    toolbox_->take("Select");
    return;
  }
  QMessageBox::warning(this, tr("Image"), tr("This is no picture that can be shown."));
}

void MainWindow::chooseImage() {
  const QString file = QFileDialog::getOpenFileName(
      this, tr("Image"), QString(), tr("Pictures (*.png *.jpg *.jpeg *.bmp *.gif)"));
  if (!file.isEmpty()) insert(readPicture(file));
}

void MainWindow::clearPage() {
  const auto answer = QMessageBox::question(
      this, tr("Clear the page"), tr("Clear this page for everybody? This cannot be undone."));
  if (answer == QMessageBox::Yes) session_.clearPage();
}

void MainWindow::paste() {
  const QMimeData* copied = QGuiApplication::clipboard()->mimeData();
  if (copied != nullptr && copied->hasImage()) insert(qvariant_cast<QImage>(copied->imageData()));
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasUrls() || event->mimeData()->hasImage()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
  if (event->mimeData()->hasImage()) {
    insert(qvariant_cast<QImage>(event->mimeData()->imageData()));
  } else {
    for (const QUrl& url : event->mimeData()->urls()) {
      if (url.isLocalFile()) insert(readPicture(url.toLocalFile()));
    }
  }
  event->setDropAction(Qt::CopyAction);
  event->accept();
}

void MainWindow::exportPages() {
  QString filter;
  QString file = QFileDialog::getSaveFileName(
      this, tr("Save pages as pictures"), tr("lesson"),
      tr("All pages in one document (*.pdf);;This page (*.png);;This page (*.svg)"), &filter);
  if (file.isEmpty()) return;
  const QString ending = filter.section("*", 1).chopped(1);
  if (QFileInfo(file).suffix().isEmpty()) file += ending;
  const QString problem = savePages(session_.board(), file);
  if (!problem.isEmpty()) QMessageBox::warning(this, tr("Save pages as pictures"), problem);
}

}  // namespace whiteboard
