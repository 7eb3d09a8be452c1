/// @file
/// Strings on their way into JSON and XML.
#pragma once

#include <string>
#include <string_view>

namespace VelWhiteBoard {

/// Adds `source` to `text` as a JSON string, quotes included. Bytes that are not UTF-8
/// become U+FFFD.
void appendJSONText(std::string& text, std::string_view source);

/// `source` with U+FFFD in place of bytes that are not UTF-8.
std::string withValidUTF8(std::string_view source);

/// Adds `source` to `text` as the content of an XML element that every strict reader gives back bit
/// for bit. What XML cannot carry (control characters, U+FFFE, U+FFFF, bytes that are not UTF-8)
/// becomes U+FFFD.
void appendXMLText(std::string& text, std::string_view source);

}  // namespace VelWhiteBoard
