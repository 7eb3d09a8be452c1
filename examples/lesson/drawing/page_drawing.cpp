#include "drawing/page_drawing.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <vector>

#include "drawing/canvas.h"
#include "drawing/vector_drawing.h"

namespace lesson {

namespace vwb = VelWhiteBoard;

namespace {

/// The whole pixels that a vector may touch; empty when it leaves nothing.
struct Extents {
  double left = 0;
  double top = 0;
  double right = 0;
  double bottom = 0;

  double width() const { return right - left; }
  double height() const { return bottom - top; }
  bool isEmpty() const { return right <= left || bottom <= top; }
};

Extents sharedPart(const Extents& a, const Extents& b) {
  return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
          std::min(a.bottom, b.bottom)};
}

Extents extentsOf(const vwb::VelWbBaseVector& vector, vwb::Size size) {
  const cairo_rectangle_t page{0, 0, size.width, size.height};
  const SurfacePtr surface(cairo_recording_surface_create(CAIRO_CONTENT_COLOR_ALPHA, &page));
  drawVector(ContextPtr(cairo_create(surface.get())).get(), vector, size);
  double left = 0;
  double top = 0;
  double width = 0;
  double height = 0;
  cairo_recording_surface_ink_extents(surface.get(), &left, &top, &width, &height);
  if (width <= 0 || height <= 0) return {};
  // A pixel more on each side: letters may be set a little differently on another surface.
  return {std::floor(left) - 1, std::floor(top) - 1, std::ceil(left + width) + 1,
          std::ceil(top + height) + 1};
}

struct Eraser {
  const vwb::VelWbVecLine* stroke;
  std::size_t index;
  Extents extents;
};

std::vector<Eraser> erasersOf(const vwb::VectorList& snapshot, vwb::Size size) {
  std::vector<Eraser> erasers;
  for (std::size_t i = 0; i < snapshot.size(); ++i) {
    if (!isEraser(*snapshot[i])) continue;
    const auto* const stroke = vwb::recordCast<const vwb::VelWbVecLine>(snapshot[i].get());
    erasers.push_back({stroke, i, extentsOf(*stroke, size)});
  }
  return erasers;
}

/// Whether the eraser takes anything away of the vector, looked up on a small picture of the part
/// that both may touch.
bool isTouched(const vwb::VelWbBaseVector& vector, const Extents& extents, const Eraser& eraser,
               vwb::Size size) {
  const Extents part = sharedPart(extents, eraser.extents);
  if (part.isEmpty()) return false;
  const SurfacePtr surface(cairo_image_surface_create(
      CAIRO_FORMAT_A8, static_cast<int>(part.width()), static_cast<int>(part.height())));
  const ContextPtr context(cairo_create(surface.get()));
  cairo_translate(context.get(), -part.left, -part.top);
  drawVector(context.get(), vector, size);
  cairo_set_source_rgb(context.get(), 0, 0, 0);
  cairo_set_operator(context.get(), CAIRO_OPERATOR_DEST_IN);  // keeps what both have inked
  drawStroke(context.get(), *eraser.stroke, size);
  cairo_surface_flush(surface.get());
  const auto bytes = static_cast<std::size_t>(cairo_image_surface_get_stride(surface.get()) *
                                              cairo_image_surface_get_height(surface.get()));
  const unsigned char* const data = cairo_image_surface_get_data(surface.get());
  return data != nullptr && std::any_of(data, data + bytes, [](unsigned char c) { return c != 0; });
}

/// Draws a vector on a layer of its own, takes away what the erasers cover, and puts the layer onto
/// the page. The layer is no larger than the vector: where a surface cannot express erasing, as SVG
/// files before cairo 1.18, the layer becomes a small picture and everything else stays a path.
void drawErased(cairo_t* context, const vwb::VelWbBaseVector& vector, const Extents& extents,
                const std::vector<Eraser>& erasers, vwb::Size size) {
  const SavedState state(context);
  cairo_rectangle(context, extents.left, extents.top, extents.width(), extents.height());
  cairo_clip(context);
  cairo_push_group(context);
  drawVector(context, vector, size);
  cairo_set_operator(context, CAIRO_OPERATOR_DEST_OUT);
  cairo_set_source_rgb(context, 0, 0, 0);
  for (const Eraser& eraser : erasers) drawStroke(context, *eraser.stroke, size);
  cairo_pop_group_to_source(context);
  cairo_paint(context);
}

/// Draws the entry at `index`, without what later erasers take away of it.
void drawEntry(cairo_t* context, const vwb::VelWbBaseVector& vector, std::size_t index,
               const std::vector<Eraser>& erasers, vwb::Size size) {
  if (erasers.empty() || erasers.back().index < index) return drawVector(context, vector, size);
  const Extents extents = extentsOf(vector, size);
  std::vector<Eraser> touching;
  std::copy_if(erasers.begin(), erasers.end(), std::back_inserter(touching),
               [&](const Eraser& eraser) {
                 return eraser.index > index && isTouched(vector, extents, eraser, size);
               });
  if (touching.empty()) return drawVector(context, vector, size);
  drawErased(context, vector, extents, touching, size);
}

}  // namespace

void drawPage(cairo_t* context, const vwb::VectorList& snapshot, vwb::Size size) {
  cairo_set_source_rgb(context, 1, 1, 1);
  cairo_paint(context);
  const std::vector<Eraser> erasers = erasersOf(snapshot, size);
  for (std::size_t i = 0; i < snapshot.size(); ++i) {
    if (!isEraser(*snapshot[i])) drawEntry(context, *snapshot[i], i, erasers, size);
  }
}

}  // namespace lesson
