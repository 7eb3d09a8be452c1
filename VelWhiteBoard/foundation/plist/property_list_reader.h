/// @file
/// Records from a property list.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "VelWhiteBoard/foundation/records/record.h"

namespace VelWhiteBoard {

/// How reading a property list ended.
struct [[nodiscard]] PropertyListResult {
  /// Empty on success; otherwise what is wrong, for a person.
  std::string error;
  /// Where, counted from 1; 0 when unknown.
  std::uint64_t line = 0;
  std::uint64_t column = 0;
  /// How many bytes of the text came before.
  std::uint64_t byte = 0;

  bool ok() const { return error.empty(); }
  explicit operator bool() const { return ok(); }
};

/// Reads a property list whose top is an array, and builds a record straight from each dictionary
/// in it.
///
/// Strict about the form: XML that is not well-formed, bytes that are not UTF-8, elements that no
/// property list has, malformed numbers, entities of the document's own and anything behind the end
/// are errors. Lenient about the contents, like the dictionary form: elements of the array that are
/// not dictionaries are skipped, values that a property cannot take leave its default.
///
/// The text comes in blocks of any size. Time is linear in the text, memory is that of one record,
/// and nesting costs no stack. When memory runs out, that says nothing about the text: `feed` and
/// `finish` throw std::bad_alloc, and go on throwing it. So do they with what the consumer throws.
class PropertyListReader {
 public:
  using RecordConsumer = std::function<void(std::shared_ptr<Record> record)>;

  /// `consume` takes each record, in order, as soon as its dictionary is complete.
  PropertyListReader(const RecordClass& asked, RecordConsumer consume);
  ~PropertyListReader();
  PropertyListReader(const PropertyListReader&) = delete;
  PropertyListReader& operator=(const PropertyListReader&) = delete;

  /// Takes the next block. False when the text has turned out to be wrong: the rest need not come.
  bool feed(std::string_view block);
  /// Ends the text, once.
  PropertyListResult finish();

 private:
  class Parser;
  std::unique_ptr<Parser> parser_;
};

}  // namespace VelWhiteBoard
