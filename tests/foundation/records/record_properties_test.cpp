// What holds for all declared properties of all record classes.
//
// A failure prints the seed; VELWB_TEST_SEED tries another one.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/records/coder.h"
#include "VelWhiteBoard/foundation/records/model_mapping.h"
#include "VelWhiteBoard/vectors/base_vector.h"

#include "tests/support/print_records.h"
#include "tests/support/property_lists.h"
#include "tests/support/random_records.h"
#include "tests/support/record_classes.h"

namespace VelWhiteBoard {
namespace {

constexpr int kRounds = 200;

class RecordProperties : public ::testing::TestWithParam<std::size_t> {
 protected:
  const TestedClass& tested() const { return testedClasses()[GetParam()]; }
  const RecordClass& own() const { return *tested().own; }

  /// Tries `check` on random records of the class.
  template <class Check>
  void forRandomRecords(Taste taste, const Check& check) {
    RandomRecords random(taste, GetParam());
    for (int round = 0; round < kRounds && !HasFatalFailure(); ++round) {
      const auto record = random.record(own());
      SCOPED_TRACE("VELWB_TEST_SEED=" + std::to_string(testSeed()) + ", round " +
                   std::to_string(round) + ": " + record->description());
      check(*record);
    }
  }

  std::shared_ptr<Record> throughText(const Record& record) const {
    return recordWithJSON(own(), modelToJSONString(record));
  }
  std::shared_ptr<Record> throughArchive(const Record& record) const {
    Coder archive;
    record.encodeWithCoder(archive);
    return tested().initWithCoder(Coder(archive.data()));
  }
  std::shared_ptr<Record> throughList(const Record& record) const {
    const ReadRecords list = readPropertyList(own(), propertyListOf({tested().copy(record)}));
    EXPECT_TRUE(list.result.ok()) << list.result.error;
    return list.records.size() == 1 ? list.records.front() : nullptr;
  }
};

TEST_P(RecordProperties, ARecordComesBackFromItsDictionary) {
  forRandomRecords(kForDictionaries, [&](const Record& record) {
    const auto restored = recordWithDictionary(own(), modelToJSONObject(record));
    ASSERT_TRUE(restored);
    ASSERT_EQ(differences(*restored, record), "");
  });
}

TEST_P(RecordProperties, TheDictionaryHasTheNamesOfThePropertiesThatAreNotNull) {
  forRandomRecords(kForDictionaries, [&](const Record& record) {
    const Dictionary dictionary = modelToJSONObject(record);
    std::set<std::string> expected;
    for (const Property& property : own().properties) {
      if (!isAbsent(property, record)) expected.emplace(property.name);
    }
    std::set<std::string> found;
    for (const auto& [key, value] : dictionary) found.insert(key);
    ASSERT_EQ(found, expected);
  });
}

TEST_P(RecordProperties, ARecordComesBackFromItsText) {
  forRandomRecords(kForJSONText, [&](const Record& record) {
    const std::string text = modelToJSONString(record);
    ASSERT_EQ(Value::parse(text, nullptr, false), Value(modelToJSONObject(record))) << text;
    ASSERT_EQ(text.find('\n'), std::string::npos);
    const auto restored = throughText(record);
    ASSERT_TRUE(restored);
    ASSERT_EQ(differences(*restored, record), "");
  });
}

TEST_P(RecordProperties, WhatTextLosesItLosesOnlyOnce) {
  forRandomRecords(kAnything, [&](const Record& record) {
    const auto once = throughText(record);
    ASSERT_TRUE(once);
    const auto twice = recordWithJSON(once->recordClass(), modelToJSONString(*once));
    ASSERT_TRUE(twice);
    ASSERT_EQ(differences(*twice, *once), "");
    ASSERT_EQ(modelToJSONString(*twice), modelToJSONString(*once));
  });
}

TEST_P(RecordProperties, TheKeysOfTheTextAreInTheOrderOfTheDeclaration) {
  forRandomRecords(kForPropertyLists, [&](const Record& record) {
    const auto ordered = nlohmann::ordered_json::parse(modelToJSONString(record));
    std::vector<std::string> expected;
    for (const Property& property : own().properties) {
      if (ordered.contains(property.name)) expected.emplace_back(property.name);
    }
    std::vector<std::string> found;
    for (const auto& [key, value] : ordered.items()) found.push_back(key);
    ASSERT_EQ(found, expected);
  });
}

TEST_P(RecordProperties, ARecordComesBackFromAnArchiveWithEveryNumberAndByte) {
  forRandomRecords(kAnything, [&](const Record& record) {
    ASSERT_EQ(differences(*throughArchive(record), record), "");
  });
}

TEST_P(RecordProperties, ARecordComesBackFromAFile) {
  forRandomRecords(kForPropertyLists, [&](const Record& record) {
    const auto restored = throughList(record);
    ASSERT_TRUE(restored);
    ASSERT_EQ(differences(*restored, record), "");
  });
}

TEST_P(RecordProperties, WhatAFileLosesItLosesOnlyOnce) {
  forRandomRecords(kAnything, [&](const Record& record) {
    const auto once = throughList(record);
    ASSERT_TRUE(once);
    const auto twice = readPropertyList(once->recordClass(), propertyListOf({once})).records.at(0);
    ASSERT_EQ(differences(*twice, *once), "");
    ASSERT_EQ(propertyListOf({twice}), propertyListOf({once}));
  });
}

TEST_P(RecordProperties, ACopyIsEqualAndAnotherRecord) {
  forRandomRecords(kAnything, [&](const Record& record) {
    const auto copy = tested().copy(record);
    ASSERT_NE(copy.get(), &record);
    ASSERT_EQ(differences(*copy, record), "");
    ASSERT_TRUE(copy->isEqual(record));
    ASSERT_TRUE(record.isEqual(*copy));
    ASSERT_EQ(copy->hash(), record.hash());
  });
}

// That lets a reader know what a key holds before it knows the class.
TEST_P(RecordProperties, OfVectorsHaveOneKindForEachName) {
  if (!own().isKindOf(VelWbBaseVector::ownClass())) return;
  for (const Property& property : own().properties) {
    const Property* any = propertyOfAnyVector(property.name);
    ASSERT_NE(any, nullptr) << property.name;
    EXPECT_EQ(any->kind, property.kind) << property.name;
  }
}

TEST_P(RecordProperties, EachSinglePropertyThatDiffersMakesRecordsUnequal) {
  RandomRecords changes(kForDictionaries, 99);
  forRandomRecords(kForDictionaries, [&](const Record& record) {
    for (const Property& property : own().properties) {
      const auto other = tested().copy(record);
      // By value: a zero of the other sign is no difference.
      const auto form = [](const Record& each) { return Value(modelToJSONObject(each)); };
      for (int attempt = 0; form(*other) == form(record); ++attempt) {
        ASSERT_LT(attempt, 1000) << property.name;
        changes.fill(property, *other);
      }
      ASSERT_FALSE(record.isEqual(*other)) << property.name << other->description();
      ASSERT_FALSE(other->isEqual(record)) << property.name << other->description();
    }
  });
}

/// Flips the sign of each zero, and makes integers of whole numbers in free-form values.
void alterWithoutChange(Value& value) {
  if (value.is_structured()) {
    for (Value& each : value) alterWithoutChange(each);
  } else if (value.is_number_float()) {
    const auto number = value.get<double>();
    if (number == 0) {
      value = -number;
    } else if (number ==
               static_cast<double>(static_cast<int>(number > -1e9 && number < 1e9 ? number : 0))) {
      value = static_cast<int>(number);
    }
  }
}

TEST_P(RecordProperties, EqualRecordsHaveEqualHashesHoweverTheirNumbersAreSpelled) {
  forRandomRecords(kAnything, [&](const Record& record) {
    const auto other = tested().copy(record);
    for (const Property& property : own().properties) {
      if (property.kind == PropertyKind::real) {
        double& field = property.in<double>(*other);
        if (field == 0) field = -field;
      }
      if (property.kind == PropertyKind::array) {
        auto& field = property.in<std::optional<Array>>(*other);
        for (std::size_t index = 0; field && index < field->size(); ++index) {
          alterWithoutChange(field->at(index));
        }
      }
      if (property.kind == PropertyKind::path) {
        auto& field = property.in<std::optional<Path>>(*other);
        if (!field) continue;
        Path flipped;
        for (const auto position : *field) {
          std::vector<double> numbers(position.begin(), position.end());
          for (double& number : numbers) {
            if (number == 0) number = -number;
          }
          flipped.push_back(Path::Position(numbers));
        }
        field = flipped;
      }
    }
    ASSERT_TRUE(record.isEqual(*other)) << other->description();
    ASSERT_EQ(record.hash(), other->hash()) << other->description();
  });
}

TEST_P(RecordProperties, TheDescriptionNamesTheClassAndEveryProperty) {
  forRandomRecords(kAnything, [&](const Record& record) {
    const std::string description = record.description();
    ASSERT_NE(description.find(own().name), std::string::npos);
    for (const Property& property : own().properties) {
      ASSERT_NE(description.find(std::string(property.name) + " = "), std::string::npos);
    }
  });
}

/// What the mutable copy of each class leaves at its default on purpose.
std::set<std::string_view> leftOutOfMutableCopy(std::string_view name) {
  if (name == "VelWbVecSquare" || name == "VelWbVecFile" || name == "VelWbCaptureInfo") {
    return {"ps"};
  }
  if (name == "VelWbVecVideo") return {"ps", "path", "undeletable"};
  if (name == "VelWbVecDiagram" || name == "VelWbVecCircle") return {"path"};
  if (name == "VelWbVecMediaList") return {"owner"};
  return {};
}

TEST_P(RecordProperties, AMutableCopyHasAllButWhatItLeavesOutOnPurpose) {
  if (tested().mutableCopy == nullptr) {
    EXPECT_TRUE(own().name.ends_with("Resource")) << "only resources have none";
    return;
  }
  const auto leftOut = leftOutOfMutableCopy(own().name);
  forRandomRecords(kAnything, [&](const Record& record) {
    const auto expected = tested().copy(record);
    for (const Property& property : own().properties) {
      if (leftOut.count(property.name) > 0) {
        switch (property.kind) {
          case PropertyKind::signedInteger:
            property.in<std::int64_t>(*expected) = 0;
            break;
          case PropertyKind::boolean:
            property.in<bool>(*expected) = false;
            break;
          default:
            ASSERT_EQ(property.kind, PropertyKind::path) << property.name;
            property.in<std::optional<Path>>(*expected).reset();
        }
      }
      if (property.name == "points") {
        auto& points = property.in<std::optional<Array>>(*expected);
        if (!points) points.emplace();
      }
    }
    ASSERT_EQ(differences(*tested().mutableCopy(record), *expected), "");
  });
}

INSTANTIATE_TEST_SUITE_P(All, RecordProperties,
                         ::testing::Range(std::size_t{0}, testedClasses().size()),
                         [](const auto& each) {
                           return std::string(testedClasses()[each.param].own->name);
                         });

TEST(RecordClasses, EveryRecordClassThatAHeaderDeclaresIsTested) {
  const std::filesystem::path library =
      std::filesystem::path(VELWB_TEST_DATA_DIR) / ".." / ".." / "VelWhiteBoard";
  const std::regex declaration(
      R"(class\s+(?:VELWHITEBOARD_EXPORT\s+)?(\w+)\s*:\s*public\s+(?:RecordOf|VectorOf)<)");
  std::set<std::string> declared;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(library)) {
    // What derives for all is no class of its own.
    if (entry.path().extension() != ".h") continue;
    std::ostringstream contents;
    contents << std::ifstream(entry.path()).rdbuf();
    const std::string text = contents.str();
    for (std::sregex_iterator match(text.begin(), text.end(), declaration);
         match != std::sregex_iterator(); ++match) {
      declared.insert((*match)[1]);
    }
  }
  declared.erase("VectorOf");
  declared.erase("Self");
  std::set<std::string> tested;
  for (const TestedClass& each : testedClasses()) tested.emplace(each.own->name);
  EXPECT_EQ(tested, declared);
  EXPECT_EQ(tested.size(), testedClasses().size()) << "a class is listed twice";
}

}  // namespace
}  // namespace VelWhiteBoard
