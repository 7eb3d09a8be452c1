#include "window/tools/text_tool.h"

#include <QFontMetricsF>
#include <QKeyEvent>
#include <QTextDocument>
#include <QTransform>
#include <algorithm>
#include <utility>

#include "drawing/lettering.h"
#include "window/tools/moving.h"

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

/// The space between the box and its text, in heights of a line.
constexpr double kMargin = 0.25;
/// A new text is no wider than this part of the board.
constexpr double kWidest = 0.5;
/// For a text of another client that tells no size.
constexpr double kUsualSize = 20;
/// What the page draws of a text.
constexpr int kLongestText = 10000;
/// What a box that keeps its place has instead of one.
constexpr double kNotGiven = -100;
/// Letters of another client may be a little wider.
constexpr double kSlack = 1.04;

QFont fontOf(const vwb::VelWbVecText& text, vwb::Size board) {
  QFont font(QString::fromStdString(text.fontName.value_or("")));
  if (!text.fontName || text.fontName->empty()) font.setStyleHint(QFont::SansSerif);
  const double size = drawableFontSize(text.fontSizeWith(board), kUsualSize);
  font.setPixelSize(static_cast<int>(std::clamp(size, 6.0, 400.0)));
  font.setHintingPreference(QFont::PreferNoHinting);
  return font;
}

/// The size of the box that a text needs, in view points, when it may be `widest` wide: measured as
/// the page draws it.
QSizeF sizeFor(const vwb::VelWbVecText& text, vwb::Size board, double widest) {
  const Lettering lettering(text.fontName.value_or(""));
  const double fontSize = text.fontSizeWith(board);
  const double margins = 2 * kMargin * lettering.height();
  const double limit = widest / fontSize - margins;
  double width = 0;
  for (const QString& line : lettering.linesOf(text.text.value_or(""), limit)) {
    width = std::max(width, lettering.widthOf(line) * kSlack);
  }
  width = std::min(width, limit);
  const auto lines = static_cast<double>(lettering.linesOf(text.text.value_or(""), width).size());
  return QSizeF(width + margins, lines * lettering.lineSpacing() + margins) * fontSize;
}

}  // namespace

/// A frameless editor on the board.
class TextTool::Editor : public QPlainTextEdit {
 public:
  Editor(TextTool& tool, QWidget* parent) : QPlainTextEdit(parent), tool_(tool) {
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setPlaceholderText(tr("Text"));
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (event->key() == Qt::Key_Escape ||
        (isEnter && event->modifiers().testFlag(Qt::ControlModifier))) {
      return tool_.finish();
    }
    QPlainTextEdit::keyPressEvent(event);
  }

 private:
  TextTool& tool_;
};

TextTool::TextTool(Session& session, BoardView& view) : session_(session), view_(view) {}

void TextTool::press(QPointF at) {
  opensOnRelease_ = !editor_;
  finish();
  at_ = at;
}

void TextTool::release(QPointF) {
  if (!std::exchange(opensOnRelease_, false)) return;
  const Shape* hit = view_.scene().at(at_, 2);
  if (hit != nullptr && hit->vector()->ID &&
      vwb::recordCast<const vwb::VelWbVecText>(hit->vector().get()) != nullptr) {
    return edit(*hit->vector()->ID);
  }
  text_ = vwb::recordPointerCast<vwb::VelWbVecText>(
      vwb::VWBToolManager::genVectorWithTool(vwb::VelWBToolText, session_.newIdentifier()));
  // The chosen size counts on the reference board, so that it looks the same in all windows.
  text_->ps = static_cast<std::int64_t>(vwb::VWBToolManager::sharedManager().wbBaseSize().width);
  isNew_ = true;
  const vwb::Size board = view_.boardSize();
  const double left = std::clamp(at_.x(), 0.0, board.width * (1 - kWidest / 2));
  open({left, at_.y(), std::min(board.width * kWidest, board.width - left), 1});
}

void TextTool::edit(const std::string& ID) {
  finish();
  const vwb::VectorPtr entry = session_.board().shownEntry(ID);
  const auto text = vwb::recordPointerCast<vwb::VelWbVecText>(entry);
  if (!text) return;
  text_ = vwb::recordPointerCast<vwb::VelWbVecText>(vwb::VectorPtr(text->copyWithZone()));
  isNew_ = false;
  open(frameOf(*text_, view_.boardSize()));
}

void TextTool::open(const QRectF& place) {
  editor_ = new Editor(*this, &view_);
  const double line = QFontMetricsF(fontOf(*text_, view_.boardSize())).height();
  QPalette palette = editor_->palette();
  palette.setColor(QPalette::Base, QColor(0xF4, 0xF8, 0xFF));
  palette.setColor(QPalette::Text,
                   QColor(QString::fromStdString(text_->color.value_or("#303033")).left(7)));
  editor_->setPalette(palette);
  editor_->setPlainText(QString::fromStdString(text_->text.value_or("")));
  const QRectF wanted(place.topLeft(),
                      QSizeF(std::max(120.0, place.width()), std::max(place.height(), line * 2.5)));
  const QRectF page(QPointF(0, 0), view_.boardRect().size());
  const QRectF shown = wanted.intersects(page) ? wanted & page : QRectF(20, 20, 200, line * 3);
  placeOnBoard_ = QTransform::fromScale(1 / page.width(), 1 / page.height()).mapRect(shown);
  putInPlace();
  editor_->show();
  editor_->setFocus();
}

void TextTool::putInPlace() {
  const QFont font = fontOf(*text_, view_.boardSize());
  editor_->setFont(font);
  editor_->document()->setDocumentMargin(kMargin * QFontMetricsF(font).height());
  const QRectF board = view_.boardRect();
  const QTransform toView = QTransform::fromScale(board.width(), board.height());
  editor_->setGeometry(toView.mapRect(placeOnBoard_).translated(board.topLeft()).toRect());
}

void TextTool::resized() {
  if (editor_ && text_) putInPlace();
}

void TextTool::finish() {
  if (!editor_ || !text_) return;
  const QString written = editor_->toPlainText().left(kLongestText);
  const QRectF place(QPointF(editor_->pos()) - view_.boardRect().topLeft(),
                     QSizeF(editor_->size()));
  editor_->hide();
  editor_->deleteLater();
  editor_ = nullptr;
  view_.setFocus();
  const auto text = std::exchange(text_, nullptr);
  if (written.trimmed().isEmpty()) {
    if (!isNew_) session_.remove(*text->ID);
    return;
  }
  if (!isNew_ && written.toStdString() == text->text) return;
  text->text = written.toStdString();
  text->ts = vwb::VelWbVectorManager::shareManager().genTs();
  const vwb::Size board = view_.boardSize();
  if (isNew_) {
    const QSizeF size = sizeFor(*text, board, place.width());
    vwb::VWBToolManager::convertPoint({place.x(), place.y()}, {size.width(), size.height()}, *text,
                                      board);
  }
  // An edit leaves the box where others may have moved it meanwhile, if it is still there.
  if (!isNew_ && session_.board().shownEntry(*text->ID)) {
    text->x = text->y = kNotGiven;
    text->w = text->h = 0;
  }
  session_.draw(text);
}

}  // namespace whiteboard
