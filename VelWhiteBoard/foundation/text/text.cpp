#include "VelWhiteBoard/foundation/text/text.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace VelWhiteBoard {

namespace {

/// U+FFFD, the replacement character.
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

constexpr std::uint8_t byteAt(std::string_view text, std::size_t index) {
  return static_cast<std::uint8_t>(text[index]);
}

/// One step through a string that may not be UTF-8.
struct Sequence {
  /// Number of bytes to skip: a whole character, or the longest valid beginning of a truncated one.
  std::size_t length;
  bool valid;
};

/// The range of the second byte after a given first byte. It excludes overlong forms, surrogates
/// and characters beyond U+10FFFF.
struct SecondByte {
  std::uint8_t lowest = 0x80;
  std::uint8_t highest = 0xBF;
};

constexpr SecondByte secondByteAfter(std::uint8_t first) {
  switch (first) {
    case 0xE0:
      return {0xA0, 0xBF};
    case 0xED:
      return {0x80, 0x9F};
    case 0xF0:
      return {0x90, 0xBF};
    case 0xF4:
      return {0x80, 0x8F};
    default:
      return {};
  }
}

/// The sequence at the start of `text`, whose first byte is not ASCII.
Sequence nextSequence(std::string_view text) {
  const std::uint8_t first = byteAt(text, 0);
  if (first < 0xC2 || first > 0xF4) return {1, false};
  const std::size_t wanted = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  SecondByte bounds = secondByteAfter(first);
  for (std::size_t index = 1; index < wanted; ++index) {
    if (index >= text.size()) return {index, false};
    const std::uint8_t byte = byteAt(text, index);
    if (byte < bounds.lowest || byte > bounds.highest) return {index, false};
    bounds = {};
  }
  return {wanted, true};
}

/// For each ASCII character: whether it needs no escape.
using PlainTable = std::array<bool, 128>;

constexpr PlainTable plainExcept(std::string_view exceptions) {
  PlainTable table{};
  for (std::size_t character = 0x20; character < table.size(); ++character) {
    table[character] = exceptions.find(static_cast<char>(character)) == std::string_view::npos;
  }
  return table;
}

/// Copies `source`, and passes to `special` each ASCII character that needs an escape and each
/// character beyond ASCII. Invalid UTF-8 is replaced.
template <class Special>
void appendEscaped(std::string& text, std::string_view source, const PlainTable& plain,
                   const Special& special) {
  while (!source.empty()) {
    std::size_t run = 0;
    while (run < source.size() && byteAt(source, run) < plain.size() &&
           plain[byteAt(source, run)]) {
      ++run;
    }
    text.append(source.substr(0, run));
    source.remove_prefix(run);
    if (source.empty()) return;
    if (byteAt(source, 0) < plain.size()) {
      special(source.substr(0, 1));
      source.remove_prefix(1);
      continue;
    }
    const Sequence sequence = nextSequence(source);
    if (sequence.valid) {
      special(source.substr(0, sequence.length));
    } else {
      text += kReplacement;
    }
    source.remove_prefix(sequence.length);
  }
}

constexpr PlainTable kPlainInJSON = plainExcept("\"\\");
constexpr PlainTable kAllPlain = plainExcept({});
constexpr PlainTable kPlainInXML = plainExcept("&<>");

void appendJSONEscape(std::string& text, char character) {
  switch (character) {
    case '"':
      text += "\\\"";
      return;
    case '\\':
      text += "\\\\";
      return;
    case '\b':
      text += "\\b";
      return;
    case '\f':
      text += "\\f";
      return;
    case '\n':
      text += "\\n";
      return;
    case '\r':
      text += "\\r";
      return;
    case '\t':
      text += "\\t";
      return;
    default:
      break;
  }
  constexpr std::string_view kHexDigits = "0123456789abcdef";
  const auto code = static_cast<std::uint8_t>(character);
  text += "\\u00";
  text += kHexDigits[code >> 4U];
  text += kHexDigits[code & 0xFU];
}

void appendXMLEscape(std::string& text, char character) {
  switch (character) {
    case '&':
      text += "&amp;";
      return;
    case '<':
      text += "&lt;";
      return;
    case '>':
      text += "&gt;";
      return;  // so that "]]>" never occurs
    case '\t':
    case '\n':
      text += character;
      return;
    case '\r':
      text += "&#13;";
      return;  // a bare one would come back as a line feed
    default:
      text += kReplacement;
      return;
  }
}

}  // namespace

void appendJSONText(std::string& text, std::string_view source) {
  text += '"';
  appendEscaped(text, source, kPlainInJSON, [&text](std::string_view character) {
    if (character.size() > 1) {
      text += character;
    } else {
      appendJSONEscape(text, character.front());
    }
  });
  text += '"';
}

std::string withValidUTF8(std::string_view source) {
  std::string text;
  text.reserve(source.size());
  appendEscaped(text, source, kAllPlain,
                [&text](std::string_view character) { text += character; });
  return text;
}

void appendXMLText(std::string& text, std::string_view source) {
  appendEscaped(text, source, kPlainInXML, [&text](std::string_view character) {
    if (character.size() == 1) {
      appendXMLEscape(text, character.front());
    } else if (character == "\xEF\xBF\xBE" || character == "\xEF\xBF\xBF") {  // U+FFFE, U+FFFF
      text += kReplacement;
    } else {
      text += character;
    }
  });
}

}  // namespace VelWhiteBoard
