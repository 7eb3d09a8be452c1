/// @file
/// The numbers of the tools.
#pragma once

#include <cstdint>

namespace VelWhiteBoard {

/// @name Tools
/// The values of the tool manager's `tool`, and what `genVectorWithTool` takes. Each is named after
/// the type of the vector that it starts. Numbers without a name here start nothing.
/// @{
inline constexpr std::uint64_t VelWBToolLine = 1;
inline constexpr std::uint64_t VelWBToolCursor = 2;
/// Starts an eraser's stroke at the tool manager's `version` 0 only; at `version` 1 it starts a
/// "remove", at any other nothing.
inline constexpr std::uint64_t VelWBToolEraser = 3;
inline constexpr std::uint64_t VelWBToolText = 4;
/// The initial tool: starts nothing.
inline constexpr std::uint64_t VelWBToolNone = 5;
inline constexpr std::uint64_t VelWBToolRemove = 6;
inline constexpr std::uint64_t VelWBToolImage = 7;
inline constexpr std::uint64_t VelWBToolCamera = 8;
inline constexpr std::uint64_t VelWBToolClear = 9;
inline constexpr std::uint64_t VelWBToolMarkerPen = 11;
inline constexpr std::uint64_t VelWBToolMedia = 13;
/// @}

}  // namespace VelWhiteBoard
