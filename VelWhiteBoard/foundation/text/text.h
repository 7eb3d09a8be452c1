/// @file
/// Escaping of strings for JSON and XML.
#pragma once

#include <string>
#include <string_view>

namespace VelWhiteBoard {

/// Appends `source` to `text` as a JSON string, quotes included. Bytes that are not UTF-8 become
/// U+FFFD.
void appendJSONText(std::string& text, std::string_view source);

/// `source` with U+FFFD in place of bytes that are not UTF-8.
std::string withValidUTF8(std::string_view source);

/// Appends `source` to `text` as the content of an XML element, such that every strict reader gives
/// back the same bytes. What XML cannot express (control characters, U+FFFE, U+FFFF, bytes that are
/// not UTF-8) becomes U+FFFD.
void appendXMLText(std::string& text, std::string_view source);

}  // namespace VelWhiteBoard
