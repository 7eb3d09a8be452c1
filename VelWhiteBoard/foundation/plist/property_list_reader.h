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
  /// Empty on success; otherwise a description of the error for human readers.
  std::string error;
  /// Where, counted from 1; 0 when unknown.
  std::uint64_t line = 0;
  std::uint64_t column = 0;
  /// Offset in bytes from the beginning of the text.
  std::uint64_t byte = 0;

  bool ok() const { return error.empty(); }
  explicit operator bool() const { return ok(); }
};

/// Reads a property list whose top is an array, and builds a record straight from each dictionary
/// in it.
///
/// Strict about the form: XML that is not well-formed, bytes that are not UTF-8, unknown elements,
/// malformed numbers, entity declarations and anything after the end are errors. Lenient about the
/// contents, like the dictionary form: elements of the array that are not dictionaries are skipped,
/// and a value that a property cannot take leaves it at its default.
///
/// The text comes in blocks of any size. Time is linear in the text, memory is that of one record,
/// and nesting costs no stack. When memory runs out, `feed` and `finish` throw std::bad_alloc, and
/// every later call throws it again, since that says nothing about the text. Exceptions of the
/// consumer are treated the same.
class PropertyListReader {
 public:
  using RecordConsumer = std::function<void(std::shared_ptr<Record> record)>;

  /// `consume` takes each record, in order, as soon as its dictionary is complete.
  PropertyListReader(const RecordClass& asked, RecordConsumer consume);
  ~PropertyListReader();
  PropertyListReader(const PropertyListReader&) = delete;
  PropertyListReader& operator=(const PropertyListReader&) = delete;

  /// Takes the next block. False when the text is invalid; the rest is then not needed.
  bool feed(std::string_view block);
  /// Ends the text, once.
  PropertyListResult finish();

 private:
  class Parser;
  std::unique_ptr<Parser> parser_;
};

}  // namespace VelWhiteBoard
