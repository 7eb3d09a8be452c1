// What the drawing needs of cairo, with owners.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include <cairo.h>

namespace lesson {

struct DestroyContext {
  void operator()(cairo_t* context) const { cairo_destroy(context); }
};
struct DestroySurface {
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
using ContextPtr = std::unique_ptr<cairo_t, DestroyContext>;
using SurfacePtr = std::unique_ptr<cairo_surface_t, DestroySurface>;

/// Keeps the state of a context for a scope: colours, widths, fonts, clips.
class SavedState {
 public:
  explicit SavedState(cairo_t* context) : context_(context) { cairo_save(context_); }
  ~SavedState() { cairo_restore(context_); }
  SavedState(const SavedState&) = delete;
  SavedState& operator=(const SavedState&) = delete;

 private:
  cairo_t* context_;
};

struct Colour {
  double red = 0;
  double green = 0;
  double blue = 0;
  double alpha = 1;
};

/// The colour of #RRGGBBAA or #RRGGBB, with or without "#" and in either case; none when the text
/// is something else.
std::optional<Colour> colourOf(const std::optional<std::string>& text);

void setColour(cairo_t* context, const Colour& colour);

/// Where a client without a colour of its own draws.
inline constexpr Colour kInk{0.19, 0.19, 0.2, 1};

/// A view point that cairo can handle: records come from other machines, and nothing keeps them
/// from being far off the board or not finite at all. None for the latter.
std::optional<VelWhiteBoard::Point> drawablePoint(VelWhiteBoard::Point point);
/// The same for a rectangle; also none when it has no extent at all.
std::optional<VelWhiteBoard::Rect> drawableRect(VelWhiteBoard::Rect rect);

/// `points` points of the base board, whose width is 400, on a board of the given size.
double onBoard(double points, VelWhiteBoard::Size size);

/// Appends a rectangle to the path.
void addRectangle(cairo_t* context, const VelWhiteBoard::Rect& rect);

}  // namespace lesson
