// Words on a board.
#pragma once

#include <QFont>
#include <QPainter>
#include <QPointF>
#include <QString>
#include <string>
#include <vector>

namespace whiteboard {

/// A font in which texts are measured and set: always of the same size, and scaled to the size that
/// is wanted when it is drawn. So lines are as wide, and break, in the same places on boards of all
/// sizes. All lengths count in parts of the font's size.
class Lettering {
 public:
  /// An empty name, or one of a font that is not there, is the font without serifs.
  explicit Lettering(const std::string& fontName);

  double ascent() const { return ascent_; }
  /// Ascent and descent.
  double height() const { return height_; }
  /// From base line to base line.
  double lineSpacing() const { return lineSpacing_; }
  double widthOf(const QString& text) const;

  /// The lines of a text, broken at its line feeds and, where a line is wider than `width`, between
  /// words. A word that alone is wider keeps a line of its own. Of a text that no page could show
  /// whole, only the beginning.
  std::vector<QString> linesOf(const std::string& text, double width) const;
  /// The text, or an ellipsis and its end when it is wider than `width`: the end of an address
  /// tells more than its beginning.
  QString shortened(const std::string& text, double width) const;

  /// Writes one line with its left end on the base line at `at`, in a colour.
  void write(QPainter& painter, const QString& line, QPointF at, double fontSize,
             const QColor& colour) const;

 private:
  QFont font_;
  double ascent_ = 0;
  double height_ = 0;
  double lineSpacing_ = 0;
};

/// A font size that can be drawn: a size that is none becomes `otherwise`.
double drawableFontSize(double fontSize, double otherwise);

}  // namespace whiteboard
