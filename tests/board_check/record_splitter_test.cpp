#include "record_splitter.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace board_check {
namespace {

constexpr std::string_view kHead =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<array>\n";
constexpr std::string_view kFoot = "</array>\n</plist>\n";

/// A stretch that owns its text.
struct Piece {
  std::string text;
  std::uint64_t offset;
  std::uint64_t line;
  std::uint64_t bytes;
  std::uint64_t record;
  bool isTooLong;

  friend bool operator==(const Piece&, const Piece&) = default;
};

std::vector<Piece> piecesOf(std::string_view text, std::size_t blockSize) {
  std::vector<Piece> pieces;
  RecordSplitter splitter([&pieces](const Stretch& stretch) {
    pieces.push_back({std::string(stretch.text), stretch.offset, stretch.line, stretch.bytes,
                      stretch.record, stretch.isTooLong});
  });
  for (std::size_t i = 0; i < text.size(); i += blockSize) splitter.feed(text.substr(i, blockSize));
  splitter.finish();
  return pieces;
}

std::vector<Piece> piecesOf(std::string_view text) { return piecesOf(text, text.size() + 1); }

std::string record(std::string_view contents) {
  return "\t<dict>\n\t\t<key>a</key>\n\t\t<string>" + std::string(contents) +
         "</string>\n\t</dict>\n";
}

std::string list(const std::string& records) {
  return std::string(kHead) + records + std::string(kFoot);
}

/// The texts of the records, and how many lines stood outside.
std::vector<std::string> recordsIn(std::string_view text, int* linesOutside = nullptr) {
  std::vector<std::string> records;
  for (const Piece& piece : piecesOf(text)) {
    if (piece.record != 0) records.push_back(piece.text);
    if (piece.record == 0 && linesOutside != nullptr) ++*linesOutside;
  }
  return records;
}

/// A record as it comes out: without the end of its last line.
std::string trimmed(std::string text) {
  text.pop_back();
  return text;
}

TEST(RecordSplitter, GivesEachRecordWithItsPlace) {
  const std::string first = record("one");
  const std::string second = record("two");
  const std::vector<Piece> expected{
      {trimmed(first), kHead.size(), 4, first.size(), 1, false},
      {trimmed(second), kHead.size() + first.size(), 8, second.size(), 2, false}};
  EXPECT_EQ(piecesOf(list(first + second)), expected);
}

TEST(RecordSplitter, GivesTheSameWhateverTheSizeOfTheBlocks) {
  const std::string text =
      list(record("one") + "stray\n" + record("\n\n") + "\t<dict>\n" + record("x"));
  const std::vector<Piece> whole = piecesOf(text);
  EXPECT_EQ(whole.size(), 5U);
  for (std::size_t size = 1; size < 80; ++size) EXPECT_EQ(piecesOf(text, size), whole) << size;
}

TEST(RecordSplitter, TakesNoNestedDictionaryForARecord) {
  const std::string nested =
      "\t<dict>\n\t\t<key>list</key>\n\t\t<array>\n\t\t\t<dict>\n\t\t\t\t<key>a</"
      "key>\n\t\t\t\t<true/>\n"
      "\t\t\t</dict>\n\t\t</array>\n\t</dict>\n";
  EXPECT_EQ(recordsIn(list(nested)), std::vector{trimmed(nested)});
}

TEST(RecordSplitter, EndsARecordWithoutAnEndWhereTheNextBegins) {
  const std::string open = "\t<dict>\n\t\t<key>a</key>\n";
  EXPECT_EQ(recordsIn(list(open + record("one"))), (std::vector{open, trimmed(record("one"))}));
}

TEST(RecordSplitter, GivesWhatIsLeftOfTheLastRecord) {
  const std::string text = std::string(kHead) + record("one") + "\t<dict>\n\t\t<key>a";
  EXPECT_EQ(recordsIn(text),
            (std::vector<std::string>{trimmed(record("one")), "\t<dict>\n\t\t<key>a"}));
}

TEST(RecordSplitter, FindsARecordWhoseIndentationIsBroken) {
  std::string broken = record("one");
  broken.front() = 'X';
  EXPECT_EQ(recordsIn(list(broken + record("two"))),
            (std::vector{trimmed(broken), trimmed(record("two"))}));
}

TEST(RecordSplitter, TellsOfLinesThatAreNeitherFrameNorRecord) {
  int linesOutside = 0;
  recordsIn(list(record("one") + "\n \t\r\n"), &linesOutside);
  EXPECT_EQ(linesOutside, 0);
  const std::vector<Piece> pieces = piecesOf("<plist>\n<arrax>\nstray\n");
  ASSERT_EQ(pieces.size(), 2U);
  EXPECT_EQ(pieces[0], (Piece{"", 8, 2, 8, 0, false}));
  EXPECT_EQ(pieces[1], (Piece{"", 16, 3, 6, 0, false}));
}

TEST(RecordSplitter, KeepsNothingOfARecordThatIsTooLongButFindsTheNext) {
  const std::string block(1U << 20U, 'a');
  std::vector<Piece> pieces;
  RecordSplitter splitter([&pieces](const Stretch& stretch) {
    pieces.push_back({std::string(stretch.text), stretch.offset, stretch.line, stretch.bytes,
                      stretch.record, stretch.isTooLong});
  });
  splitter.feed("\t<dict>\n");
  for (std::size_t size = 0; size <= kLargestRecord; size += block.size()) splitter.feed(block);
  splitter.feed("\n" + record("two"));
  splitter.finish();
  ASSERT_EQ(pieces.size(), 2U);
  EXPECT_TRUE(pieces[0].isTooLong);
  EXPECT_EQ(pieces[0].text, "");
  EXPECT_GT(pieces[0].bytes, kLargestRecord);
  EXPECT_EQ(pieces[1].text, trimmed(record("two")));
  EXPECT_FALSE(pieces[1].isTooLong);
}

}  // namespace
}  // namespace board_check
