#include "drawing/picture.h"

#include <QBuffer>
#include <QByteArray>
#include <QImageReader>
#include <QTransform>
#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <string_view>
#include <utility>

#include "drawing/canvas.h"
#include "drawing/squares.h"

namespace whiteboard {

namespace {

constexpr std::size_t kLongestUrl = std::size_t{32} << 20;
constexpr qint64 kMostPixels = 16'000'000;
constexpr int kAllocationLimit = 128;  // megabytes: 16 megapixels of 8 bytes
constexpr int kLargestSide = 2048;     // as which a picture is kept
constexpr std::size_t kMostBytes = std::size_t{512} << 20;

std::atomic<std::size_t> bytesKept{0};

/// The content of the address; empty when it is not within it.
QByteArray contentOf(std::string_view url, const char*& format) {
  constexpr std::string_view kPng = "data:image/png;base64,";
  constexpr std::string_view kJpeg = "data:image/jpeg;base64,";
  if (url.size() > kLongestUrl) return {};
  const bool isPng = url.starts_with(kPng);
  if (!isPng && !url.starts_with(kJpeg)) return {};
  format = isPng ? "png" : "jpeg";
  url.remove_prefix(isPng ? kPng.size() : kJpeg.size());
  return QByteArray::fromBase64(
      QByteArray::fromRawData(url.data(), static_cast<qsizetype>(url.size())));
}

QImage decoded(const std::string& url) {
  const char* format = nullptr;
  QByteArray content = contentOf(url, format);
  if (content.isEmpty()) return {};
  QBuffer buffer(&content);
  QImageReader::setAllocationLimit(kAllocationLimit);
  QImageReader reader(&buffer, format);
  reader.setDecideFormatFromContent(false);
  reader.setAutoDetectImageFormat(false);
  reader.setAutoTransform(true);
  const QSize size = reader.size();
  if (size.isEmpty() || qint64{size.width()} * size.height() > kMostPixels) return {};
  QImage image = reader.read();
  if (image.isNull()) return {};
  if (std::max(image.width(), image.height()) > kLargestSide) {
    image = image.scaled(kLargestSide, kLargestSide, Qt::KeepAspectRatio, Qt::SmoothTransformation);
  }
  return std::move(image).convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

}  // namespace

std::unique_ptr<Picture> Picture::fromUrl(const std::string& url) {
  QImage image = decoded(url);
  if (image.isNull()) return nullptr;
  // Halves of it need a third more.
  const auto bytes = static_cast<std::size_t>(image.sizeInBytes()) * 4 / 3;
  if (bytesKept.load() + bytes > kMostBytes) return nullptr;
  return std::unique_ptr<Picture>(new Picture(std::move(image)));
}

Picture::Picture(QImage image) : bytes_(static_cast<std::size_t>(image.sizeInBytes()) * 4 / 3) {
  levels_.push_back(std::move(image));
  bytesKept += bytes_;
}

Picture::~Picture() { bytesKept -= bytes_; }

/// The smallest level that has at least that many pixels: where a picture is drawn much smaller
/// than it is, whole pixels would be left out.
const QImage& Picture::levelFor(QSizeF pixels) const {
  std::size_t level = 0;
  while (true) {
    const QSize half(levels_[level].width() / 2, levels_[level].height() / 2);
    if (half.isEmpty() || half.width() < pixels.width() || half.height() < pixels.height()) break;
    if (++level == levels_.size()) {
      levels_.push_back(
          levels_.back().scaled(half, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    }
  }
  return levels_[level];
}

void Picture::paint(QPainter& painter, const QRectF& box, const QTransform& turning,
                    const QRectF& part) const {
  if (isVector(painter)) {
    const SavedState state(painter);
    painter.setTransform(turning, true);
    painter.drawImage(box, levels_.front());
    return;
  }
  const QRectF wanted = turning.mapRect(box).adjusted(-1, -1, 1, 1).intersected(part);
  if (wanted.isEmpty()) return;
  const double scale = std::sqrt(std::abs(painter.deviceTransform().determinant()));
  const QImage& level = levelFor(box.size() * scale);
  paintInSquares(painter, wanted, [&](QPainter& into, const QRectF&) {
    into.setTransform(turning, true);
    into.drawImage(box, level);
    return true;
  });
}

}  // namespace whiteboard
