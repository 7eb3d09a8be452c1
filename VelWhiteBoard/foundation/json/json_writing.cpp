// Records to JSON text.
#include <cmath>
#include <cstddef>
#include <string>
#include <string_view>

#include "VelWhiteBoard/foundation/records/model_mapping.h"
#include "VelWhiteBoard/foundation/records/property_visit.h"
#include "VelWhiteBoard/foundation/text/number_text.h"
#include "VelWhiteBoard/foundation/text/text.h"

namespace VelWhiteBoard {

namespace {

// Inside free-form values a whole real number is written with a fraction, `10.0`, so that readers
// do not take it for an integer. The type of a property is known, so there `10` is enough.
void appendFreeNumber(std::string& text, double number) {
  const std::size_t start = text.size();
  appendNumber(text, number);
  if (looksLikeInteger(std::string_view(text).substr(start))) text += ".0";
}

void appendFreeValue(std::string& text, const Value& value, std::size_t depth);

template <class Elements, class AppendElement>
void appendSequence(std::string& text, const Elements& elements, const AppendElement& append) {
  bool first = true;
  for (const auto& element : elements) {
    if (!first) text += ',';
    first = false;
    append(element);
  }
}

void appendArray(std::string& text, const Array& array, std::size_t depth) {
  text += '[';
  appendSequence(text, array, [&](const Value& each) { appendFreeValue(text, each, depth + 1); });
  text += ']';
}

/// What JSON cannot express becomes null, and so does what is nested too deep.
void appendFreeValue(std::string& text, const Value& value, std::size_t depth) {
  if (value.is_structured() && depth > kMaximumValueDepth) {
    text += "null";
    return;
  }
  switch (value.type()) {
    case Value::value_t::boolean:
      text += value.get<bool>() ? "true" : "false";
      return;
    case Value::value_t::number_integer:
      appendNumber(text, value.get<std::int64_t>());
      return;
    case Value::value_t::number_unsigned:
      appendNumber(text, value.get<std::uint64_t>());
      return;
    case Value::value_t::number_float:
      if (std::isfinite(value.get<double>())) return appendFreeNumber(text, value.get<double>());
      break;
    case Value::value_t::string:
      return appendJSONText(text, value.get_ref<const std::string&>());
    case Value::value_t::array:
      return appendArray(text, value.get_ref<const Array&>(), depth);
    case Value::value_t::object:
      text += '{';
      appendSequence(text, value.get_ref<const Dictionary&>(), [&](const auto& member) {
        appendJSONText(text, member.first);
        text += ':';
        appendFreeValue(text, member.second, depth + 1);
      });
      text += '}';
      return;
    default:
      break;
  }
  text += "null";
}

// One function per kind of field.

void appendField(std::string& text, const std::string& field) { appendJSONText(text, field); }
void appendField(std::string& text, double field) { appendNumber(text, field); }
void appendField(std::string& text, std::int64_t field) { appendNumber(text, field); }
void appendField(std::string& text, std::uint64_t field) { appendNumber(text, field); }
void appendField(std::string& text, bool field) { text += field ? "true" : "false"; }
void appendField(std::string& text, const Array& field) { appendArray(text, field, 1); }
void appendField(std::string& text, const Path& field) {
  text += '[';
  appendSequence(text, field, [&text](Path::Position position) {
    text += '[';
    appendSequence(text, position, [&text](double number) {
      appendNumber(text, std::isfinite(number) ? number : 0.0);
    });
    text += ']';
  });
  text += ']';
}
void appendField(std::string& text, const RecordList& field) {
  text += '[';
  bool first = true;
  for (const auto& record : field) {
    if (!record) continue;
    if (!first) text += ',';
    first = false;
    appendJSON(*record, text);
  }
  text += ']';
}

}  // namespace

void appendJSON(const Record& record, std::string& text) {
  using namespace std::string_view_literals;
  // Each member begins with a comma; the first comma is replaced by the brace.
  const std::size_t start = text.size();
  for (const Property& property : record.recordClass().properties) {
    visitWrittenField(property, record, [&](const auto& field) {
      text += ",\""sv;
      text += property.name;
      text += "\":"sv;
      appendField(text, field);
    });
  }
  if (text.size() == start) text += '{';
  text[start] = '{';
  text += '}';
}

std::string modelToJSONString(const Record& record) {
  constexpr std::size_t kUsualSize = 256;  // enough for a piece of a stroke
  std::string text;
  text.reserve(kUsualSize);
  appendJSON(record, text);
  return text;
}

}  // namespace VelWhiteBoard
