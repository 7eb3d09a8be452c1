// One vector, drawn. Where the records leave a meaning to the clients, this program's choice stands
// at the function.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>

#include <cairo.h>

namespace lesson {

/// Draws any vector on a board of the given size. Commands, media lists and vectors without a shape
/// leave nothing.
void drawVector(cairo_t* context, const VelWhiteBoard::VelWbBaseVector& vector,
                VelWhiteBoard::Size size);

/// Whether the vector is an eraser's stroke.
bool isEraser(const VelWhiteBoard::VelWbBaseVector& vector);

/// Draws a stroke with the colour and operator that the context has: a smooth path through its
/// positions, round at its ends and corners. An `offset` of two numbers moves it by these fractions
/// of the board's width and height.
void drawStroke(cairo_t* context, const VelWhiteBoard::VelWbVecLine& stroke,
                VelWhiteBoard::Size size);

/// Draws the outline of a diagram. `points`, pairs of normalised coordinates, are the corners of a
/// triangle and the ends of a line; without them a line runs from the top left to the bottom right
/// of its box, and the other shapes fill their box. The radii of a circle are fractions of the
/// board's width and height; without them it fills its box.
void drawDiagram(cairo_t* context, const VelWhiteBoard::VelWbVecDiagram& diagram,
                 VelWhiteBoard::Size size);

/// Draws a text in its box, over its background colour. Lines are broken where they leave the box.
/// The font size counts on a board `ps` wide.
void drawText(cairo_t* context, const VelWhiteBoard::VelWbVecText& text, VelWhiteBoard::Size size);

/// Draws a placeholder that names what a client would show: an image with its url, a video or audio
/// with its title. `rotation` counts in degrees.
void drawPlaceholder(cairo_t* context, const VelWhiteBoard::VelWbVecFile& file,
                     VelWhiteBoard::Size size);

/// Draws a pointer at the cursor's position.
void drawCursor(cairo_t* context, const VelWhiteBoard::VelWbVecFile& cursor,
                VelWhiteBoard::Size size);

/// Draws the outline of any other box: a magnifier as a lens, a camera capture as a placeholder.
void drawBox(cairo_t* context, const VelWhiteBoard::VelWbVecSquare& box, VelWhiteBoard::Size size);

}  // namespace lesson
