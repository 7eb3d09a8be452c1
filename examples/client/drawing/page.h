// Whole pages.
#pragma once

#include <QPainter>
#include <VelWhiteBoard/VelWhiteBoard.h>
#include <memory>
#include <span>
#include <vector>

#include "drawing/shape.h"

namespace whiteboard {

using ShapeList = std::vector<std::unique_ptr<Shape>>;
/// The entries of a snapshot, in their order.
ShapeList shapesOf(const VelWhiteBoard::VectorList& entries);

/// Draws a page onto white: the shapes in their order, each over those before. What an eraser takes
/// away is taken off the entries, not off the page.
///
/// Files of shapes (SVG, PDF) cannot express erasing. There, the entries up to the last eraser that
/// takes something away become one picture, of twice the board's resolution; all later ones, and
/// without such an eraser all of them, stay shapes.
void paintPage(QPainter& painter, std::span<const std::unique_ptr<Shape>> shapes,
               VelWhiteBoard::Size board);

}  // namespace whiteboard
