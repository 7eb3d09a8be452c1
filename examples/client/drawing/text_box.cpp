#include "drawing/text_box.h"

#include <algorithm>
#include <cmath>

#include "drawing/canvas.h"

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

// What a client shows when the record tells no size, in points of the base board.
constexpr double kUsualFontSize = 20;

// Space between the box and its text, in parts of a line's height.
constexpr double kMargin = 0.25;

// How far letters may stand out of their line, in parts of the font's size.
constexpr double kOverhang = 0.5;

}  // namespace

void TextBox::update(std::size_t firstNew) {
  static_cast<void>(firstNew);
  lettering_.reset();
}

/// @param width of the lines, in parts of the font's size.
void TextBox::breakLines(double width) const {
  const bool isBroken = lettering_.has_value();
  if (!isBroken) lettering_.emplace(text_.fontName.value_or(""));
  width -= 2 * kMargin * lettering_->height();
  // Boards of different sizes differ in the last bits only.
  if (isBroken && std::abs(width - brokenAt_) <= 1e-9 * std::abs(width)) return;
  brokenAt_ = width;
  lines_ = lettering_->linesOf(text_.text.value_or(""), width);
  longest_ = 0;
  for (const QString& line : lines_) longest_ = std::max(longest_, lettering_->widthOf(line));
}

std::optional<TextBox::Place> TextBox::placeOn(vwb::Size board) const {
  const auto box = boxOf(text_, board);
  if (!box) return std::nullopt;
  const double fontSize =
      drawableFontSize(text_.fontSizeWith(board), onBoard(kUsualFontSize, board));
  breakLines(box->width() / fontSize);
  const double margin = kMargin * lettering_->height();
  const double needed = lettering_->lineSpacing() * static_cast<double>(lines_.size()) + 2 * margin;
  Place place{*box, box->topLeft() + QPointF(margin, margin + lettering_->ascent()) * fontSize,
              fontSize};
  place.ground.setHeight(std::max(box->height(), needed * fontSize));
  return place;
}

QRectF TextBox::inked(vwb::Size board) const {
  const auto place = placeOn(board);
  if (!place) return {};
  const double beside = kOverhang * place->fontSize;
  const QRectF words(place->ground.topLeft(),
                     QSizeF(longest_ * place->fontSize + place->first.x() - place->ground.x(),
                            place->ground.height()));
  return place->ground.normalized().united(words.adjusted(-beside, -beside, beside, beside));
}

void TextBox::paint(QPainter& painter, vwb::Size board, const QRectF& part) const {
  const auto place = placeOn(board);
  if (!place) return;
  if (const auto background = colourOf(text_.bgColor)) {
    QPainterPath ground;
    ground.addRect(place->ground);
    painter.fillPath(ground, *background);
  }
  const QColor colour = colourOf(text_.color).value_or(ink());
  const double size = place->fontSize;
  QPointF at = place->first;
  for (const QString& line : lines_) {
    // What stands out farther is cut off, so that a line is drawn only near the part.
    const QRectF row(QPointF(place->ground.left() - board.width, at.y() - size * 2),
                     QPointF(areaOf(board).right(), at.y() + size));
    const QRect whole = row.toAlignedRect();
    if (touches(QRectF(whole), part)) {
      const SavedState state(painter);
      if (!isVector(painter)) painter.setClipRect(whole, Qt::IntersectClip);
      lettering_->write(painter, line, at, size, colour);
    }
    at.ry() += lettering_->lineSpacing() * size;
  }
}

bool TextBox::hits(QPointF at, double tolerance, vwb::Size board) const {
  const auto place = placeOn(board);
  if (!place) return false;
  const QRectF ground = place->ground.normalized();
  return ground.adjusted(-tolerance, -tolerance, tolerance, tolerance).contains(at);
}

}  // namespace whiteboard
