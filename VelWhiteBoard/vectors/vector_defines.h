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

/// @addtogroup type_names
/// @{

/// @name Type names
/// The values of a vector's `type`, in the order of their codes, 1 to 17.
/// @{

/// A pointer on the board, until the next vector: `VelWbVecFile`.
inline constexpr std::string_view VelWBVectorStrCursor = "cursor";
/// A text box: `VelWbVecText`.
inline constexpr std::string_view VelWBVectorStrText = "text";
/// A stroke of the pen: `VelWbVecLine`.
inline constexpr std::string_view VelWBVectorStrLine = "line";
/// A stroke that takes away: `VelWbVecLine`.
inline constexpr std::string_view VelWBVectorStrEraser = "eraser";
/// A picture: `VelWbVecFile`.
inline constexpr std::string_view VelWBVectorStrImage = "image";
/// A camera capture, until the next vector: `VelWbCaptureInfo`.
inline constexpr std::string_view VelWBVectorStrCamera = "camera";
/// A message of the clients, kept as it is.
inline constexpr std::string_view VelWBVectorStrMicPhone = "micPhone";
/// A video or a sound: `VelWbVecVideo`.
inline constexpr std::string_view VelWBVectorStrMedia = "media";
/// A message of the clients, kept as it is.
inline constexpr std::string_view VelWBVectorStrInstruction = "instruction";
/// Empties a page: `VelWbVecClear`.
inline constexpr std::string_view VelWBVectorStrClear = "clear";
/// Takes one entry off a page: `VelWbVecRemove`.
inline constexpr std::string_view VelWBVectorStrRemove = "remove";
/// Shows another page: `VelWbVecSwitchPage`.
inline constexpr std::string_view VelWBVectorStrSwitchPage = "switchPage";
/// A translucent stroke: `VelWbVecLine`.
inline constexpr std::string_view VelWBVectorStrMarkerPen = "markerPen";
/// A magnifier, until the next vector: `VelWbVecSquare`.
inline constexpr std::string_view VelWBVectorStrMagnifier = "magnifier";
/// A drawn shape: `VelWbVecDiagram` or `VelWbVecCircle`.
inline constexpr std::string_view VelWBVectorStrDiagram = "diagram";
/// A participant's playlist: `VelWbVecMediaList`.
inline constexpr std::string_view VelWBVectorStrMediaList = "mediaList";
/// Moves the view: `VelWbVecOffset`.
inline constexpr std::string_view VelWBVectorStrOffset = "offset";
/// @}

/// @name Type codes
/// The numbers of the types above: what `VelWbVectorDefines::vectorType` and the tool manager's
/// `genVectorWithType` take. Every other number is no type.
/// @{
inline constexpr std::uint64_t VelWBVectorTypeCursor = 1;       ///< `VelWBVectorStrCursor`.
inline constexpr std::uint64_t VelWBVectorTypeText = 2;         ///< `VelWBVectorStrText`.
inline constexpr std::uint64_t VelWBVectorTypeLine = 3;         ///< `VelWBVectorStrLine`.
inline constexpr std::uint64_t VelWBVectorTypeEraser = 4;       ///< `VelWBVectorStrEraser`.
inline constexpr std::uint64_t VelWBVectorTypeImage = 5;        ///< `VelWBVectorStrImage`.
inline constexpr std::uint64_t VelWBVectorTypeCamera = 6;       ///< `VelWBVectorStrCamera`.
inline constexpr std::uint64_t VelWBVectorTypeMicPhone = 7;     ///< `VelWBVectorStrMicPhone`.
inline constexpr std::uint64_t VelWBVectorTypeMedia = 8;        ///< `VelWBVectorStrMedia`.
inline constexpr std::uint64_t VelWBVectorTypeInstruction = 9;  ///< `VelWBVectorStrInstruction`.
inline constexpr std::uint64_t VelWBVectorTypeClear = 10;       ///< `VelWBVectorStrClear`.
inline constexpr std::uint64_t VelWBVectorTypeRemove = 11;      ///< `VelWBVectorStrRemove`.
inline constexpr std::uint64_t VelWBVectorTypeSwitchPage = 12;  ///< `VelWBVectorStrSwitchPage`.
inline constexpr std::uint64_t VelWBVectorTypeMarkerPen = 13;   ///< `VelWBVectorStrMarkerPen`.
inline constexpr std::uint64_t VelWBVectorTypeMagnifier = 14;   ///< `VelWBVectorStrMagnifier`.
inline constexpr std::uint64_t VelWBVectorTypeDiagram = 15;     ///< `VelWBVectorStrDiagram`.
inline constexpr std::uint64_t VelWBVectorTypeMediaList = 16;   ///< `VelWBVectorStrMediaList`.
inline constexpr std::uint64_t VelWBVectorTypeOffset = 17;      ///< `VelWBVectorStrOffset`.
/// @}

/// @name Kind names
/// The values of a diagram's `kind`; the last two are kinds of media.
/// @{

/// The box itself.
inline constexpr std::string_view VelWBVectorStrKindRectangle = "rectangle";
/// A circle, of class `VelWbVecCircle`.
inline constexpr std::string_view VelWBVectorStrKindCircle = "circle";
/// An ellipse, of class `VelWbVecCircle`.
inline constexpr std::string_view VelWBVectorStrKindEllipse = "ellipse";
/// A triangle.
inline constexpr std::string_view VelWBVectorStrKindTriangle = "triangle";
/// A straight line. The same string as `VelWBVectorStrLine`; a diagram of this kind still has the
/// type "diagram".
inline constexpr std::string_view VelWBVectorStrKindLine = "line";
/// A straight line with an arrow's head.
inline constexpr std::string_view VelWBVectorStrKindArrowLine = "arrowLine";
/// The middles of the box's sides, joined.
inline constexpr std::string_view VelWBVectorStrKindRhombus = "rhombus";
/// Of a `VelWbVecVideo`: moving pictures.
inline constexpr std::string_view VelWBVectorStrKindVideo = "video";
/// Of a `VelWbVecVideo`: sound only.
inline constexpr std::string_view VelWBVectorStrKindAudio = "audio";
/// @}

/// How operations take a name that is no `std::string`.
namespace vector_names {

/// How a name may be given beside a string: as one of the constants above or any other
/// `std::string_view`, or as a C string. Exactly these types: everything that converts to a
/// `std::optional<std::string>` still does.
template <class T>
concept Unowned = std::same_as<T, std::string_view> || std::same_as<T, std::nullptr_t> ||
    std::same_as<T, const char*> || std::same_as<T, char*>;

/// The name that is given; absent for a null pointer. A view without characters is an empty name.
constexpr std::optional<std::string_view> given(std::string_view name) noexcept { return name; }
/// The same for a C string.
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
  /// The same for a constant, another view or a C string.
  template <vector_names::Unowned Name>
  static constexpr bool isLine(Name type) noexcept {
    return vector_names::given(type) == VelWBVectorStrLine;
  }
  /// Whether `type` is "markerPen".
  static bool isMarkerPen(const std::optional<std::string>& type);
  /// The same for a constant, another view or a C string.
  template <vector_names::Unowned Name>
  static constexpr bool isMarkerPen(Name type) noexcept {
    return vector_names::given(type) == VelWBVectorStrMarkerPen;
  }
  /// Whether `type` is "eraser".
  static bool isEraser(const std::optional<std::string>& type);
  /// The same for a constant, another view or a C string.
  template <vector_names::Unowned Name>
  static constexpr bool isEraser(Name type) noexcept {
    return vector_names::given(type) == VelWBVectorStrEraser;
  }
};

/// @}

}  // namespace VelWhiteBoard
