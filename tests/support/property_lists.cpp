#include "tests/support/property_lists.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <memory>
#include <utility>

#include "VelWhiteBoard/foundation/plist/property_list_writer.h"

#include "tests/support/temporary_folder.h"

namespace VelWhiteBoard {

namespace {

std::string escaped(const std::string& text) {
  std::string result;
  for (const char character : text) {
    switch (character) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '\r':
        result += "&#xD;";
        break;
      default:
        result += character;
    }
  }
  return result;
}

}  // namespace

std::string propertyListOf(const RecordList& records) {
  std::string text;
  const BlockConsumer append = [&text](std::string_view block) {
    text += block;
    return true;
  };
  PropertyListWriter writer(append);
  for (const auto& record : records) writer.add(*record);
  writer.finish();
  return text;
}

ReadRecords readPropertyList(const RecordClass& asked, std::string_view text,
                             std::size_t blockSize) {
  ReadRecords list;
  PropertyListReader reader(asked, [&list](std::shared_ptr<Record> record) {
    list.records.push_back(std::move(record));
  });
  if (blockSize == 0) blockSize = text.size() + 1;
  while (!text.empty()) {
    const std::string_view block = text.substr(0, blockSize);
    // In memory of its own: a read beyond the block is then found by the sanitizer.
    if (!reader.feed(std::string(block))) break;
    text.remove_prefix(block.size());
  }
  list.result = reader.finish();
  return list;
}

std::string listWith(std::string_view elements) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><array>" +
         std::string(elements) + "</array></plist>";
}

std::string xmlOf(const Value& value) {
  switch (value.type()) {
    case Value::value_t::boolean:
      return value.get<bool>() ? "<true/>" : "<false/>";
    case Value::value_t::number_integer:
    case Value::value_t::number_unsigned:
      return "<integer>" + value.dump() + "</integer>";
    case Value::value_t::number_float:
      return "<real>" + value.dump() + "</real>";
    case Value::value_t::string:
      return "<string>" + escaped(value.get<std::string>()) + "</string>";
    case Value::value_t::array: {
      std::string xml = "<array>";
      for (const Value& element : value) xml += xmlOf(element);
      return xml + "</array>";
    }
    case Value::value_t::object: {
      std::string xml = "<dict>";
      for (const auto& [key, member] : value.items()) {
        xml += "<key>" + escaped(key) + "</key>" + xmlOf(member);
      }
      return xml + "</dict>";
    }
    default:
      return "<data></data>";
  }
}

std::shared_ptr<Record> recordWithXML(const RecordClass& asked, std::string_view element) {
  const ReadRecords list = readPropertyList(asked, listWith(element));
  return list.result.ok() && !list.records.empty() ? list.records.front() : nullptr;
}

Value readWithSecondReader(const std::string& list) {
  const TemporaryFolder folder;
  const std::string file = folder.at("list.plist");
  std::ofstream(file, std::ios::binary) << list;
  const std::string command = std::string("'" VELWB_PYTHON "' -B '" VELWB_TEST_DATA_DIR
                                          "/../support/property_list_as_json.py' '") +
                              file + "'";
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(::popen(command.c_str(), "r"),
                                                             &::pclose);
  if (!pipe) return nullptr;
  std::string output;
  std::array<char, 65536> buffer;
  while (const std::size_t size = std::fread(buffer.data(), 1, buffer.size(), pipe.get())) {
    output.append(buffer.data(), size);
  }
  Value value = Value::parse(output, nullptr, false);
  return value.is_discarded() ? Value() : value;
}

}  // namespace VelWhiteBoard
