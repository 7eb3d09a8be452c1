/// @file
/// Records as a property list.
#pragma once

#include <string>

#include "VelWhiteBoard/foundation/records/record.h"
#include "VelWhiteBoard/foundation/values/file_block.h"

namespace VelWhiteBoard {

/// Writes an XML property list whose top is an array of dictionaries, one for each record, in the
/// classic layout: tab-indented, keys in the order of their declaration.
///
/// Records are formatted one by one into a small buffer, so a page of any size takes little memory.
/// What property lists cannot express is left out (nulls inside free-form arrays) or replaced (see
/// `appendXMLText`), so every record gives a valid file.
class PropertyListWriter {
 public:
  /// `write` takes the text in blocks; once it returns false, nothing more is produced.
  explicit PropertyListWriter(const BlockConsumer& write);

  /// Adds a record. False when the consumer has failed.
  bool add(const Record& record);
  /// Ends the list; to be called once, at the end. False when the consumer has failed.
  bool finish();

 private:
  bool flush();

  const BlockConsumer& write_;
  std::string text_;
  bool empty_ = true;
  bool failed_ = false;
};

}  // namespace VelWhiteBoard
