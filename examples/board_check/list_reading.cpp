#include "list_reading.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <new>
#include <string_view>
#include <utility>

#include "VelWhiteBoard/vectors/base_vector.h"

#include "layout_check.h"
#include "record_splitter.h"

namespace board_check {

using namespace VelWhiteBoard;

namespace {

constexpr std::size_t kLongestTypeName = 200;
constexpr std::size_t kMostTypes = 10'000;
constexpr std::size_t kMostGaps = 10;

constexpr const char* kNoMemory = "no memory";
constexpr const char* kTooLong = "no memory for a record of more than 64 MiB";

/// What the parser reports when it gets no memory: nothing is wrong with the text then.
constexpr std::string_view kParserHasNoMemory = "out of memory";

/// One reading of a file, and a second one of what comes after a break.
class ListReading {
 public:
  ListReading(const std::filesystem::path& path, const RecordClass& asked, ListVisitor& visitor)
      : path_(path), asked_(asked), visitor_(visitor) {}

  Reading run() {
    try {
      readWhole();
    } catch (const std::bad_alloc&) {
      withoutMemory_ = kNoMemory;
    }
    if (reading_.failure) {
      visitor_.takeGap();
    } else if (withoutMemory_ != nullptr || !reading_.result.ok()) {
      resume();
    }
    return std::move(reading_);
  }

 private:
  /// The library's own way of reading, which decides whether the file is sound.
  void readWhole() {
    LayoutCheck layout;
    std::uint64_t sinceRecord = 0;
    PropertyListReader reader(asked_, [&](const std::shared_ptr<Record>& record) {
      sinceRecord = 0;
      layout.addRecord(*record);
      take(record, reading_.before);
    });
    reading_.failure = readBlocks(path_, [&](std::string_view block) {
      layout.addText(block);
      sinceRecord += block.size();
      if (sinceRecord > kLargestRecord + kBlockSize) withoutMemory_ = kTooLong;
      return withoutMemory_ == nullptr && reader.feed(block);
    });
    if (reading_.failure) return;
    reading_.result = reader.finish();
    if (reading_.result.error == kParserHasNoMemory) throw std::bad_alloc();
    if (reading_.result.ok()) reading_.differsAt = layout.finish();
  }

  /// Record by record, from the break on.
  void resume() {
    visitor_.takeGap();
    // Without memory the place of the break is not known, only the records before it.
    brokenAt_ = withoutMemory_ != nullptr ? std::numeric_limits<std::uint64_t>::max()
                                          : reading_.result.byte;
    try {
      RecordSplitter splitter([this](const Stretch& stretch) { takeStretch(stretch); });
      reading_.failure = readBlocks(path_, [&](std::string_view block) {
        splitter.feed(block);
        return true;
      });
      if (!reading_.failure) splitter.finish();
    } catch (const std::bad_alloc&) {
      reading_.failure = {ReadFailure::Kind::kNoMemory, kNoMemory};
    }
    explainLackOfMemory();
  }

  /// The parser had no memory for the file. Perhaps a broken token took all that follows for its
  /// own; then there are records behind it.
  void explainLackOfMemory() {
    if (reading_.failure) return;
    if (metTooLong_) reading_.failure = {ReadFailure::Kind::kNoMemory, kTooLong};
    if (withoutMemory_ == nullptr || reading_.failure) return;
    if (reading_.after.records == 0 || reading_.skipped.first.empty()) {
      reading_.failure = {ReadFailure::Kind::kNoMemory, withoutMemory_};
      return;
    }
    const Place place = reading_.skipped.first.front().place;
    reading_.result = {"a record has no end", place.line, place.column, 0};
  }

  void takeStretch(const Stretch& stretch) {
    const bool endsBefore = stretch.offset + stretch.bytes <= brokenAt_;
    if (stretch.record == 0) {
      if (!endsBefore) addGap(lineOutside(stretch));
      return;
    }
    const bool wasRead = stretch.record <= reading_.before.records && stretch.offset < brokenAt_;
    if (wasRead) return;
    metTooLong_ = metTooLong_ || stretch.isTooLong;
    const std::uint64_t recordsBefore = reading_.after.records;
    const PropertyListResult result = readRecord(stretch.text);
    if (reading_.after.records > recordsBefore) return;
    // The text was put behind one line of ours.
    const Place place{stretch.line + std::max<std::uint64_t>(result.line, 2) - 2,
                      std::max<std::uint64_t>(result.column, 1)};
    addGap({place, 1, stretch.bytes});
  }

  Gap lineOutside(const Stretch& line) const {
    const bool breaksHere = line.offset <= brokenAt_;
    const Place place =
        breaksHere ? Place{reading_.result.line, reading_.result.column} : Place{line.line, 1};
    return {place, 0, line.offset + line.bytes - std::max(line.offset, brokenAt_)};
  }

  /// Reads one record that stands alone.
  PropertyListResult readRecord(std::string_view text) {
    PropertyListReader reader(asked_, [this](const std::shared_ptr<Record>& record) {
      take(record, reading_.after);
      lastIsGap_ = false;
    });
    // Its indentation may be what is broken.
    const bool isRead = reader.feed("<plist><array>\n\t") && !text.empty() &&
                        reader.feed(text.substr(1)) && reader.feed("</array></plist>");
    static_cast<void>(isRead);  // the result tells
    PropertyListResult result = reader.finish();
    if (result.error == kParserHasNoMemory) throw std::bad_alloc();
    return result;
  }

  void take(const std::shared_ptr<Record>& record, Tally& tally) {
    tally.add(*record);
    visitor_.takeRecord(record);
  }

  void addGap(const Gap& gap) {
    reading_.skipped.add(gap, std::exchange(lastIsGap_, true));
    visitor_.takeGap();
  }

  const std::filesystem::path& path_;
  const RecordClass& asked_;
  ListVisitor& visitor_;
  Reading reading_;
  /// Why the parser could not go on although nothing is known to be wrong with the file.
  const char* withoutMemory_ = nullptr;
  std::uint64_t brokenAt_ = 0;
  bool metTooLong_ = false;
  bool lastIsGap_ = false;
};

}  // namespace

void Tally::add(const Record& record) {
  ++records;
  const auto* vector = recordCast<const VelWbBaseVector>(&record);
  std::string name = vector == nullptr ? "?" : vector->type.value_or("(none)");
  if (name.size() > kLongestTypeName) name.resize(kLongestTypeName);
  if (types.size() >= kMostTypes && !types.contains(name)) name = "(others)";
  ++types[name];
}

void Gaps::add(const Gap& gap, bool continuesLast) {
  records += gap.records;
  bytes += gap.bytes;
  if (!continuesLast) {
    ++count;
    if (first.size() < kMostGaps) first.push_back(gap);
  } else if (count <= kMostGaps) {
    first.back().records += gap.records;
    first.back().bytes += gap.bytes;
  }
}

Reading readList(const std::filesystem::path& path, const RecordClass& asked,
                 ListVisitor& visitor) {
  return ListReading(path, asked, visitor).run();
}

}  // namespace board_check
