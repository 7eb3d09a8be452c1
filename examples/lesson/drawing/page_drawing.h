// One page, drawn from its snapshot.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>

#include <cairo.h>

namespace lesson {

/// Draws the entries of a snapshot, in their order, onto white.
///
/// An eraser takes away what lies below it and nothing else: what was drawn later, and the page
/// itself, stay. The drawing is the same on every kind of cairo surface.
void drawPage(cairo_t* context, const VelWhiteBoard::VectorList& snapshot,
              VelWhiteBoard::Size size);

}  // namespace lesson
