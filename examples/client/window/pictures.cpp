#include "window/pictures.h"

#include <QBuffer>
#include <QByteArray>
#include <QPainter>
#include <VelWhiteBoard/VelWhiteBoard.h>
#include <algorithm>

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

constexpr int kLongestSide = 1280;
/// Base64 makes it a third longer, and a message has a megabyte.
constexpr qsizetype kMostBytes = 600'000;
/// A new picture takes at most this part of the board.
constexpr double kMostOfBoard = 0.4;

QByteArray encoded(const QImage& picture, const char* format, int quality) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  return picture.save(&buffer, format, quality) ? bytes : QByteArray();
}

/// The picture as the text of an address, small enough to be sent; empty when that fails.
QByteArray addressOf(QImage picture) {
  if (std::max(picture.width(), picture.height()) > kLongestSide) {
    picture =
        picture.scaled(kLongestSide, kLongestSide, Qt::KeepAspectRatio, Qt::SmoothTransformation);
  }
  const QByteArray lossless = encoded(picture, "PNG", -1);
  if (!lossless.isEmpty() && lossless.size() <= kMostBytes) {
    return "data:image/png;base64," + lossless.toBase64();
  }
  // The other format has no transparency.
  QImage opaque(picture.size(), QImage::Format_RGB32);
  opaque.fill(Qt::white);
  QPainter(&opaque).drawImage(0, 0, picture);
  for (const int quality : {90, 75, 60, 40, 20}) {
    const QByteArray smaller = encoded(opaque, "JPEG", quality);
    if (!smaller.isEmpty() && smaller.size() <= kMostBytes) {
      return "data:image/jpeg;base64," + smaller.toBase64();
    }
  }
  return {};
}

}  // namespace

bool insertPicture(Session& session, const QImage& picture, QPointF middle, vwb::Size board) {
  if (picture.isNull()) return false;
  const QByteArray address = addressOf(picture);
  if (address.isEmpty()) return false;
  auto image = vwb::recordPointerCast<vwb::VelWbVecFile>(
      vwb::VWBToolManager::genVectorWithTool(vwb::VelWBToolImage, session.newIdentifier()));
  const QSizeF size =
      QSizeF(picture.size())
          .scaled(QSizeF(board.width, board.height) * kMostOfBoard, Qt::KeepAspectRatio);
  const QPointF corner = middle - QPointF(size.width() / 2, size.height() / 2);
  vwb::VWBToolManager::convertPoint({corner.x(), corner.y()}, {size.width(), size.height()}, *image,
                                    board);
  image->url = address.toStdString();
  session.draw(image);
  return true;
}

}  // namespace whiteboard
