#include "VelWhiteBoard/foundation/plist/list_element.h"

#include <type_traits>
#include <variant>

#include "VelWhiteBoard/foundation/text/number_text.h"

namespace VelWhiteBoard {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";

std::string_view trimmed(std::string_view text) {
  const auto start = text.find_first_not_of(kBlanks);
  if (start == std::string_view::npos) return {};
  return text.substr(start, text.find_last_not_of(kBlanks) - start + 1);
}

ElementValue realWith(std::string_view text) {
  if (const auto number = realWithPropertyList(text)) return {Scalar(*number), {}};
  return {{}, isRealInPropertyList(text) ? "" : "malformed real number"};
}

}  // namespace

ListElement listElementNamed(std::string_view name) {
  using enum ListElement;
  if (name == "real") return real;
  if (name == "array") return array;
  if (name == "key") return key;
  if (name == "string") return string;
  if (name == "integer") return integer;
  if (name == "dict") return dict;
  if (name == "true") return yes;
  if (name == "false") return no;
  if (name == "date") return date;
  if (name == "data") return data;
  if (name == "plist") return plist;
  return unknown;
}

bool isBlank(std::string_view text) {
  return text.find_first_not_of(kBlanks) == std::string_view::npos;
}

ElementValue valueOfElement(ListElement element, std::string_view text) {
  switch (element) {
    case ListElement::string:
      return {Scalar(text), {}};
    case ListElement::real:
      return realWith(trimmed(text));
    case ListElement::integer:
      if (const auto number = integerWithPropertyList(trimmed(text))) return {*number, {}};
      return {{}, "malformed integer"};
    case ListElement::yes:
    case ListElement::no:
      return {Scalar(element == ListElement::yes),
              isBlank(text) ? "" : "a boolean element must be empty"};
    default:
      return {};
  }
}

std::optional<double> numberIn(const Scalar& scalar) {
  return std::visit(
      [](auto value) -> std::optional<double> {
        using Held = decltype(value);
        if constexpr (std::is_arithmetic_v<Held> && !std::is_same_v<Held, bool>) {
          return static_cast<double>(value);
        } else {
          return std::nullopt;
        }
      },
      scalar);
}

}  // namespace VelWhiteBoard
