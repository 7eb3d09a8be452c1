// What a client would fetch from elsewhere, and boxes without content.
#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

#include "drawing/canvas.h"
#include "drawing/lettering.h"
#include "drawing/vector_drawing.h"

namespace lesson {

namespace vwb = VelWhiteBoard;

namespace {

constexpr Colour kFill{0.93, 0.94, 0.96, 1};
constexpr Colour kFrame{0.62, 0.66, 0.72, 1};
constexpr Colour kSign{0.72, 0.76, 0.82, 1};
constexpr Colour kCaption{0.35, 0.39, 0.45, 1};
constexpr double kCaptionSize = 4.5;  // points of the base board

vwb::Point centreOf(const vwb::Rect& box) {
  return {box.origin.x + box.size.width / 2, box.origin.y + box.size.height / 2};
}

void drawFrame(cairo_t* context, const vwb::Rect& box, vwb::Size size) {
  addRectangle(context, box);
  setColour(context, kFill);
  cairo_fill_preserve(context);
  setColour(context, kFrame);
  cairo_set_line_width(context, onBoard(0.6, size));
  cairo_stroke(context);
}

/// A sun over two mountains, in a square of the given side.
void drawImageSign(cairo_t* context, vwb::Point centre, double side) {
  const auto at = [&](double x, double y) {
    cairo_line_to(context, centre.x + x * side, centre.y + y * side);
  };
  at(-0.5, 0.35), at(-0.15, -0.15), at(0.05, 0.12), at(0.2, -0.05), at(0.5, 0.35);
  cairo_close_path(context);
  cairo_new_sub_path(context);
  cairo_arc(context, centre.x + 0.25 * side, centre.y - 0.25 * side, 0.1 * side, 0,
            2 * std::numbers::pi);
  cairo_fill(context);
}

/// A disc with a triangle that points to the right.
void drawPlaySign(cairo_t* context, vwb::Point centre, double side) {
  cairo_arc(context, centre.x, centre.y, side * 0.45, 0, 2 * std::numbers::pi);
  cairo_fill(context);
  setColour(context, kFill);
  cairo_move_to(context, centre.x - 0.13 * side, centre.y - 0.2 * side);
  cairo_line_to(context, centre.x + 0.22 * side, centre.y);
  cairo_line_to(context, centre.x - 0.13 * side, centre.y + 0.2 * side);
  cairo_close_path(context);
  cairo_fill(context);
}

/// Bars of different height, as of a sound.
void drawSoundSign(cairo_t* context, vwb::Point centre, double side) {
  double x = -0.4;
  for (const double height : {0.2, 0.5, 0.85, 0.6, 0.9, 0.45, 0.2}) {
    cairo_rectangle(context, centre.x + x * side, centre.y - height * side / 2, 0.07 * side,
                    height * side);
    x += 0.12;
  }
  cairo_fill(context);
}

void drawCaption(cairo_t* context, const std::string& caption, const vwb::Rect& box,
                 vwb::Size size) {
  setFont(context, "", onBoard(kCaptionSize, size), kCaptionSize);
  const double margin = onBoard(2, size);
  const std::string line = shortened(context, caption, box.size.width - 2 * margin);
  setColour(context, kCaption);
  write(context, line, box.origin.x + margin, box.origin.y + box.size.height - margin);
}

/// Turns what follows about the middle of the box.
void turn(cairo_t* context, const vwb::Rect& box, double degrees) {
  if (!std::isfinite(degrees)) return;
  const vwb::Point centre = centreOf(box);
  cairo_translate(context, centre.x, centre.y);
  cairo_rotate(context, std::fmod(degrees, 360.0) * std::numbers::pi / 180);
  cairo_translate(context, -centre.x, -centre.y);
}

std::string captionOf(const vwb::VelWbVecFile& file) {
  const auto* const media = vwb::recordCast<const vwb::VelWbVecVideo>(&file);
  if (media != nullptr && !media->title.value_or("").empty()) return *media->title;
  return file.url.value_or("");
}

}  // namespace

void drawPlaceholder(cairo_t* context, const vwb::VelWbVecFile& file, vwb::Size size) {
  const auto box = drawableRect(vwb::VWBToolManager::convertVectorToNSRect(file, size));
  if (!box || box->size.width <= 0 || box->size.height <= 0) return;
  turn(context, *box, file.rotation);
  drawFrame(context, *box, size);
  const double side = std::min(box->size.width, box->size.height) * 0.5;
  const auto* const media = vwb::recordCast<const vwb::VelWbVecVideo>(&file);
  setColour(context, kSign);
  if (media == nullptr) {
    drawImageSign(context, centreOf(*box), side);
  } else if (media->kind == vwb::VelWBVectorStrKindAudio) {
    drawSoundSign(context, centreOf(*box), side);
  } else {
    drawPlaySign(context, centreOf(*box), side);
  }
  drawCaption(context, captionOf(file), *box, size);
}

void drawCursor(cairo_t* context, const vwb::VelWbVecFile& cursor, vwb::Size size) {
  const auto tip = drawablePoint(vwb::VWBToolManager::convertVectorToPoint(cursor, size));
  if (!tip) return;
  const double unit = onBoard(1, size);
  const auto at = [&](double x, double y) {
    cairo_line_to(context, tip->x + x * unit, tip->y + y * unit);
  };
  at(0, 0), at(0, 10), at(2.4, 7.8), at(4, 11.4), at(5.6, 10.7), at(4, 7.2), at(7.2, 7);
  cairo_close_path(context);
  setColour(context, kInk);
  cairo_fill_preserve(context);
  cairo_set_source_rgb(context, 1, 1, 1);
  cairo_set_line_width(context, 0.5 * unit);
  cairo_stroke(context);
}

void drawBox(cairo_t* context, const vwb::VelWbVecSquare& box, vwb::Size size) {
  const auto place = drawableRect(vwb::VWBToolManager::convertVectorToNSRect(box, size));
  if (!place) return;
  if (vwb::recordCast<const vwb::VelWbCaptureInfo>(&box) != nullptr) {
    drawFrame(context, *place, size);
    setColour(context, kSign);
    drawImageSign(context, centreOf(*place), std::min(place->size.width, place->size.height) * 0.5);
    return;
  }
  addRectangle(context, *place);
  setColour(context, kFrame);
  cairo_set_line_width(context,
                       onBoard(box.type == vwb::VelWBVectorStrMagnifier ? 1.5 : 0.6, size));
  cairo_stroke(context);
}

}  // namespace lesson
