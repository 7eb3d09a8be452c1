/// @file
/// Equality of real numbers, as records compare them.
#pragma once

namespace VelWhiteBoard {

/// Whether two numbers are equal; 0 equals -0, and a NaN equals a NaN.
constexpr bool sameNumber(double left, double right) noexcept {
  return left == right || (left != left && right != right);
}

}  // namespace VelWhiteBoard
