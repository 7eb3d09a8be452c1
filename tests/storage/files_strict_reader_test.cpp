// The second reader itself: it must see what it is there to see.
#include <fstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/strict_reader.h"
#include "tests/support/temporary_folder.h"

namespace VelWhiteBoard {
namespace {

using ::testing::HasSubstr;

class TheStrictReader : public ::testing::Test {
 protected:
  // What it says about a file of this body, of which the other reader made these records.
  std::string findings(const std::string& body, const std::string& records,
                       const std::string& odd = "false") {
    std::ofstream(folder_.at("0.plist"))
        << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" << body;
    std::ofstream(folder_.at("0.json"))
        << "{\"name\": \"the file\", \"odd\": " << odd << ", \"records\": " << records << "}";
    return StrictReader::findings(folder_.path());
  }

 private:
  TemporaryFolder folder_{TemporaryFolder::Volume::kMemory};
};

TEST_F(TheStrictReader, IsContentWithEqualRecords) {
  EXPECT_EQ(findings("<array><dict><key>n</key><integer>1</integer><key>x</key><real>2</real>"
                     "<key>b</key><true/><key>p</key><array><real>1.5</real></array></dict>"
                     "<dict/></array></plist>",
                     "[{\"n\": 1, \"x\": 2.0, \"b\": true, \"p\": [1.5]}, {}]"),
            "");
}

TEST_F(TheStrictReader, RefusesWhatIsNoPropertyList) {
  EXPECT_THAT(findings("<array>", "[]"), HasSubstr("the file: unreadable"));
  EXPECT_THAT(findings("<array><integer>x</integer></array></plist>", "[]"),
              HasSubstr("unreadable"));
  EXPECT_THAT(findings("<array/></plist>\1", "[]"), HasSubstr("unreadable"));
}

TEST_F(TheStrictReader, SeesATopThatIsNoArray) {
  EXPECT_THAT(findings("<dict/></plist>", "[]"), HasSubstr("no array"));
}

TEST_F(TheStrictReader, SeesAnElementTooManyOrTooFew) {
  EXPECT_THAT(findings("<array><dict/></array></plist>", "[]"), HasSubstr("1 elements"));
  EXPECT_THAT(findings("<array/></plist>", "[{}]"), HasSubstr("0 elements"));
}

TEST_F(TheStrictReader, SeesEveryDifferenceOfAValue) {
  const std::string one = "<array><dict><key>n</key><integer>1</integer></dict></array></plist>";
  for (const char* record : {"{\"n\": 2}", "{\"n\": true}", "{\"n\": \"1\"}", "{}", "{\"m\": 1}",
                             "{\"n\": [1]}", "{\"n\": 1, \"m\": 0}"}) {
    EXPECT_THAT(findings(one, "[" + std::string(record) + "]"), HasSubstr("element 0")) << record;
  }
  EXPECT_THAT(findings("<array><dict><key>n</key><real>-0.0</real></dict></array></plist>",
                       "[{\"n\": 0.0}]"),
              HasSubstr("element 0"));
}

TEST_F(TheStrictReader, AsksOnlyForTheCommonKeysOfOddRecords) {
  const std::string one = "<array><dict><key>n</key><integer>1</integer></dict></array></plist>";
  EXPECT_EQ(findings(one, "[{\"n\": 1, \"m\": 2}]", "true"), "");
  EXPECT_THAT(findings(one, "[{\"n\": 2, \"m\": 2}]", "true"), HasSubstr("element 0"));
}

}  // namespace
}  // namespace VelWhiteBoard
