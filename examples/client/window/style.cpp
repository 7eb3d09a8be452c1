#include "window/style.h"

#include <QApplication>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleFactory>

namespace whiteboard {

namespace {

/// A click on a slider jumps there, as one expects of a film.
class Style : public QProxyStyle {
 public:
  Style() : QProxyStyle(QStyleFactory::create("Fusion")) {}

  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* more) const override {
    if (hint == SH_Slider_AbsoluteSetButtons) return Qt::LeftButton;
    return QProxyStyle::styleHint(hint, option, widget, more);
  }
};

}  // namespace

void applyStyle(QApplication& application) {
  application.setStyle(new Style);
  QPalette palette;
  palette.setColor(QPalette::Window, QColor(0xF7, 0xF8, 0xFA));
  palette.setColor(QPalette::WindowText, QColor(0x2F, 0x38, 0x46));
  palette.setColor(QPalette::Base, Qt::white);
  palette.setColor(QPalette::Text, QColor(0x2F, 0x38, 0x46));
  palette.setColor(QPalette::Button, QColor(0xF7, 0xF8, 0xFA));
  palette.setColor(QPalette::ButtonText, QColor(0x2F, 0x38, 0x46));
  palette.setColor(QPalette::Highlight, QColor(0x3B, 0x6F, 0xD4));
  palette.setColor(QPalette::HighlightedText, Qt::white);
  application.setPalette(palette);
  application.setStyleSheet(
      "QToolBar { border: 0; padding: 4px; spacing: 3px; background: #F7F8FA; }"
      "QToolButton { border: 1px solid transparent; border-radius: 6px; padding: 4px; }"
      "QToolButton:hover { background: #E6EBF5; }"
      "QToolButton:checked { background: #D6E2FA; border-color: #3B6FD4; }"
      "QListWidget { border: 0; background: #EEF0F4; }"
      "QListWidget::item { border-radius: 6px; padding: 4px; color: #2F3846; }"
      "QListWidget::item:selected { background: #D6E2FA; color: #2F3846; }"
      "QStatusBar { background: #F7F8FA; }"
      "QStatusBar::item { border: 0; }");
}

}  // namespace whiteboard
