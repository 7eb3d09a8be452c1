// Words on a picture.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <string>
#include <vector>

#include <cairo.h>

namespace lesson {

/// Chooses a font; an empty name is the sans-serif one. A size that is no size becomes `otherwise`.
void setFont(cairo_t* context, const std::string& name, double fontSize, double otherwise);

/// The width that the text takes in the context's font.
double widthOf(cairo_t* context, const std::string& text);

/// The lines of a text, broken at its line feeds and, where a line is wider than `width`, between
/// words. A word that alone is wider keeps a line of its own. Of a text that no page could show
/// whole, only the beginning.
std::vector<std::string> linesOf(cairo_t* context, const std::string& text, double width);

/// The text, or an ellipsis and its end when it is wider than `width`: the end of an address tells
/// more than its beginning.
std::string shortened(cairo_t* context, const std::string& text, double width);

/// Writes one line with its left end on the base line at `left`, `base`.
void write(cairo_t* context, const std::string& line, double left, double base);

}  // namespace lesson
