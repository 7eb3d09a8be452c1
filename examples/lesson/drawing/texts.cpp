// Text boxes.
#include <algorithm>

#include "drawing/canvas.h"
#include "drawing/lettering.h"
#include "drawing/vector_drawing.h"

namespace lesson {

namespace vwb = VelWhiteBoard;

namespace {

// What a client shows when the record tells no size, in points of the base board.
constexpr double kUsualFontSize = 20;

// Space between the box and its text, in parts of the font size.
constexpr double kMargin = 0.25;

}  // namespace

void drawText(cairo_t* context, const vwb::VelWbVecText& text, vwb::Size size) {
  const auto box = drawableRect(vwb::VWBToolManager::convertVectorToNSRect(text, size));
  if (!box) return;
  setFont(context, text.fontName.value_or(""), text.fontSizeWith(size),
          onBoard(kUsualFontSize, size));
  cairo_font_extents_t font{};
  cairo_font_extents(context, &font);
  const double margin = kMargin * (font.ascent + font.descent);
  const std::vector<std::string> lines =
      linesOf(context, text.text.value_or(""), box->size.width - 2 * margin);

  if (const auto background = colourOf(text.bgColor)) {
    const double needed = font.height * static_cast<double>(lines.size()) + 2 * margin;
    vwb::Rect ground = *box;
    ground.size.height = std::max(ground.size.height, needed);
    setColour(context, *background);
    addRectangle(context, ground);
    cairo_fill(context);
  }
  setColour(context, colourOf(text.color).value_or(kInk));
  double base = box->origin.y + margin + font.ascent;
  for (const std::string& line : lines) {
    write(context, line, box->origin.x + margin, base);
    base += font.height;
  }
}

}  // namespace lesson
