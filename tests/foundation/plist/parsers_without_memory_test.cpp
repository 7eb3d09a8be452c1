// Memory that runs out inside a parser or a writer is told as such: never as a damaged text, never
// as half a result.
#include <cstddef>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/plist/property_list_reader.h"
#include "VelWhiteBoard/foundation/records/coder.h"
#include "VelWhiteBoard/foundation/records/model_mapping.h"
#include "VelWhiteBoard/vectors/diagrams.h"
#include "VelWhiteBoard/vectors/media_lists.h"

#include "tests/support/failing_memory.h"
#include "tests/support/property_lists.h"
#include "tests/support/record_classes.h"

namespace VelWhiteBoard {
namespace {

VelWbVecDiagram sampleDiagram() {
  VelWbVecDiagram diagram;
  diagram.type = "diagram";
  diagram.ID = "an identifier that is longer than a string holds without memory";
  diagram.path = Path{{1, 2, 3}, {4, 5}, {6, 7, 8}};
  diagram.points =
      Array{Array{1, 2}, Array{Array{"nested", Array{3}}, 4}, Dictionary{{"a key", Array{5}}}};
  return diagram;
}

VelWbVecMediaList sampleList() {
  VelWbVecMediaList list;
  list.type = "mediaList";
  auto item = std::make_shared<VelWbVecMediaItem>();
  item->ID = "an identifier that is longer than a string holds without memory";
  list.list = {{item, std::make_shared<VelWbVecMediaItem>(), item}};
  return list;
}

/// Runs `read`, which gives a record, while memory fails at each place in turn: it gives `expected`
/// or throws.
template <class Read>
void expectWholeOrThrown(const Record& expected, const Read& read,
                         Requests requests = Requests::kOfThisThread) {
  ASSERT_EQ(differences(*read(), expected), "");
  const std::size_t places = failEachAllocation(
      [] { return std::shared_ptr<Record>(); }, [&](auto& record) { record = read(); },
      [&](const auto& record, bool threw) {
        if (threw) return;
        ASSERT_TRUE(record) << "no record, and nothing thrown";
        ASSERT_EQ(differences(*record, expected), "");
      },
      requests);
  EXPECT_GT(places, 5U);
  EXPECT_EQ(differences(*read(), expected), "") << "the next call works";
}

TEST(ParsersWithoutMemory, AJSONTextGivesTheWholeRecordOrThrows) {
  const VelWbVecDiagram diagram = sampleDiagram();
  const VelWbVecMediaList list = sampleList();
  // Large enough that the parser has to grow for it, and given back at once.
  const std::string padding(3'000'000, ' ');
  const std::string deep = R"({"unknown":)" + std::string(3000, '[') + std::string(3000, ']') + ",";
  for (const Record* each :
       {static_cast<const Record*>(&diagram), static_cast<const Record*>(&list)}) {
    const std::string text = modelToJSONString(*each);
    const std::string large = R"({"unknown":100000000000000000000,)" + text.substr(1);
    for (const std::string& variant : {text, padding + text, deep + text.substr(1), large}) {
      expectWholeOrThrown(*each,
                          [&] { return recordWithJSON(VelWbBaseVector::ownClass(), variant); });
    }
  }
}

TEST(ParsersWithoutMemory, ADictionaryGivesTheWholeRecordOrThrows) {
  const VelWbVecDiagram diagram = sampleDiagram();
  const VelWbVecMediaList list = sampleList();
  for (const Record* each :
       {static_cast<const Record*>(&diagram), static_cast<const Record*>(&list)}) {
    const Dictionary dictionary = modelToJSONObject(*each);
    expectWholeOrThrown(
        *each, [&] { return recordWithDictionary(VelWbBaseVector::ownClass(), dictionary); });
  }
}

TEST(ParsersWithoutMemory, TheDictionaryFormIsWholeOrThrows) {
  const VelWbVecDiagram diagram = sampleDiagram();
  const Dictionary expected = modelToJSONObject(diagram);
  EXPECT_GT(
      failEachAllocation(
          [] { return Dictionary(); }, [&](Dictionary& form) { form = modelToJSONObject(diagram); },
          [&](const Dictionary& form, bool threw) { EXPECT_TRUE(threw || form == expected); }),
      10U);
}

TEST(ParsersWithoutMemory, AnArchiveTakesAValueWholeOrNotAtAll) {
  const Value value = Array{1, "a string that is longer than one holds without memory", 2};
  Coder before;
  before.encode("key", 1);
  Coder after = before;
  after.encode("key", value);
  EXPECT_GT(failEachAllocation(
                [&] { return std::make_pair(before, value); },
                [&](auto& subject) { subject.first.encode("key", std::move(subject.second)); },
                [&](const auto& subject, bool threw) {
                  EXPECT_EQ(subject.first.values(), threw ? before.values() : after.values());
                }),
            0U);
}

TEST(ParsersWithoutMemory, ARecordIsArchivedAndReadBackWholeOrTheCallThrows) {
  const VelWbVecDiagram diagram = sampleDiagram();
  // Once at each place: what the archive's parser builds cannot be destroyed without memory.
  for (std::size_t first = 1, failed = 1; failed != 0; ++first) {
    const FailingAllocations failing(first);
    try {
      Coder archive;
      diagram.encodeWithCoder(archive);
      const auto restored = VelWbVecDiagram::initWithCoder(archive);
      EXPECT_EQ(*restored, diagram);
    } catch (const std::bad_alloc&) {
    }
    failed = failing.hasFailed() ? 1 : 0;
  }
}

TEST(ParsersWithoutMemory, ReadingARecordBackChangesItWholeOrNotAtAll) {
  const VelWbVecDiagram diagram = sampleDiagram();
  Coder archive;
  diagram.encodeWithCoder(archive);
  VelWbVecDiagram other;
  other.ID = "another identifier that is longer than a string holds without memory";
  EXPECT_GT(failEachAllocation(
                [&] { return other.copyWithZone(); },
                [&](const auto& record) { decodeWithCoder(*record, archive); },
                [&](const auto& record, bool threw) {
                  EXPECT_EQ(
                      differences(*record, threw ? static_cast<const Record&>(other) : diagram),
                      "");
                }),
            10U);
}

/// The only record of a property list that is fed in blocks of 700 bytes; the list must be sound.
std::shared_ptr<Record> onlyRecord(const std::string& list) {
  std::shared_ptr<Record> only;
  PropertyListReader reader(VelWbBaseVector::ownClass(),
                            [&only](std::shared_ptr<Record> record) { only = std::move(record); });
  for (std::size_t start = 0; start < list.size(); start += 700) {
    if (!reader.feed(std::string_view(list).substr(start, 700))) break;
  }
  const PropertyListResult result = reader.finish();
  EXPECT_TRUE(result.ok()) << result.error;
  return only;
}

TEST(ParsersWithoutMemory, APropertyListGivesTheWholeRecordOrThrows) {
  const VelWbVecDiagram diagram = sampleDiagram();
  const VelWbVecMediaList list = sampleList();
  for (const Record* each :
       {static_cast<const Record*>(&diagram), static_cast<const Record*>(&list)}) {
    const std::string text = propertyListOf({testedClassOf(*each).copy(*each)});
    expectWholeOrThrown(*each, [&] { return onlyRecord(text); });
  }
}

#ifdef VELWB_MALLOC_FAILS
TEST(ParsersWithoutMemory, MemoryThatRunsOutInsideTheXMLParserIsNoDamage) {
  VelWbVecDiagram diagram = sampleDiagram();
  diagram.kind = std::string(100'000, 'k');  // one text, longer than the parser's buffers
  const std::string text = propertyListOf({diagram.copyWithZone()});
  expectWholeOrThrown(
      diagram, [&] { return onlyRecord(text); }, Requests::kOfCLibraryToo);
}

TEST(ParsersWithoutMemory, AReaderThatRanOutOfMemoryNeverTellsOfASoundList) {
  const std::string text = propertyListOf({sampleDiagram().copyWithZone()});
  std::size_t thrown = 0;
  for (std::size_t first = 1;; ++first) {
    PropertyListReader reader(VelWbBaseVector::ownClass(), [](const auto&) {});
    bool failed = false;
    try {
      const FailingAllocations failing(first, Requests::kOfCLibraryToo);
      try {
        reader.feed(text);
      } catch (const std::bad_alloc&) {
        failed = true;
      }
      if (!failing.hasFailed()) break;
    } catch (const std::bad_alloc&) {
    }
    if (!failed) continue;
    ++thrown;
    EXPECT_THROW(reader.feed(" "), std::bad_alloc);
    EXPECT_THROW(static_cast<void>(reader.finish()), std::bad_alloc);
  }
  EXPECT_GT(thrown, 10U);
}
#endif

}  // namespace
}  // namespace VelWhiteBoard
