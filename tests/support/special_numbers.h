/// @file
/// Numbers at the ends of their ranges and beyond, for tables of unusual input.
#pragma once

#include <cstdint>
#include <limits>

namespace VelWhiteBoard {

inline constexpr double kInfinity = std::numeric_limits<double>::infinity();
inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

inline constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
inline constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();
inline constexpr std::uint64_t kHighestUnsigned = std::numeric_limits<std::uint64_t>::max();

}  // namespace VelWhiteBoard
