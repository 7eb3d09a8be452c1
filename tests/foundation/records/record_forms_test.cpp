// Any input in any form: no crash, and all forms of a record give the same record.
#include <algorithm>
#include <cstddef>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/records/coder.h"
#include "VelWhiteBoard/foundation/records/model_mapping.h"
#include "VelWhiteBoard/vectors/base_vector.h"
#include "VelWhiteBoard/vectors/diagrams.h"
#include "VelWhiteBoard/vectors/strokes.h"

#include "tests/support/property_lists.h"
#include "tests/support/random_records.h"
#include "tests/support/record_classes.h"

namespace VelWhiteBoard {
namespace {

constexpr int kFormRounds = 6000;

std::string trace(const Dictionary& dictionary) {
  return "VELWB_TEST_SEED=" + std::to_string(testSeed()) + ": " +
         Value(dictionary).dump(-1, ' ', false, Value::error_handler_t::replace);
}

/// The members in any order, as other writers may have them.
std::vector<std::pair<std::string, Value>> shuffled(const Dictionary& dictionary,
                                                    RandomRecords& random) {
  std::vector<std::pair<std::string, Value>> members(dictionary.begin(), dictionary.end());
  for (std::size_t index = members.size(); index > 1; --index) {
    std::swap(members[index - 1], members[random.below(index)]);
  }
  return members;
}

TEST(RecordForms, DictionaryTextAndFileLeadToTheSameRecord) {
  RandomRecords random(kForPropertyLists, 1);
  const auto& classes = testedClasses();
  for (int round = 0; round < kFormRounds; ++round) {
    const Dictionary dictionary = random.dictionary();
    const RecordClass& asked = *classes[random.below(classes.size())].own;
    std::string text = "{";
    std::string xml = "<dict>";
    for (const auto& [key, value] : shuffled(dictionary, random)) {
      text += (text.size() > 1 ? "," : "") + Value(key).dump() + ":" + value.dump();
      const std::string member = xmlOf(Dictionary{{key, value}});
      xml += member.substr(6, member.size() - 13);  // without <dict> and </dict>
    }
    const auto expected = recordWithDictionary(asked, dictionary);
    const auto fromText = recordWithJSON(asked, text + "}");
    const auto fromFile = recordWithXML(asked, xml + "</dict>");
    ASSERT_TRUE(expected && fromText && fromFile) << trace(dictionary);
    ASSERT_EQ(differences(*fromText, *expected), "") << trace(dictionary);
    ASSERT_EQ(differences(*fromFile, *expected), "") << trace(dictionary);
  }
}

TEST(RecordForms, NoDictionaryCrashesAndWhatItGivesIsARecordLikeAnyOther) {
  RandomRecords random(kAnything, 2);
  const auto& classes = testedClasses();
  for (int round = 0; round < kFormRounds; ++round) {
    const Dictionary dictionary = random.dictionary();
    const RecordClass& asked = *classes[random.below(classes.size())].own;
    const auto record = recordWithDictionary(asked, dictionary);
    ASSERT_TRUE(record) << trace(dictionary);
    const TestedClass& tested = testedClassOf(*record);
    ASSERT_EQ(differences(*tested.copy(*record), *record), "") << trace(dictionary);
    ASSERT_TRUE(Value::accept(modelToJSONString(*record))) << trace(dictionary);
    ASSERT_TRUE(readPropertyList(asked, propertyListOf({record})).result.ok()) << trace(dictionary);
    Coder archive;
    for (const auto& [key, value] : dictionary) archive.encode(key, value);
    for (const TestedClass& each : classes) {
      ASSERT_TRUE(each.initWithCoder(archive)) << trace(dictionary);
    }
  }
}

TEST(RecordForms, NoBytesCrashAReader) {
  RandomRecords random(kForJSONText, 3);
  const auto& classes = testedClasses();
  std::mt19937_64 engine(testSeed());
  for (int round = 0; round < kFormRounds; ++round) {
    const auto record = random.record(*classes[random.below(classes.size())].own);
    for (std::string text : {modelToJSONString(*record), propertyListOf({record})}) {
      for (std::size_t changes = 1 + engine() % 3; changes > 0; --changes) {
        const std::size_t place = engine() % text.size();
        switch (engine() % 4) {
          case 0:
            text[place] = static_cast<char>(engine());
            break;
          case 1:
            text.erase(place, 1 + engine() % 8);
            break;
          case 2:
            text.insert(place, text.substr(engine() % text.size(), engine() % 16));
            break;
          default:
            text.insert(place, 1, "<>&\"{}[],:/-e0\\"[engine() % 15]);
        }
        if (text.empty()) text = " ";
      }
      const RecordClass& asked = VelWbBaseVector::ownClass();
      const auto fromText = recordWithJSON(asked, text);
      if (fromText) {
        ASSERT_NE(fromText->description(), "");
      }
      for (const auto& each : recordsWithJSON(asked, text)) ASSERT_TRUE(each);
      const ReadRecords list = readPropertyList(asked, text);
      for (const auto& each : list.records) ASSERT_TRUE(each) << list.result.error;
    }
  }
}

TEST(RecordForms, TheOrderOfTheKeysChangesNothingAboutAPath) {
  const std::string type = "<key>type</key><string>line</string>";
  const std::string path =
      "<key>path</key><array><array><real>0.1</real><real>1e999</real><real>5</real></array>"
      "<array><integer>1</integer><date>2020-01-01T00:00:00Z</date><integer>2</integer></array>"
      "<array><integer>7</integer><integer>8</integer></array></array>";
  for (const std::string& members : {type + path, path + type}) {
    const auto record = recordWithXML(VelWbBaseVector::ownClass(), "<dict>" + members + "</dict>");
    const auto* line = recordCast<VelWbVecLine>(record.get());
    ASSERT_NE(line, nullptr) << members;
    EXPECT_EQ(line->path, (Path{{7, 8}})) << members;
  }
}

TEST(RecordForms, APositionThatIsNestedTooDeepCostsOnlyItself) {
  const std::string deep = std::string(300, '[') + std::string(300, ']');
  const std::string text = R"({"type":"line","path":[[1,2,3],)" + deep + "]}";
  const auto fromText = recordWithJSON(VelWbBaseVector::ownClass(), text);
  const auto fromDictionary = modelWithDictionary<VelWbBaseVector>(Value::parse(text));
  EXPECT_EQ(recordCast<VelWbVecLine>(fromText.get())->path, (Path{{1, 2, 3}}));
  EXPECT_EQ(differences(*fromText, *fromDictionary), "");
}

TEST(RecordForms, AValueThatNoArchiveTakesCostsOnlyItself) {
  VelWbVecDiagram diagram;
  diagram.type = "diagram";
  diagram.ts = 5;
  Value deep;
  for (int level = 0; level < 300; ++level) deep = Array{deep};
  diagram.points = Array{deep};
  Coder archive;
  diagram.encodeWithCoder(archive);
  const auto same = VelWbVecDiagram::initWithCoder(Coder(archive.data()));
  EXPECT_EQ(same->type, "diagram");
  EXPECT_EQ(same->ts, 5);
  EXPECT_FALSE(same->points);
}

}  // namespace
}  // namespace VelWhiteBoard
