#include "drawing/vector_drawing.h"

#include "drawing/canvas.h"

namespace lesson {

namespace vwb = VelWhiteBoard;

void drawVector(cairo_t* context, const vwb::VelWbBaseVector& vector, vwb::Size size) {
  const SavedState state(context);
  if (const auto* line = vwb::recordCast<const vwb::VelWbVecLine>(&vector)) {
    setColour(context, colourOf(line->color).value_or(kInk));
    drawStroke(context, *line, size);
  } else if (const auto* diagram = vwb::recordCast<const vwb::VelWbVecDiagram>(&vector)) {
    drawDiagram(context, *diagram, size);
  } else if (const auto* text = vwb::recordCast<const vwb::VelWbVecText>(&vector)) {
    drawText(context, *text, size);
  } else if (const auto* file = vwb::recordCast<const vwb::VelWbVecFile>(&vector)) {
    if (file->type == vwb::VelWBVectorStrCursor) {
      drawCursor(context, *file, size);
    } else {
      drawPlaceholder(context, *file, size);
    }
  } else if (const auto* box = vwb::recordCast<const vwb::VelWbVecSquare>(&vector)) {
    drawBox(context, *box, size);
  }
}

bool isEraser(const vwb::VelWbBaseVector& vector) {
  return vwb::VelWbVectorDefines::isEraser(vector.type) &&
         vwb::recordCast<const vwb::VelWbVecLine>(&vector) != nullptr;
}

}  // namespace lesson
