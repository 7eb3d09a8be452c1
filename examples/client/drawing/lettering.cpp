#include "drawing/lettering.h"

#include <QFontMetricsF>
#include <QPaintEngine>
#include <QPainterPath>
#include <QStringList>
#include <algorithm>
#include <cmath>
#include <cstddef>

#include "drawing/canvas.h"

namespace whiteboard {

namespace {

constexpr int kFontSize = 64;  // in which texts are measured and set, in pixels
constexpr double kSmallestFont = 1;
constexpr double kLargestFont = 2000;

// More than fits a page, or the caption of a picture. Records come from other machines.
constexpr std::size_t kLongestText = 10000;
constexpr std::size_t kLongestCaption = 200;
constexpr std::size_t kMostLines = 1000;
constexpr std::size_t kLongestName = 100;

// Widths of words are sums of rounded ones: without this a line that just fits might not.
constexpr double kRounding = 1e-3;

/// Whether the byte begins a character of UTF-8, or stands behind the last one.
bool isBoundary(const std::string& text, std::size_t at) {
  return at >= text.size() || (static_cast<unsigned char>(text[at]) & 0xC0) != 0x80;
}

/// The characters from `first` to `end` (bytes), without those that move the pen elsewhere.
QString charactersOf(const std::string& text, std::size_t first, std::size_t end) {
  while (!isBoundary(text, first)) ++first;
  while (!isBoundary(text, end)) --end;
  if (end <= first) return {};
  QString characters = QString::fromUtf8(text.data() + first, static_cast<qsizetype>(end - first));
  for (QChar& character : characters) {
    const bool separates = character.category() == QChar::Separator_Line ||
                           character.category() == QChar::Separator_Paragraph;
    if (separates || (character < u' ' && character != u'\n') || character == QChar(0x7F)) {
      character = u' ';
    }
  }
  return characters;
}

QFont fontOf(const std::string& name) {
  QFont font(QStringLiteral("sans-serif"));
  if (!name.empty() && name.size() <= kLongestName) {
    font.setFamilies({QString::fromStdString(name), QStringLiteral("sans-serif")});
  }
  font.setStyleHint(QFont::SansSerif);
  font.setPixelSize(kFontSize);
  font.setHintingPreference(QFont::PreferNoHinting);
  font.setStyleStrategy(QFont::NoSubpixelAntialias);
  return font;
}

}  // namespace

Lettering::Lettering(const std::string& fontName) : font_(fontOf(fontName)) {
  const QFontMetricsF metrics(font_);
  ascent_ = metrics.ascent() / kFontSize;
  height_ = (metrics.ascent() + metrics.descent()) / kFontSize;
  lineSpacing_ = metrics.lineSpacing() / kFontSize;
}

double Lettering::widthOf(const QString& text) const {
  return QFontMetricsF(font_).horizontalAdvance(text) / kFontSize;
}

std::vector<QString> Lettering::linesOf(const std::string& text, double width) const {
  std::vector<QString> lines;
  const QFontMetricsF metrics(font_);
  const double space = metrics.horizontalAdvance(u' ') / kFontSize;
  const QString beginning = charactersOf(text, 0, std::min(text.size(), kLongestText));
  for (const QString& paragraph : beginning.split(u'\n')) {
    QString line;
    double used = 0;
    bool isFirst = true;
    for (const QString& word : paragraph.split(u' ')) {
      const double needed = metrics.horizontalAdvance(word) / kFontSize;
      if (isFirst) {
        line = word;
        used = needed;
      } else if (used + space + needed > width + kRounding) {
        lines.push_back(line);
        line = word;
        used = needed;
      } else {
        line += u' ' + word;
        used += space + needed;
      }
      isFirst = false;
    }
    lines.push_back(line);
    if (lines.size() >= kMostLines) break;
  }
  if (lines.size() > kMostLines) lines.resize(kMostLines);
  return lines;
}

QString Lettering::shortened(const std::string& text, double width) const {
  const bool isShort = text.size() <= kLongestCaption;
  QString end = charactersOf(text, isShort ? 0 : text.size() - kLongestCaption, text.size());
  end.replace(u'\n', u' ');
  if (!isShort) end.prepend(QChar(0x2026));
  return QFontMetricsF(font_).elidedText(end, Qt::ElideLeft, width * kFontSize);
}

void Lettering::write(QPainter& painter, const QString& line, QPointF at, double fontSize,
                      const QColor& colour) const {
  if (line.isEmpty()) return;
  const SavedState state(painter);
  const double scale = fontSize / kFontSize;
  painter.translate(at);
  painter.scale(scale, scale);
  if (painter.paintEngine()->type() == QPaintEngine::SVG) {
    // As shapes: whoever looks at the file may have other fonts.
    QPainterPath letters;
    letters.addText(QPointF(), font_, line);
    letters.setFillRule(Qt::WindingFill);
    painter.fillPath(letters, colour);
    return;
  }
  painter.setFont(font_);
  painter.setPen(colour);
  painter.drawText(QPointF(), line);
}

double drawableFontSize(double fontSize, double otherwise) {
  const bool isSize = std::isfinite(fontSize) && fontSize > 0;
  return std::clamp(isSize ? fontSize : otherwise, kSmallestFont, kLargestFont);
}

}  // namespace whiteboard
