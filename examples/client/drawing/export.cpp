#include "drawing/export.h"

#include <QBuffer>
#include <QByteArray>
#include <QMarginsF>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#include <QSvgGenerator>

#include "drawing/canvas.h"
#include "drawing/page.h"

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

// In points of 1/72 inch; with 16:9, the height is a whole number of them, too.
constexpr double kSheetWidth = 832;
constexpr int kDotsPerInch = 1200;
constexpr int kSvgDotsPerInch = 96;  // of which one is a pixel for whoever shows the file

vwb::Size boardOf(QSize size) {
  return {static_cast<double>(size.width()), static_cast<double>(size.height())};
}

bool fail(const QString& path, const QString& reason, QString& problem) {
  problem = QStringLiteral("cannot write %1: %2").arg(path, reason);
  return false;
}

bool failToDraw(const QString& path, QString& problem) {
  return fail(path, QStringLiteral("the page cannot be drawn in this size"), problem);
}

bool save(const QString& path, const QByteArray& bytes, QString& problem) {
  QSaveFile file(path);
  // `commit` would not notice that the last bytes, which are still in memory, cannot be written.
  const bool isWritten =
      file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush();
  const QString reason = file.errorString();
  if (!isWritten) file.cancelWriting();
  if (isWritten && file.commit()) return true;
  return fail(path, isWritten ? file.errorString() : reason, problem);
}

}  // namespace

QImage pictureOf(const vwb::VectorList& entries, QSize size) {
  const vwb::Size board = boardOf(size);
  if (!isDrawable(board)) return {};
  QImage picture(size, QImage::Format_RGB32);
  if (picture.isNull()) return picture;
  QPainter painter(&picture);
  paintPage(painter, shapesOf(entries), board);
  return picture;
}

bool savePng(const QString& path, const vwb::VectorList& entries, QSize size, QString& problem) {
  const QImage picture = pictureOf(entries, size);
  QBuffer bytes;
  bytes.open(QIODevice::WriteOnly);
  if (picture.isNull() || !picture.save(&bytes, "png")) return failToDraw(path, problem);
  return save(path, bytes.data(), problem);
}

bool saveSvg(const QString& path, const vwb::VectorList& entries, QSize size, QString& problem) {
  const vwb::Size board = boardOf(size);
  if (!isDrawable(board)) return failToDraw(path, problem);
  QBuffer bytes;
  bytes.open(QIODevice::WriteOnly);
  QSvgGenerator generator;
  generator.setOutputDevice(&bytes);
  generator.setResolution(kSvgDotsPerInch);
  generator.setSize(size);
  generator.setViewBox(QRect(QPoint(), size));
  generator.setTitle(QStringLiteral("Whiteboard"));
  QPainter painter;
  if (!painter.begin(&generator)) return failToDraw(path, problem);
  paintPage(painter, shapesOf(entries), board);
  painter.end();
  return save(path, bytes.data(), problem);
}

bool savePdf(const QString& path, const std::vector<vwb::VectorList>& pages, QSize size,
             QString& problem) {
  const vwb::Size board = boardOf(size);
  if (pages.empty()) return fail(path, QStringLiteral("there are no pages"), problem);
  if (!isDrawable(board)) return failToDraw(path, problem);
  QBuffer bytes;
  bytes.open(QIODevice::WriteOnly);
  {
    QPdfWriter writer(&bytes);
    const QSizeF sheet(kSheetWidth, kSheetWidth * board.height / board.width);
    writer.setPageSize(QPageSize(sheet, QPageSize::Point, QString(), QPageSize::ExactMatch));
    writer.setPageMargins(QMarginsF());
    writer.setResolution(kDotsPerInch);
    writer.setTitle(QStringLiteral("Whiteboard"));
    QPainter painter;
    if (!painter.begin(&writer)) return failToDraw(path, problem);
    for (std::size_t i = 0; i < pages.size(); ++i) {
      if (i > 0 && !writer.newPage()) return failToDraw(path, problem);
      painter.resetTransform();
      painter.scale(writer.width() / board.width, writer.height() / board.height);
      paintPage(painter, shapesOf(pages[i]), board);
    }
    painter.end();
  }
  return save(path, bytes.data(), problem);
}

}  // namespace whiteboard
