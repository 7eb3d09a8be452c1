/// @file
/// The elements of a property list, and their values.
#pragma once

#include <optional>
#include <string_view>

#include "VelWhiteBoard/foundation/values/scalar.h"

namespace VelWhiteBoard {

enum class ListElement {
  plist,
  array,
  dict,
  key,
  string,
  integer,
  real,
  yes,
  no,
  date,
  data,
  unknown,
};

ListElement listElementNamed(std::string_view name);

/// Whether `text` consists of XML white space only.
bool isBlank(std::string_view text);

/// The value of an element's text. `scalar` is null for dates, data and reals beyond the range of a
/// double, which no property can hold. `error` says what is malformed; it is empty when nothing is.
struct ElementValue {
  Scalar scalar;
  std::string_view error;
};

/// The value of an element that is neither a container nor a key. A string refers to `text`.
ElementValue valueOfElement(ListElement element, std::string_view text);

/// The number that a scalar holds; absent for anything else, booleans included.
std::optional<double> numberIn(const Scalar& scalar);

}  // namespace VelWhiteBoard
