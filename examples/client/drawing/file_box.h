// Images and media.
#pragma once

#include <QTransform>
#include <memory>
#include <optional>
#include <string>

#include "drawing/lettering.h"
#include "drawing/look.h"
#include "drawing/picture.h"

namespace whiteboard {

/// The picture of an image or the cover of a media item, if it comes within the record; otherwise
/// a frame with a sign and a caption. Turned by `rotation`, in degrees.
class FileBox : public Look {
 public:
  explicit FileBox(const VelWhiteBoard::VelWbVecFile& file) : file_(file) {}

  void update(std::size_t firstNew) override;
  QRectF inked(VelWhiteBoard::Size board) const override;
  bool isClipped() const override { return true; }
  void paint(QPainter& painter, VelWhiteBoard::Size board, const QRectF& part) const override;
  bool hits(QPointF at, double tolerance, VelWhiteBoard::Size board) const override;

 private:
  std::optional<QRectF> placeOn(VelWhiteBoard::Size board) const;
  QTransform turningOf(const QRectF& box) const;
  const Picture* picture() const;
  void paintPlaceholder(QPainter& painter, const QRectF& box, VelWhiteBoard::Size board) const;
  void paintCaption(QPainter& painter, const QRectF& box, VelWhiteBoard::Size board) const;

  const VelWhiteBoard::VelWbVecFile& file_;
  // What was decoded, and from which address: its length and hash.
  mutable std::unique_ptr<Picture> picture_;
  mutable std::optional<std::pair<std::size_t, std::size_t>> decoded_;
  mutable std::optional<Lettering> lettering_;
};

}  // namespace whiteboard
