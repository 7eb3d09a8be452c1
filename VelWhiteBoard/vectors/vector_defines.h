/// @file
/// The names and codes of vector types, and the names of diagram kinds.
#pragma once

#include <concepts>
#include <cstddef>
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

/// @name Type codes
/// The numbers of the types above: what `VelWbVectorDefines::vectorType` and the tool manager's
/// `genVectorWithType` take. Every other number is no type.
/// @{
inline constexpr std::uint64_t VelWBVectorTypeCursor = 1;
inline constexpr std::uint64_t VelWBVectorTypeText = 2;
inline constexpr std::uint64_t VelWBVectorTypeLine = 3;
inline constexpr std::uint64_t VelWBVectorTypeEraser = 4;
inline constexpr std::uint64_t VelWBVectorTypeImage = 5;
inline constexpr std::uint64_t VelWBVectorTypeCamera = 6;
inline constexpr std::uint64_t VelWBVectorTypeMicPhone = 7;
inline constexpr std::uint64_t VelWBVectorTypeMedia = 8;
inline constexpr std::uint64_t VelWBVectorTypeInstruction = 9;
inline constexpr std::uint64_t VelWBVectorTypeClear = 10;
inline constexpr std::uint64_t VelWBVectorTypeRemove = 11;
inline constexpr std::uint64_t VelWBVectorTypeSwitchPage = 12;
inline constexpr std::uint64_t VelWBVectorTypeMarkerPen = 13;
inline constexpr std::uint64_t VelWBVectorTypeMagnifier = 14;
inline constexpr std::uint64_t VelWBVectorTypeDiagram = 15;
inline constexpr std::uint64_t VelWBVectorTypeMediaList = 16;
inline constexpr std::uint64_t VelWBVectorTypeOffset = 17;
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

namespace vector_names {

/// How a name may be given beside a string: as one of the constants above or any other
/// `std::string_view`, or as a C string. Exactly these types: everything that converts to a
/// `std::optional<std::string>` still does.
template <class T>
concept Unowned = std::same_as<T, std::string_view> || std::same_as<T, std::nullptr_t> ||
    std::same_as<T, const char*> || std::same_as<T, char*>;

/// The name that is given; absent for a null pointer. A view without characters is an empty name.
constexpr std::optional<std::string_view> given(std::string_view name) noexcept { return name; }
constexpr std::optional<std::string_view> given(const char* name) noexcept {
  if (name == nullptr) return std::nullopt;
  return std::string_view(name);
}

/// A string of its own for the name that is given; absent for a null pointer.
template <Unowned Name>
std::optional<std::string> owned(Name name) {
  return std::optional<std::string>(given(name));
}

}  // namespace vector_names

/// Look-ups of names. All may be called from any thread. A name is given as a string, as one of the
/// constants or as a C string; an absent name and a null pointer equal no name.
class VELWHITEBOARD_EXPORT VelWbVectorDefines {
 public:
  VelWbVectorDefines() = delete;

  /// The type name of a code, 1 "cursor" to 17 "offset"; absent for every other code.
  static std::optional<std::string> vectorType(std::uint64_t code);
  /// The kind name of a code, 0 "rectangle" to 6 "rhombus"; "circle" for every other code.
  static std::string diagramKind(std::int64_t kind);

  /// Whether `type` is "line".
  static bool isLine(const std::optional<std::string>& type);
  template <vector_names::Unowned Name>
  static constexpr bool isLine(Name type) noexcept {
    return vector_names::given(type) == VelWBVectorStrLine;
  }
  /// Whether `type` is "markerPen".
  static bool isMarkerPen(const std::optional<std::string>& type);
  template <vector_names::Unowned Name>
  static constexpr bool isMarkerPen(Name type) noexcept {
    return vector_names::given(type) == VelWBVectorStrMarkerPen;
  }
  /// Whether `type` is "eraser".
  static bool isEraser(const std::optional<std::string>& type);
  template <vector_names::Unowned Name>
  static constexpr bool isEraser(Name type) noexcept {
    return vector_names::given(type) == VelWBVectorStrEraser;
  }
};

}  // namespace VelWhiteBoard
