#include "VelWhiteBoard/foundation/plist/property_list_writer.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "VelWhiteBoard/foundation/records/property_visit.h"
#include "VelWhiteBoard/foundation/text/number_text.h"
#include "VelWhiteBoard/foundation/text/text.h"

namespace VelWhiteBoard {

namespace {

constexpr std::string_view kHead =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";
constexpr std::string_view kFoot = "</plist>\n";

/// An element as it is written. Its parts are appended at once, since most of a file consists of
/// elements.
struct Tag {
  std::string_view open;
  std::string_view close;
  std::string_view empty;
};
constexpr Tag kString{"<string>", "</string>\n", {}};
constexpr Tag kInteger{"<integer>", "</integer>\n", {}};
constexpr Tag kReal{"<real>", "</real>\n", {}};
constexpr Tag kArray{"<array>\n", "</array>\n", "<array/>\n"};
constexpr Tag kDict{"<dict>\n", "</dict>\n", "<dict/>\n"};

/// The lines of one value, at a depth of indentation.
class ValueLines {
 public:
  ValueLines(std::string& text, std::size_t depth) : text_(text), indent_(depth, '\t') {}

  void add(const std::string& field) { element(kString, field); }
  void add(bool field) { line(field ? "<true/>\n" : "<false/>\n"); }
  void add(std::int64_t field) { number(kInteger, field); }
  void add(std::uint64_t field) { number(kInteger, field); }
  void add(double field) { number(kReal, field); }
  void add(const Path& field) {
    container(kArray, [&] {
      for (const auto position : field) addPosition(position);
    });
  }
  void add(const Array& field) { addElements(field, 1); }
  void add(const RecordList& field) {
    container(kArray, [&] {
      for (const auto& record : field) {
        if (record) add(*record);
      }
    });
  }
  void add(const Record& record) {
    container(kDict, [&] {
      for (const Property& property : record.recordClass().properties) {
        visitWrittenField(property, record, [&](const auto& field) {
          line("<key>");
          text_ += property.name;  // our own name: needs no escape
          text_ += "</key>\n";
          add(field);
        });
      }
    });
  }

 private:
  void line(std::string_view content) {
    text_ += indent_;
    text_ += content;
  }

  void element(const Tag& tag, std::string_view content) {
    line(tag.open);
    appendXMLText(text_, content);
    text_ += tag.close;
  }

  template <class Number>
  void number(const Tag& tag, Number content) {
    line(tag.open);
    appendNumber(text_, content);
    text_ += tag.close;
  }

  /// A container without content becomes one empty element, also when all its content was left out.
  template <class AddContent>
  void container(const Tag& tag, const AddContent& addContent) {
    line(tag.open);
    const std::size_t start = text_.size();
    indent_ += '\t';
    addContent();
    indent_.pop_back();
    if (text_.size() == start) {
      text_.erase(start - tag.open.size());
      text_ += tag.empty;
      return;
    }
    line(tag.close);
  }

  void addPosition(Path::Position position) {
    container(kArray, [&] {
      for (const double coordinate : position) add(std::isfinite(coordinate) ? coordinate : 0.0);
    });
  }

  /// A free-form value. What a property list cannot express is left out: null, binary, numbers that
  /// are not finite, and what is nested too deep.
  void addFree(const Value& value, std::size_t depth) {
    if (value.is_structured() && depth > kMaximumValueDepth) return;
    switch (value.type()) {
      case Value::value_t::boolean:
        return add(value.get<bool>());
      case Value::value_t::number_integer:
        return add(value.get<std::int64_t>());
      case Value::value_t::number_unsigned:
        return add(value.get<std::uint64_t>());
      case Value::value_t::number_float:
        if (std::isfinite(value.get<double>())) add(value.get<double>());
        return;
      case Value::value_t::string:
        return add(value.get_ref<const std::string&>());
      case Value::value_t::array:
        return addElements(value.get_ref<const Array&>(), depth);
      case Value::value_t::object:
        return addMembers(value.get_ref<const Dictionary&>(), depth);
      default:
        return;
    }
  }

  void addElements(const Array& elements, std::size_t depth) {
    container(kArray, [&] {
      for (const Value& element : elements) addFree(element, depth + 1);
    });
  }

  void addMembers(const Dictionary& members, std::size_t depth) {
    container(kDict, [&] {
      for (const auto& [key, member] : members) {
        const std::size_t start = text_.size();
        line("<key>");
        appendXMLText(text_, key);
        text_ += "</key>\n";
        const std::size_t end = text_.size();
        addFree(member, depth + 1);
        if (text_.size() == end) text_.erase(start);  // no value: no key either
      }
    });
  }

  std::string& text_;
  std::string indent_;
};

}  // namespace

PropertyListWriter::PropertyListWriter(const BlockConsumer& write) : write_(write) {
  text_ = kHead;
}

bool PropertyListWriter::add(const Record& record) {
  if (failed_) return false;
  if (empty_) text_ += "<array>\n";
  empty_ = false;
  ValueLines(text_, 1).add(record);
  return text_.size() < kFileBlockSize || flush();
}

bool PropertyListWriter::finish() {
  if (failed_) return false;
  text_ += empty_ ? "<array/>\n" : "</array>\n";
  text_ += kFoot;
  return flush();
}

bool PropertyListWriter::flush() {
  failed_ = !write_(text_);
  text_.clear();
  return !failed_;
}

}  // namespace VelWhiteBoard
