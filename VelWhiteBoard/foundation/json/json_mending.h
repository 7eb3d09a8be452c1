/// @file
/// Rewrites valid JSON tokens that simdjson rejects.
#pragma once

#include <string>
#include <string_view>

namespace VelWhiteBoard {

/// `text` with those tokens rewritten: an integer beyond 64 bits becomes the nearest real number; a
/// number beyond the range of a double becomes null, since there is no number for it; half a pair
/// of surrogates becomes U+FFFD. Invalid JSON stays invalid.
std::string mendedJSON(std::string_view text);

}  // namespace VelWhiteBoard
