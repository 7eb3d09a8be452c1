/// @file
/// Numbers as text, exact in both directions; the locale never matters.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "VelWhiteBoard/foundation/values/scalar.h"

namespace VelWhiteBoard {

/// Appends the shortest text that reads back to exactly `number`, which must be finite: plain
/// digits between 1e-4 and 1e16, scientific notation beyond. -0 is "-0.0", the only form whose sign
/// all readers keep. Other whole numbers have no fraction.
void appendNumber(std::string& text, double number);
void appendNumber(std::string& text, std::int64_t number);
void appendNumber(std::string& text, std::uint64_t number);

/// Whether `text`, which must be a number, has neither fraction nor exponent, so that a JSON reader
/// takes it for an integer.
bool looksLikeInteger(std::string_view text);

/// Whether `text` as a whole is a number by the grammar of JSON, of whatever size.
bool isNumberInJSON(std::string_view text);

/// Parses the whole of `text` as a JSON number: to an integer if it is one and fits 64 bits,
/// otherwise to a real number. Absent when it is not a JSON number or beyond the range of a double.
std::optional<Scalar> numberWithJSON(std::string_view text);

/// The same by the looser grammar of property lists: an integer may have a leading "+".
std::optional<Scalar> integerWithPropertyList(std::string_view text);
/// Whether `text` is a finite real number of a property list, of whatever size.
bool isRealInPropertyList(std::string_view text);
/// A real number of a property list: also "nan" and the infinities, and a leading "+". Absent when
/// it is not a number or beyond the range of a double.
std::optional<double> realWithPropertyList(std::string_view text);

}  // namespace VelWhiteBoard
