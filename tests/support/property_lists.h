// Property lists in memory, for tests.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "VelWhiteBoard/foundation/plist/property_list_reader.h"
#include "VelWhiteBoard/foundation/records/record.h"
#include "VelWhiteBoard/foundation/values/value.h"

namespace VelWhiteBoard {

/// What came of reading a property list.
struct ReadRecords {
  RecordList records;
  PropertyListResult result;
};

/// The text that the writer makes of the records.
std::string propertyListOf(const RecordList& records);

/// The records of a text, handed to the reader in blocks of `blockSize` bytes; 0: as a whole.
ReadRecords readPropertyList(const RecordClass& asked, std::string_view text,
                             std::size_t blockSize = 0);

/// A property list with `elements` in its array, written without the writer under test.
std::string listWith(std::string_view elements);

/// A free-form value as property-list XML, written without the writer under test. The value must
/// hold neither null nor numbers that are not finite, and only text that XML can carry.
std::string xmlOf(const Value& value);

/// The first record that a property list with this one element gives; null when there is none.
std::shared_ptr<Record> recordWithXML(const RecordClass& asked, std::string_view element);

/// What a second, strict reader finds in a property list: Python's. Real numbers are of the kind
/// that `Value` has for them, integers exact. An error gives null.
Value readWithSecondReader(const std::string& list);

}  // namespace VelWhiteBoard
