/// @file
/// Conversion of real numbers to integers, defined for every input.
#pragma once

#include <cstdint>
#include <limits>

namespace VelWhiteBoard {

/// Truncates `number` toward zero. Beyond the range of the result it gives the nearest end of the
/// range; NaN gives 0.
constexpr std::int64_t truncatedToSigned(double number) noexcept {
  constexpr double kEnd = 9223372036854775808.0;  // 2^63, the first double beyond the range
  if (number != number) return 0;
  if (number >= kEnd) return std::numeric_limits<std::int64_t>::max();
  if (number < -kEnd) return std::numeric_limits<std::int64_t>::min();
  return static_cast<std::int64_t>(number);
}

/// The same for the unsigned range: a negative number gives 0.
constexpr std::uint64_t truncatedToUnsigned(double number) noexcept {
  constexpr double kEnd = 18446744073709551616.0;  // 2^64
  if (!(number > 0)) return 0;
  if (number >= kEnd) return std::numeric_limits<std::uint64_t>::max();
  return static_cast<std::uint64_t>(number);
}

}  // namespace VelWhiteBoard
