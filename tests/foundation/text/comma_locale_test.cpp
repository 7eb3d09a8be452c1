// The locale never matters: a comma as the decimal point, in C and in C++, changes no text and no
// number.
#include <array>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <locale>
#include <memory>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/records/coder.h"
#include "VelWhiteBoard/foundation/records/model_mapping.h"
#include "VelWhiteBoard/vectors/commands.h"
#include "VelWhiteBoard/vectors/diagrams.h"

#include "tests/support/print_records.h"
#include "tests/support/property_lists.h"
#include "tests/support/scoped_variable.h"
#include "tests/support/temporary_folder.h"

namespace VelWhiteBoard {
namespace {

/// Numbers as several countries write them.
class Commas : public std::numpunct<char> {
 protected:
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
  std::string do_truename() const override { return "wahr"; }
};

/// What all forms give, as one text to compare.
std::string everyRoad() {
  VelWbVecCircle circle;
  circle.type = "diagram";
  circle.ts = 1234567.125;
  circle.x = 0.1;
  circle.y = -1e-300;
  circle.end = true;
  circle.path = Path{{1234.5, -0.25, 1e17}};
  circle.points = Array{1234567, 0.5, 1e20, true};
  circle.pixel = 1234567;

  const std::string text = modelToJSONString(circle);
  const std::string list = propertyListOf({circle.copyWithZone()});
  Coder archive;
  circle.encodeWithCoder(archive);
  EXPECT_EQ(*modelWithJSON<VelWbBaseVector>(text), circle) << text;
  EXPECT_EQ(*readPropertyList(VelWbBaseVector::ownClass(), list).records.at(0), circle) << list;
  EXPECT_EQ(*VelWbVecCircle::initWithCoder(Coder(archive.data())), circle);

  // Texts that are numbers, numbers that become texts, and numbers that only the second attempt
  // takes.
  const VectorPtr lenient = modelWithJSON<VelWbBaseVector>(
      R"({"type":"text","x":"1234.5","y":"1,5","text":1234567.5,"ps":"1e3",)"
      R"("w":100000000000000000000,"fontSize":1e400})");
  VelWbVecSwitchPage page;
  page.WBID = -1234567;
  page.curPage = 7654321;
  return text + list + archive.data() + modelToJSONString(*lenient) + circle.description() +
         page.pageInfo() + Value(modelToJSONObject(circle)).dump();
}

class CommaLocale : public ::testing::Test {
 protected:
  void SetUp() override { expected_ = everyRoad(); }
  void TearDown() override {
    std::setlocale(LC_ALL, "C");
    std::locale::global(std::locale::classic());
  }

  std::string expected_;
};

TEST_F(CommaLocale, OfCPlusPlusChangesNothing) {
  std::locale::global(std::locale(std::locale::classic(), new Commas));
  std::ostringstream proof;
  proof << 1234.5 << std::boolalpha << true;
  ASSERT_EQ(proof.str(), "1.234,5wahr") << "the locale is in force";
  EXPECT_EQ(everyRoad(), expected_);
}

TEST_F(CommaLocale, OfCChangesNothing) {
  // Few machines have such a locale installed, so it is made here.
  const TemporaryFolder locales;
  const std::string command = "localedef -i de_DE -f UTF-8 '" + locales.at("de_DE.UTF-8") + "'";
  ASSERT_EQ(std::system(command.c_str()), 0) << "the package `locales` is needed";
  const ScopedVariable where("LOCPATH", locales.path());
  ASSERT_NE(std::setlocale(LC_ALL, "de_DE.UTF-8"), nullptr);
  std::array<char, 16> proof{};
  std::snprintf(proof.data(), proof.size(), "%.1f", 0.5);
  ASSERT_STREQ(proof.data(), "0,5") << "the locale is in force";
  EXPECT_EQ(everyRoad(), expected_);
}

}  // namespace
}  // namespace VelWhiteBoard
