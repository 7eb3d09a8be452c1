// A second, strict reader over files of all record classes: Python's.
#include <cstddef>
#include <string>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/records/model_mapping.h"

#include "tests/support/property_lists.h"
#include "tests/support/random_records.h"
#include "tests/support/record_classes.h"

namespace VelWhiteBoard {
namespace {

/// Random records of every class.
RecordList someOfEach(Taste taste) {
  constexpr int kOfEach = 150;
  RandomRecords random(taste, 4);
  RecordList records;
  for (const TestedClass& tested : testedClasses()) {
    for (int count = 0; count < kOfEach; ++count) records.push_back(random.record(*tested.own));
  }
  return records;
}

TEST(SecondReader, FindsTheDictionaryFormOfEachRecordInTheFile) {
  const RecordList records = someOfEach(kForPropertyLists);
  const Value found = readWithSecondReader(propertyListOf(records));
  ASSERT_EQ(found.size(), records.size()) << testSeed();
  for (std::size_t index = 0; index < records.size(); ++index) {
    // As text: integers and reals are told apart, and so are the zeros.
    ASSERT_EQ(found[index].dump(), Value(modelToJSONObject(*records[index])).dump())
        << "VELWB_TEST_SEED=" << testSeed() << ", record " << index;
  }
}

TEST(SecondReader, TakesEveryFileWhateverTheRecordsHoldAndFindsWhatOursFinds) {
  const RecordList records = someOfEach(kAnything);
  const Value found = readWithSecondReader(propertyListOf(records));
  ASSERT_EQ(found.size(), records.size()) << testSeed();
  for (std::size_t index = 0; index < records.size(); ++index) {
    const RecordClass& own = records[index]->recordClass();
    const ReadRecords ours = readPropertyList(own, propertyListOf({records[index]}));
    ASSERT_EQ(ours.records.size(), 1U) << ours.result.error;
    const auto second = recordWithDictionary(own, found[index].get_ref<const Dictionary&>());
    ASSERT_EQ(differences(*second, *ours.records.front()), "")
        << "VELWB_TEST_SEED=" << testSeed() << ", record " << index;
  }
}

}  // namespace
}  // namespace VelWhiteBoard
