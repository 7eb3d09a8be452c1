// Text boxes.
#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "drawing/lettering.h"
#include "drawing/look.h"

namespace whiteboard {

class TextBox : public Look {
 public:
  explicit TextBox(const VelWhiteBoard::VelWbVecText& text) : text_(text) {}

  void update(std::size_t firstNew) override;
  QRectF inked(VelWhiteBoard::Size board) const override;
  bool isClipped() const override { return true; }
  void paint(QPainter& painter, VelWhiteBoard::Size board, const QRectF& part) const override;
  bool hits(QPointF at, double tolerance, VelWhiteBoard::Size board) const override;

 private:
  /// Where the text lies on a board, in view points.
  struct Place {
    QRectF ground;  // the box, and more if the text is higher
    QPointF first;  // the left end of the first base line
    double fontSize = 0;
  };

  std::optional<Place> placeOn(VelWhiteBoard::Size board) const;
  void breakLines(double width) const;

  const VelWhiteBoard::VelWbVecText& text_;
  // What the last board has asked for; lengths in parts of the font's size.
  mutable std::optional<Lettering> lettering_;
  mutable double brokenAt_ = 0;
  mutable std::vector<QString> lines_;
  mutable double longest_ = 0;
};

}  // namespace whiteboard
