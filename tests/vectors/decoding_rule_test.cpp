// The rule that chooses the class of a vector from its dictionary, and what every class inherits.
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/vectors/base_vector.h"
#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/commands.h"
#include "VelWhiteBoard/vectors/diagrams.h"
#include "VelWhiteBoard/vectors/media_lists.h"
#include "VelWhiteBoard/vectors/strokes.h"

#include "tests/support/print_records.h"

namespace VelWhiteBoard {
namespace {

Dictionary dictionaryOf(const char* json) { return Value::parse(json).get<Dictionary>(); }

/// The class of the record that a dictionary decodes to when a `T` is asked for, in both forms.
template <class T>
std::string decodedClass(const char* json) {
  const Dictionary dictionary = dictionaryOf(json);
  const VectorPtr fromDictionary = modelWithDictionary<T>(dictionary);
  const VectorPtr fromText = modelWithJSON<T>(json);
  EXPECT_TRUE(fromDictionary && fromText) << json;
  EXPECT_EQ(*fromDictionary, *fromText) << json;
  EXPECT_EQ(T::modelCustomClassForDictionary(dictionary), fromDictionary->recordClass()) << json;
  return std::string(fromDictionary->recordClass().name);
}

TEST(DecodingRule, EachTypeNameHasItsClass) {
  const struct {
    const char* type;
    const char* name;
  } rows[] = {
      {"cursor", "VelWbVecFile"},         {"text", "VelWbVecText"},
      {"line", "VelWbVecLine"},           {"eraser", "VelWbVecLine"},
      {"image", "VelWbVecFile"},          {"camera", "VelWbCaptureInfo"},
      {"media", "VelWbVecVideo"},         {"clear", "VelWbVecClear"},
      {"remove", "VelWbVecRemove"},       {"switchPage", "VelWbVecSwitchPage"},
      {"markerPen", "VelWbVecLine"},      {"diagram", "VelWbVecDiagram"},
      {"mediaList", "VelWbVecMediaList"}, {"offset", "VelWbVecOffset"},
  };
  for (const auto& row : rows) {
    const std::string plain = std::string(R"({"type":")") + row.type + R"("})";
    const std::string shaped = std::string(R"({"w":1,"x":2,"type":")") + row.type + R"("})";
    EXPECT_EQ(decodedClass<VelWbBaseVector>(plain.c_str()), row.name) << plain;
    EXPECT_EQ(decodedClass<VelWbBaseVector>(shaped.c_str()), row.name)
        << "a known type goes before the shape: " << shaped;
  }
}

TEST(DecodingRule, WhereTheTypeDecidesNothingTheShapeDoes) {
  const struct {
    const char* json;
    const char* name;  ///< "asked": the class asked for
  } rows[] = {
      {R"({"type":"micPhone","x":1,"w":2})", "VelWbVecSquare"},
      {R"({"type":"micPhone","x":1})", "VelWbVecPoint"},
      {R"({"type":"micPhone"})", "asked"},
      {R"({"type":"instruction","w":2})", "VelWbVecSquare"},
      {R"({"type":"magnifier","x":2})", "VelWbVecPoint"},
      {R"({"type":"magnifier"})", "asked"},
      {R"({"type":"unknown","w":2})", "VelWbVecSquare"},
      {R"({"type":"Line","x":1})", "VelWbVecPoint"},
      {R"({"type":"line ","x":1})", "VelWbVecPoint"},
      {R"({"type":""})", "asked"},
      {R"({"w":1})", "VelWbVecSquare"},
      {R"({"x":1})", "VelWbVecPoint"},
      {R"({"w":1,"x":1})", "VelWbVecSquare"},
      {R"({"y":1,"h":1,"radiusX":1})", "asked"},
      {R"({"W":1,"X":1})", "asked"},
      {R"({})", "asked"},
  };
  for (const auto& row : rows) {
    const std::string name = row.name;
    EXPECT_EQ(decodedClass<VelWbBaseVector>(row.json), name == "asked" ? "VelWbBaseVector" : name)
        << row.json;
    EXPECT_EQ(decodedClass<VelWbVecSwitchPage>(row.json),
              name == "asked" ? "VelWbVecSwitchPage" : name)
        << row.json;
    EXPECT_EQ(decodedClass<VelWbVecCircle>(row.json), name == "asked" ? "VelWbVecCircle" : name)
        << row.json;
  }
}

TEST(DecodingRule, PresenceDecidesAndNotTheValue) {
  const struct {
    const char* json;
    const char* name;
  } rows[] = {
      {R"({"w":null})", "VelWbVecSquare"},
      {R"({"x":null})", "VelWbVecPoint"},
      {R"({"w":[],"x":1})", "VelWbVecSquare"},
      {R"({"w":"abc"})", "VelWbVecSquare"},
      {R"({"type":"diagram","radiusX":0})", "VelWbVecCircle"},
      {R"({"type":"diagram","radiusX":null})", "VelWbVecCircle"},
      {R"({"type":"diagram","radiusX":{}})", "VelWbVecCircle"},
      {R"({"type":"diagram","radiusY":5})", "VelWbVecDiagram"},
      {R"({"type":"diagram","kind":"circle"})", "VelWbVecDiagram"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(decodedClass<VelWbBaseVector>(row.json), row.name) << row.json;
  }
}

TEST(DecodingRule, ATypeThatIsNoStringFallsToTheShape) {
  for (const char* type : {"null", "5", "true", "[\"line\"]", "{\"line\":1}"}) {
    const std::string start = std::string("{\"type\":") + type;
    EXPECT_EQ(decodedClass<VelWbVecRemove>((start + "}").c_str()), "VelWbVecRemove") << type;
    EXPECT_EQ(decodedClass<VelWbVecRemove>((start + ",\"x\":1}").c_str()), "VelWbVecPoint") << type;
    EXPECT_EQ(decodedClass<VelWbVecRemove>((start + ",\"w\":1}").c_str()), "VelWbVecSquare")
        << type;
  }
}

template <class T>
class InheritedRule : public ::testing::Test {};
using AllVectorClasses =
    ::testing::Types<VelWbBaseVector, VelWbVecPoint, VelWbVecLine, VelWbVecSquare, VelWbVecFile,
                     VelWbVecVideo, VelWbVecText, VelWbVecDiagram, VelWbVecCircle, VelWbVecRemove,
                     VelWbVecClear, VelWbVecSwitchPage, VelWbVecOffset, VelWbCaptureInfo,
                     VelWbVecMediaList>;
TYPED_TEST_SUITE(InheritedRule, AllVectorClasses);

TYPED_TEST(InheritedRule,
           EveryClassDecodesByTheRuleAndOnlyWhatMatchesNothingBecomesTheClassItself) {
  const Array array = Value::parse(
                          R"([{"type":"line"},{"type":"diagram","radiusX":1},{"w":1},{"x":1},{},
                              {"type":"remove"},{"type":"zzz"},5])")
                          .get<Array>();
  const VectorList vectors = modelArrayWithClass<TypeParam>(array);
  std::vector<std::string_view> names;
  for (const auto& vector : vectors) names.push_back(vector->recordClass().name);
  const std::string_view own = TypeParam::ownClass().name;
  EXPECT_THAT(names, ::testing::ElementsAre("VelWbVecLine", "VelWbVecCircle", "VelWbVecSquare",
                                            "VelWbVecPoint", own, "VelWbVecRemove", own));
}

TYPED_TEST(InheritedRule, InitWithTypeGivesTheClassInItsInitialStateWithTheType) {
  const std::shared_ptr<TypeParam> vector = TypeParam::initWithType("some type");
  TypeParam expected;
  expected.type = "some type";
  EXPECT_EQ(*vector, expected);
  EXPECT_EQ(vector->ts, 0.0);
  EXPECT_EQ(vector->ID, std::nullopt);
  EXPECT_EQ(TypeParam::initWithType(std::nullopt)->type, std::nullopt);
  EXPECT_EQ(TypeParam::initWithType("")->type, "");
}

TYPED_TEST(InheritedRule, AFullCopyHasTheClassOfTheVeryObjectAndSoHasAMutableOne) {
  const auto vector = TypeParam::initWithType("t");
  vector->ts = 5;
  vector->ID = "i";
  const VelWbBaseVector& base = *vector;
  const std::shared_ptr<VelWbBaseVector> copy = base.copyWithZone();
  EXPECT_EQ(copy->recordClass(), TypeParam::ownClass());
  EXPECT_EQ(*copy, base);
  EXPECT_NE(copy.get(), &base);
  const std::shared_ptr<VelWbBaseVector> mutableCopy = base.mutableCopyWithZone();
  EXPECT_EQ(mutableCopy->recordClass(), TypeParam::ownClass());
  EXPECT_EQ(mutableCopy->type, "t");
  EXPECT_EQ(mutableCopy->ts, 5.0);
  EXPECT_EQ(mutableCopy->ID, "i");
  const std::shared_ptr<TypeParam> typed = vector->mutableCopyWithZone();
  EXPECT_EQ(*typed, *mutableCopy);
}

TYPED_TEST(InheritedRule, ARecordOfAnotherClassIsNeverEqual) {
  const auto vector = TypeParam::initWithType("t");
  EXPECT_EQ(vector->isEqual(*VelWbBaseVector::initWithType("t")),
            (std::is_same_v<TypeParam, VelWbBaseVector>));
  EXPECT_EQ(VelWbBaseVector::initWithType("t")->isEqual(*vector),
            (std::is_same_v<TypeParam, VelWbBaseVector>));
}

}  // namespace
}  // namespace VelWhiteBoard
