// Every record class of the library, with what only its own type can do.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "VelWhiteBoard/foundation/records/coder.h"
#include "VelWhiteBoard/foundation/records/record.h"

namespace VelWhiteBoard {

struct TestedClass {
  const RecordClass* own;
  std::shared_ptr<Record> (*copy)(const Record& record);
  std::shared_ptr<Record> (*initWithCoder)(const Coder& coder);
  /// Null for a class without a mutable copy.
  std::shared_ptr<Record> (*mutableCopy)(const Record& record);
};

/// All of them; a test compares the list with what the headers declare.
const std::vector<TestedClass>& testedClasses();

/// The class of that very record.
const TestedClass& testedClassOf(const Record& record);

/// Whether the property is an absent string, path, array or list.
bool isAbsent(const Property& property, const Record& record);

/// How the values of two records of one class differ, bit by bit, without any of the library's own
/// comparisons; empty when they do not. A NaN is like any other.
std::string differences(const Record& left, const Record& right);

}  // namespace VelWhiteBoard
