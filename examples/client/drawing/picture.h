// Pictures that come within a record.
#pragma once

#include <QImage>
#include <QPainter>
#include <QRectF>
#include <QTransform>
#include <memory>
#include <string>
#include <vector>

namespace whiteboard {

/// A decoded picture.
///
/// Only the content of `data:` addresses (PNG or JPEG, base64) is decoded. A file's address comes
/// from another machine and says nothing about the files of this one. Limits: 16 megapixels a
/// picture, 512 megabytes for all pictures that are kept; large ones are kept smaller.
class Picture {
 public:
  /// Null when there is no picture at the address, or none that is within the limits.
  static std::unique_ptr<Picture> fromUrl(const std::string& url);

  ~Picture();
  Picture(const Picture&) = delete;
  Picture& operator=(const Picture&) = delete;

  /// Draws the picture into the box, turned: `turning` comes before the painter's transformation.
  /// Only what may touch `part`, which is not turned.
  void paint(QPainter& painter, const QRectF& box, const QTransform& turning,
             const QRectF& part) const;

 private:
  explicit Picture(QImage image);
  const QImage& levelFor(QSizeF pixels) const;

  // The picture, and halves of it, as far as they were needed.
  mutable std::vector<QImage> levels_;
  std::size_t bytes_;
};

}  // namespace whiteboard
