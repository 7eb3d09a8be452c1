/// @file
/// The names of vector types and of diagram kinds.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "VelWhiteBoard/foundation/export.h"

namespace VelWhiteBoard {

/// @name Type names
/// The values of a vector's `type`, in the order of their codes, 1 to 17.
/// @{
inline constexpr std::string_view VelWBVectorStrCursor = "cursor";
inline constexpr std::string_view VelWBVectorStrText = "text";
inline constexpr std::string_view VelWBVectorStrLine = "line";
inline constexpr std::string_view VelWBVectorStrEraser = "eraser";
inline constexpr std::string_view VelWBVectorStrImage = "image";
inline constexpr std::string_view VelWBVectorStrCamera = "camera";
inline constexpr std::string_view VelWBVectorStrMicPhone = "micPhone";
inline constexpr std::string_view VelWBVectorStrMedia = "media";
inline constexpr std::string_view VelWBVectorStrInstruction = "instruction";
inline constexpr std::string_view VelWBVectorStrClear = "clear";
inline constexpr std::string_view VelWBVectorStrRemove = "remove";
inline constexpr std::string_view VelWBVectorStrSwitchPage = "switchPage";
inline constexpr std::string_view VelWBVectorStrMarkerPen = "markerPen";
inline constexpr std::string_view VelWBVectorStrMagnifier = "magnifier";
inline constexpr std::string_view VelWBVectorStrDiagram = "diagram";
inline constexpr std::string_view VelWBVectorStrMediaList = "mediaList";
inline constexpr std::string_view VelWBVectorStrOffset = "offset";
/// @}

/// @name Kind names
/// The values of a diagram's `kind`; the last two are kinds of media.
/// @{
inline constexpr std::string_view VelWBVectorStrKindRectangle = "rectangle";
inline constexpr std::string_view VelWBVectorStrKindCircle = "circle";
inline constexpr std::string_view VelWBVectorStrKindEllipse = "ellipse";
inline constexpr std::string_view VelWBVectorStrKindTriangle = "triangle";
/// The same string as `VelWBVectorStrLine`; a diagram of this kind still has the type "diagram".
inline constexpr std::string_view VelWBVectorStrKindLine = "line";
inline constexpr std::string_view VelWBVectorStrKindArrowLine = "arrowLine";
inline constexpr std::string_view VelWBVectorStrKindRhombus = "rhombus";
inline constexpr std::string_view VelWBVectorStrKindVideo = "video";
inline constexpr std::string_view VelWBVectorStrKindAudio = "audio";
/// @}

/// Look-ups of names. All may be called from any thread.
class VELWHITEBOARD_EXPORT VelWbVectorDefines {
 public:
  VelWbVectorDefines() = delete;

  /// The type name of a code, 1 "cursor" to 17 "offset"; absent for every other code.
  static std::optional<std::string> vectorType(std::uint64_t code);
  /// The kind name of a code, 0 "rectangle" to 6 "rhombus"; "circle" for every other code.
  static std::string diagramKind(std::int64_t kind);

  /// Whether `type` is "line".
  static bool isLine(const std::optional<std::string>& type);
  /// Whether `type` is "markerPen".
  static bool isMarkerPen(const std::optional<std::string>& type);
  /// Whether `type` is "eraser".
  static bool isEraser(const std::optional<std::string>& type);
};

}  // namespace VelWhiteBoard
