/// @file
/// Real numbers from text, with a standard library that has no `std::from_chars` for them.
#pragma once

#include <string_view>
#include <system_error>

namespace VelWhiteBoard {

/// Parses the whole of `text` as `std::from_chars` parses a `double`: the nearest number to the
/// last bit, whatever the locale, also "inf", "infinity" and "nan" in any case.
/// @param number the result; unchanged unless the text is a number in the range of a double, which
///   includes those too small for one: they become 0 with their sign.
/// @return no error, `invalid_argument` for what is no number, or `result_out_of_range` for what is
///   too large. Text after the number makes it none; so does "nan(...)".
/// @throws std::bad_alloc when memory runs out.
std::errc parseRealWithoutCharconv(std::string_view text, double& number);

}  // namespace VelWhiteBoard
