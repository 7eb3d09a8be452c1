/// @file
/// What JSON's grammar allows and a parser refuses.
#pragma once

#include <string>
#include <string_view>

namespace VelWhiteBoard {

/// `text` with what the parser can take in place of what it refuses: an integer beyond 64 bits
/// becomes the nearest real number; a number beyond the range of a double becomes null, since there
/// is no number for it; half a pair of surrogates becomes U+FFFD. Nothing that is no JSON text
/// becomes one.
std::string mendedJSON(std::string_view text);

}  // namespace VelWhiteBoard
