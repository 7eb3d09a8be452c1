#include "VelWhiteBoard/vectors/vector_defines.h"

#include <array>

namespace VelWhiteBoard {

namespace {

/// By code; the first code is 1.
static_assert(VelWBVectorTypeCursor == 1);
constexpr std::array kTypeNames{
    VelWBVectorStrCursor,    VelWBVectorStrText,      VelWBVectorStrLine,
    VelWBVectorStrEraser,    VelWBVectorStrImage,     VelWBVectorStrCamera,
    VelWBVectorStrMicPhone,  VelWBVectorStrMedia,     VelWBVectorStrInstruction,
    VelWBVectorStrClear,     VelWBVectorStrRemove,    VelWBVectorStrSwitchPage,
    VelWBVectorStrMarkerPen, VelWBVectorStrMagnifier, VelWBVectorStrDiagram,
    VelWBVectorStrMediaList, VelWBVectorStrOffset,
};
static_assert(kTypeNames.size() == VelWBVectorTypeOffset);

/// By code; the first code is 0.
constexpr std::array kKindNames{
    VelWBVectorStrKindRectangle, VelWBVectorStrKindCircle, VelWBVectorStrKindEllipse,
    VelWBVectorStrKindTriangle,  VelWBVectorStrKindLine,   VelWBVectorStrKindArrowLine,
    VelWBVectorStrKindRhombus,
};

}  // namespace

std::optional<std::string> VelWbVectorDefines::vectorType(std::uint64_t code) {
  if (code < 1 || code > kTypeNames.size()) return std::nullopt;
  return std::string(kTypeNames[code - 1]);
}

std::string VelWbVectorDefines::diagramKind(std::int64_t kind) {
  // Compared as unsigned, so that a negative code is beyond the table too.
  const auto code = static_cast<std::uint64_t>(kind);
  return std::string(code < kKindNames.size() ? kKindNames[code] : VelWBVectorStrKindCircle);
}

bool VelWbVectorDefines::isLine(const std::optional<std::string>& type) {
  return type == VelWBVectorStrLine;
}

bool VelWbVectorDefines::isMarkerPen(const std::optional<std::string>& type) {
  return type == VelWBVectorStrMarkerPen;
}

bool VelWbVectorDefines::isEraser(const std::optional<std::string>& type) {
  return type == VelWBVectorStrEraser;
}

}  // namespace VelWhiteBoard
