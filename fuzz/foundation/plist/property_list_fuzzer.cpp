// Any bytes through the property-list reader, in blocks of any size. What is read is written and
// read again, and must come back equal.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "VelWhiteBoard/foundation/plist/property_list_reader.h"
#include "VelWhiteBoard/foundation/plist/property_list_writer.h"
#include "VelWhiteBoard/services/resources.h"
#include "VelWhiteBoard/vectors/base_vector.h"
#include "VelWhiteBoard/vectors/commands.h"

#include "fuzz/check.h"
#include "tests/support/dice.h"

namespace {

using namespace VelWhiteBoard;
using fuzz::require;

struct ReadRecords {
  RecordList records;
  PropertyListResult result;
};

/// Reads `text` in blocks of up to `largest` bytes each.
ReadRecords read(const RecordClass& asked, std::string_view text, std::size_t largest) {
  ReadRecords list;
  Dice dice(std::hash<std::string_view>()(text));  // an input does the same every time
  PropertyListReader reader(asked, [&list](std::shared_ptr<Record> record) {
    require(record != nullptr, "a record that was read is there");
    list.records.push_back(std::move(record));
  });
  while (!text.empty()) {
    const std::size_t size =
        std::min(text.size(), 1 + static_cast<std::size_t>(dice.below(static_cast<int>(largest))));
    // In memory of its own: a read beyond the block is found.
    if (!reader.feed(std::string(text.substr(0, size)))) break;
    text.remove_prefix(size);
  }
  list.result = reader.finish();
  return list;
}

std::string write(const RecordList& records) {
  std::string text;
  const BlockConsumer append = [&text](std::string_view block) {
    text += block;
    return true;
  };
  PropertyListWriter writer(append);
  for (const auto& record : records) require(writer.add(*record), "a record can be written");
  require(writer.finish(), "a list can be ended");
  return text;
}

void requireEqual(const RecordList& left, const RecordList& right, std::string_view rule) {
  require(left.size() == right.size(), rule);
  for (std::size_t index = 0; index < left.size(); ++index) {
    require(left[index]->isEqual(*right[index]), rule);
    require(left[index]->hash() == right[index]->hash(), "equal records have equal hashes");
  }
}

void requireFirstRound(const RecordList& before, const RecordList& after,
                       const RecordClass& asked) {
  require(before.size() == after.size(), "every record that was read is written");
  for (std::size_t index = 0; index < before.size(); ++index) {
    if (!fuzz::isFinite(*before[index])) continue;  // a file holds no NaN and no infinity
    if (!fuzz::keepsItsClass(*before[index], asked)) continue;
    require(before[index]->isEqual(*after[index]), "what was read and written is read again");
  }
}

void tryAs(const RecordClass& asked, std::string_view text) {
  const ReadRecords whole = read(asked, text, text.size() + 1);
  const ReadRecords pieces = read(asked, text, 16);
  require(whole.result.ok() == pieces.result.ok(), "blocks do not matter to the outcome");
  requireEqual(whole.records, pieces.records, "blocks do not matter to the records");
  if (!whole.result.ok()) require(whole.result.line > 0, "an error has a place");

  // Records that came before an error are sound ones, too.
  const std::string first = write(whole.records);
  const ReadRecords again = read(asked, first, 4096);
  require(again.result.ok(), "what is written can be read");
  requireFirstRound(whole.records, again.records, asked);

  // A record without a type is read as what its keys look like, so it may become another one.
  for (const auto& record : again.records) {
    if (!fuzz::keepsItsClass(*record, asked)) return;
  }
  const std::string second = write(again.records);
  const ReadRecords third = read(asked, second, 4096);
  requireEqual(again.records, third.records, "the second round changes nothing");
  require(write(third.records) == second, "the second text is the first text");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = fuzz::textOf(data, size);
  tryAs(VelWbBaseVector::ownClass(), text);
  tryAs(VelWbVecSwitchPage::ownClass(), text);
  tryAs(VelWhiteBoardResource::ownClass(), text);
  return 0;
}
