// The ways in which a type name may be given: a string, one of the constants, a C string.
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>

#include "VelWhiteBoard/vectors/base_vector.h"
#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/commands.h"
#include "VelWhiteBoard/vectors/diagrams.h"
#include "VelWhiteBoard/vectors/media_lists.h"
#include "VelWhiteBoard/vectors/strokes.h"
#include "VelWhiteBoard/vectors/vector_defines.h"

namespace VelWhiteBoard {
namespace {

template <class T>
class GivenNames : public ::testing::Test {};

using VectorClasses =
    ::testing::Types<VelWbBaseVector, VelWbVecPoint, VelWbVecLine, VelWbVecSquare, VelWbVecFile,
                     VelWbVecVideo, VelWbVecText, VelWbVecDiagram, VelWbVecCircle, VelWbCaptureInfo,
                     VelWbVecRemove, VelWbVecClear, VelWbVecSwitchPage, VelWbVecOffset,
                     VelWbVecMediaList>;
TYPED_TEST_SUITE(GivenNames, VectorClasses);

TYPED_TEST(GivenNames, MayBeConstants) {
  const std::shared_ptr<TypeParam> vector = TypeParam::initWithType(VelWBVectorStrLine);
  EXPECT_EQ(vector->type, "line");
  TypeParam expected;
  expected.type = "line";
  EXPECT_EQ(*vector, expected) << "nothing but the type is set";
  EXPECT_EQ(TypeParam::initWithType(VelWBVectorStrSwitchPage)->type, "switchPage");
}

TYPED_TEST(GivenNames, MayBeOtherViewsAndAreCopied) {
  std::string owner = "a name of more characters than fit into a short string";
  const auto vector = TypeParam::initWithType(std::string_view(owner));
  const std::string before = owner;
  owner.assign(owner.size(), '-');
  EXPECT_EQ(vector->type, before);
  EXPECT_EQ(TypeParam::initWithType(std::string_view("line\0s", 6))->type,
            std::string("line\0s", 6));
  EXPECT_EQ(TypeParam::initWithType(std::string_view("lines", 4))->type, "line");
}

TYPED_TEST(GivenNames, OfNoCharactersAreEmptyAndNotAbsent) {
  EXPECT_EQ(TypeParam::initWithType(std::string_view())->type, "");
  EXPECT_EQ(TypeParam::initWithType("")->type, "");
}

TYPED_TEST(GivenNames, MayBeCStrings) {
  const char* const name = "line";
  EXPECT_EQ(TypeParam::initWithType(name)->type, "line");
  EXPECT_EQ(TypeParam::initWithType("line")->type, "line");
  char changeable[] = "line";
  EXPECT_EQ(TypeParam::initWithType(changeable)->type, "line");
}

TYPED_TEST(GivenNames, AreAbsentForANullPointer) {
  const char* const none = nullptr;
  char* const changeable = nullptr;
  EXPECT_EQ(TypeParam::initWithType(none)->type, std::nullopt);
  EXPECT_EQ(TypeParam::initWithType(changeable)->type, std::nullopt);
  EXPECT_EQ(TypeParam::initWithType(nullptr)->type, std::nullopt);
}

TYPED_TEST(GivenNames, MayBeStringsAsEver) {
  const std::string name = "line";
  const std::optional<std::string> given = name;
  EXPECT_EQ(TypeParam::initWithType(name)->type, "line");
  EXPECT_EQ(TypeParam::initWithType(std::string("line"))->type, "line");
  EXPECT_EQ(TypeParam::initWithType(given)->type, "line");
  EXPECT_EQ(TypeParam::initWithType(std::optional<std::string>("line"))->type, "line");
  EXPECT_EQ(TypeParam::initWithType(std::nullopt)->type, std::nullopt);
  EXPECT_EQ(TypeParam::initWithType({})->type, std::nullopt);
  EXPECT_EQ(TypeParam::initWithType({"line"})->type, "line");
  std::shared_ptr<TypeParam> (*const plain)(std::optional<std::string>) = &TypeParam::initWithType;
  EXPECT_EQ(plain("line")->type, "line");
}

TEST(GivenNamesInLookUps, MayBeConstants) {
  EXPECT_TRUE(VelWbVectorDefines::isLine(VelWBVectorStrLine));
  EXPECT_TRUE(VelWbVectorDefines::isMarkerPen(VelWBVectorStrMarkerPen));
  EXPECT_TRUE(VelWbVectorDefines::isEraser(VelWBVectorStrEraser));
  EXPECT_FALSE(VelWbVectorDefines::isLine(VelWBVectorStrEraser));
  EXPECT_FALSE(VelWbVectorDefines::isMarkerPen(VelWBVectorStrLine));
  EXPECT_FALSE(VelWbVectorDefines::isEraser(VelWBVectorStrMarkerPen));
}

TEST(GivenNamesInLookUps, AreAnsweredAlikeInEveryForm) {
  for (const char* const name : {"line", "markerPen", "eraser", "", "Line", "line ", "text"}) {
    const std::optional<std::string> owned = name;
    const std::string_view view = name;
    EXPECT_EQ(VelWbVectorDefines::isLine(name), VelWbVectorDefines::isLine(owned)) << name;
    EXPECT_EQ(VelWbVectorDefines::isLine(view), VelWbVectorDefines::isLine(owned)) << name;
    EXPECT_EQ(VelWbVectorDefines::isLine(*owned), VelWbVectorDefines::isLine(owned)) << name;
    EXPECT_EQ(VelWbVectorDefines::isMarkerPen(name), VelWbVectorDefines::isMarkerPen(owned));
    EXPECT_EQ(VelWbVectorDefines::isMarkerPen(view), VelWbVectorDefines::isMarkerPen(owned));
    EXPECT_EQ(VelWbVectorDefines::isEraser(name), VelWbVectorDefines::isEraser(owned)) << name;
    EXPECT_EQ(VelWbVectorDefines::isEraser(view), VelWbVectorDefines::isEraser(owned)) << name;
  }
}

TEST(GivenNamesInLookUps, EqualNoNameWhenTheyAreNull) {
  const char* const none = nullptr;
  EXPECT_FALSE(VelWbVectorDefines::isLine(none));
  EXPECT_FALSE(VelWbVectorDefines::isLine(nullptr));
  EXPECT_FALSE(VelWbVectorDefines::isMarkerPen(none));
  EXPECT_FALSE(VelWbVectorDefines::isMarkerPen(nullptr));
  EXPECT_FALSE(VelWbVectorDefines::isEraser(none));
  EXPECT_FALSE(VelWbVectorDefines::isEraser(nullptr));
  EXPECT_FALSE(VelWbVectorDefines::isLine({}));
  EXPECT_FALSE(VelWbVectorDefines::isLine(std::nullopt));
}

}  // namespace
}  // namespace VelWhiteBoard
