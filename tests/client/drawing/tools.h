// Short ways to make entries and to look at what is drawn.
#pragma once

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QRect>
#include <VelWhiteBoard/VelWhiteBoard.h>
#include <initializer_list>
#include <memory>
#include <string>

#include "drawing/page.h"

namespace whiteboard {

namespace vwb = VelWhiteBoard;

using LinePtr = std::shared_ptr<vwb::VelWbVecLine>;

inline constexpr vwb::Size kBoard{400, 225};
inline const QSize kPixels(400, 225);

/// A stroke of the given width in view points of kBoard, through these view points of kBoard.
LinePtr stroke(std::string_view type, std::initializer_list<QPointF> through, int width,
               const std::string& color = "#FF0000FF");
/// A box of a class at a place in view points of kBoard.
template <class Box>
std::shared_ptr<Box> box(std::string_view type, const QRectF& at) {
  auto made = Box::initWithType(type);
  made->x = at.x() / kBoard.width - 0.5;
  made->y = at.y() / kBoard.height - 0.5;
  made->w = at.width() / kBoard.width;
  made->h = at.height() / kBoard.height;
  return made;
}
std::shared_ptr<vwb::VelWbVecDiagram> diagram(std::string_view kind, const QRectF& at, int width);
std::shared_ptr<vwb::VelWbVecText> text(const std::string& words, const QRectF& at, double size);

/// The entries without a background, all of them drawn whole.
/// @param scale pixels a view point
QImage layerOf(const ShapeList& shapes, vwb::Size board = kBoard, double scale = 1);
/// The smallest rectangle around all pixels that are not transparent.
QRect inkOf(const QImage& layer);
/// How far the most different channel of any pixel is.
int largestDifference(const QImage& a, const QImage& b);
/// The mean difference of all channels of all pixels.
double meanDifference(const QImage& a, const QImage& b);
/// A picture as a data: address.
std::string urlOf(const QImage& image, const char* format = "png");

}  // namespace whiteboard
