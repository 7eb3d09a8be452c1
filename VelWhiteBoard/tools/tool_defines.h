/// @file
/// The numbers of the tools.
#pragma once

#include <cstdint>

namespace VelWhiteBoard {

/// @addtogroup tools
/// @{

/// @name Tools
/// The values of the tool manager's `tool`, and what `genVectorWithTool` takes. Each is named after
/// the type of the vector that it starts. Numbers without a name here start nothing.
/// @{
inline constexpr std::uint64_t VelWBToolLine = 1;    ///< A stroke of the pen.
inline constexpr std::uint64_t VelWBToolCursor = 2;  ///< A pointer on the board.
/// Starts an eraser's stroke at the tool manager's `version` 0 only; at `version` 1 it starts a
/// "remove", at any other nothing.
inline constexpr std::uint64_t VelWBToolEraser = 3;
inline constexpr std::uint64_t VelWBToolText = 4;  ///< A text box.
/// The initial tool: starts nothing.
inline constexpr std::uint64_t VelWBToolNone = 5;
inline constexpr std::uint64_t VelWBToolRemove = 6;      ///< Takes an entry off the page.
inline constexpr std::uint64_t VelWBToolImage = 7;       ///< A picture.
inline constexpr std::uint64_t VelWBToolCamera = 8;      ///< A camera capture.
inline constexpr std::uint64_t VelWBToolClear = 9;       ///< Empties the page.
inline constexpr std::uint64_t VelWBToolMarkerPen = 11;  ///< A translucent stroke.
inline constexpr std::uint64_t VelWBToolMedia = 13;      ///< A video or a sound.
/// @}

/// @}

}  // namespace VelWhiteBoard
