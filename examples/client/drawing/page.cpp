#include "drawing/page.h"

#include <QImage>
#include <QTransform>
#include <cstddef>

#include "drawing/canvas.h"

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

using Shapes = std::span<const std::unique_ptr<Shape>>;

// Pixels a view point of what becomes a picture within a file of shapes.
constexpr int kPixelsPerPoint = 2;

QImage emptyLayer(QSize size) {
  QImage layer(size, QImage::Format_ARGB32_Premultiplied);
  if (!layer.isNull()) layer.fill(Qt::transparent);
  return layer;
}

/// The shapes without a background, on a layer of their own.
/// @param toLayer from view points to the layer's pixels
QImage layerOf(Shapes shapes, vwb::Size board, QSize size, const QTransform& toLayer) {
  QImage layer = emptyLayer(size);
  if (layer.isNull()) return layer;
  QPainter painter(&layer);
  painter.setTransform(toLayer);
  for (const auto& shape : shapes) shape->paint(painter, board, areaOf(board));
  return layer;
}

/// How many shapes there are up to the last eraser that takes something away, and with it.
std::size_t countOfErased(Shapes shapes, vwb::Size board) {
  std::size_t lastEraser = shapes.size();
  while (lastEraser > 0 && !shapes[lastEraser - 1]->isEraser()) --lastEraser;
  if (lastEraser == 0) return 0;
  QImage layer = emptyLayer(areaOf(board).toAlignedRect().size());
  if (layer.isNull()) return 0;
  QPainter painter(&layer);
  std::size_t count = 0;
  for (std::size_t i = 0; i < lastEraser; ++i) {
    const QRect touched = shapes[i]->bounds(board).toAlignedRect();
    const QImage before = shapes[i]->isEraser() ? layer.copy(touched) : QImage();
    shapes[i]->paint(painter, board, areaOf(board));
    if (!before.isNull() && layer.copy(touched) != before) count = i + 1;
  }
  return count;
}

void paintAsPicture(QPainter& painter, Shapes shapes, vwb::Size board) {
  QRectF touched;
  for (const auto& shape : shapes) touched = touched.united(shape->bounds(board));
  const QRect area = touched.toAlignedRect();
  QTransform toLayer = QTransform::fromScale(kPixelsPerPoint, kPixelsPerPoint);
  toLayer.translate(-area.x(), -area.y());
  const QImage layer = layerOf(shapes, board, area.size() * kPixelsPerPoint, toLayer);
  if (!layer.isNull()) painter.drawImage(QRectF(area), layer);
}

void paintPixels(QPainter& painter, Shapes shapes, vwb::Size board) {
  const QTransform toDevice = painter.deviceTransform();
  const QRect pixels = toDevice.mapRect(areaOf(board)).toAlignedRect();
  const QTransform toLayer = toDevice * QTransform::fromTranslate(-pixels.x(), -pixels.y());
  const QImage layer = layerOf(shapes, board, pixels.size(), toLayer);
  const SavedState state(painter);
  painter.setWorldTransform(toDevice.inverted() * painter.worldTransform());  // counts in pixels
  painter.drawImage(pixels.topLeft(), layer);
}

}  // namespace

ShapeList shapesOf(const vwb::VectorList& entries) {
  ShapeList shapes;
  shapes.reserve(entries.size());
  for (const vwb::VectorPtr& entry : entries) shapes.push_back(std::make_unique<Shape>(entry));
  return shapes;
}

void paintPage(QPainter& painter, std::span<const std::unique_ptr<Shape>> shapes, vwb::Size board) {
  if (!isDrawable(board)) return;
  painter.fillRect(areaOf(board), Qt::white);
  if (!isVector(painter)) return paintPixels(painter, shapes, board);
  painter.setRenderHint(QPainter::LosslessImageRendering);
  const std::size_t erased = countOfErased(shapes, board);
  if (erased > 0) paintAsPicture(painter, shapes.first(erased), board);
  for (const auto& shape : shapes.subspan(erased)) {
    if (!shape->isEraser()) shape->paint(painter, board, areaOf(board));
  }
}

}  // namespace whiteboard
