#include "window/pages_panel.h"

#include <QIcon>
#include <QPainter>
#include <QPixmap>
#include <QScrollBar>
#include <iterator>
#include <utility>

#include "drawing/export.h"

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

constexpr QSize kPicture(160, 90);
constexpr int kDrawMilliseconds = 1000;

/// A page's picture with an edge.
QIcon thumbnailOf(QImage image, double ratio) {
  image.setDevicePixelRatio(ratio);
  QPainter painter(&image);
  painter.setPen(QPen(QColor(0xC9, 0xCF, 0xD8), 1));
  painter.drawRect(QRectF(0.5, 0.5, kPicture.width() - 1, kPicture.height() - 1));
  painter.end();
  const QPixmap pixmap = QPixmap::fromImage(image);
  QIcon icon(pixmap);
  // The picture of the page that is shown keeps its colours.
  icon.addPixmap(pixmap, QIcon::Selected);
  icon.addPixmap(pixmap, QIcon::Disabled);
  return icon;
}

}  // namespace

PagesPanel::PagesPanel(Board& board, PictureShown pictureShown, QWidget* parent)
    : QListWidget(parent), board_(board), pictureShown_(std::move(pictureShown)) {
  setIconSize(kPicture);
  setViewMode(QListView::IconMode);
  setFlow(QListView::TopToBottom);
  setWrapping(false);
  setMovement(QListView::Static);
  setSpacing(6);
  setUniformItemSizes(true);
  setFocusPolicy(Qt::NoFocus);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setFixedWidth(kPicture.width() + 36);
  timer_.setSingleShot(true);
  timer_.setInterval(kDrawMilliseconds);
  connect(&timer_, &QTimer::timeout, this, &PagesPanel::drawNext);
  connect(&board_, &Board::pagesChanged, this, &PagesPanel::list);
  connect(&board_, &Board::changed, this, [this](const vwb::ChangeReport& report) {
    if (report.kind == vwb::ChangeReport::Kind::kReloaded) changed_ = board_.pages();
    if (const auto page = vwb::VelWbVecSwitchPage::pageFromInfo(report.page)) {
      changed_.insert({page->WBID, page->curPage});
    }
    if (!timer_.isActive()) timer_.start();
  });
  connect(this, &QListWidget::itemClicked, this,
          [this](QListWidgetItem* item) { emit chosen(numberAt(row(item))); });
  list();
}

QImage PagesPanel::small(const vwb::VectorList& entries) const {
  return pictureOf(entries, kPicture * devicePixelRatioF());
}

Board::PageNumber PagesPanel::numberAt(int row) const {
  return *std::next(board_.pages().begin(), row);
}

void PagesPanel::list() {
  // Pictures stay as long as the number of pages does; otherwise rows stand for other pages.
  if (count() != static_cast<int>(board_.pages().size())) {
    clear();
    for (const Board::PageNumber& page : board_.pages()) {
      addItem(new QListWidgetItem(thumbnailOf(small({}), devicePixelRatioF()),
                                  QString::number(page.second)));
    }
    changed_ = board_.pages();
    timer_.start();
  }
  const auto shown = board_.pages().find(board_.number());
  setCurrentRow(static_cast<int>(std::distance(board_.pages().begin(), shown)));
}

void PagesPanel::drawNext() {
  // One page at a time: a long one takes its time, and the pen comes first.
  while (!changed_.empty()) {
    const Board::PageNumber page = *changed_.begin();
    changed_.erase(changed_.begin());
    const auto found = board_.pages().find(page);
    if (found == board_.pages().end()) continue;
    const auto row = static_cast<int>(std::distance(board_.pages().begin(), found));
    const QImage picture =
        page == board_.number()
            ? pictureShown_().scaled(kPicture * devicePixelRatioF(), Qt::IgnoreAspectRatio,
                                     Qt::SmoothTransformation)
            : small(board_.shownEntries(page));
    if (QListWidgetItem* shown = item(row)) {
      shown->setIcon(thumbnailOf(picture, devicePixelRatioF()));
    }
    break;
  }
  if (!changed_.empty()) timer_.start(changed_.size() > 1 ? 30 : kDrawMilliseconds);
}

}  // namespace whiteboard
