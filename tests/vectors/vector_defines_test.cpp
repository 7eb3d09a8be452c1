// The names of types and kinds.
#include "VelWhiteBoard/vectors/vector_defines.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace VelWhiteBoard {
namespace {

TEST(VectorDefines, EachCodeHasItsTypeName) {
  const std::vector<std::string> names{
      "cursor",    "text",      "line",        "eraser",    "image",  "camera",
      "micPhone",  "media",     "instruction", "clear",     "remove", "switchPage",
      "markerPen", "magnifier", "diagram",     "mediaList", "offset"};
  ASSERT_EQ(names.size(), 17U);
  for (std::uint64_t code = 1; code <= names.size(); ++code) {
    EXPECT_EQ(VelWbVectorDefines::vectorType(code), names[code - 1]) << code;
  }
}

TEST(VectorDefines, EachTypeHasTheCodeOfItsName) {
  const struct {
    std::uint64_t code, number;
    std::string_view name;
  } rows[] = {
      {VelWBVectorTypeCursor, 1, VelWBVectorStrCursor},
      {VelWBVectorTypeText, 2, VelWBVectorStrText},
      {VelWBVectorTypeLine, 3, VelWBVectorStrLine},
      {VelWBVectorTypeEraser, 4, VelWBVectorStrEraser},
      {VelWBVectorTypeImage, 5, VelWBVectorStrImage},
      {VelWBVectorTypeCamera, 6, VelWBVectorStrCamera},
      {VelWBVectorTypeMicPhone, 7, VelWBVectorStrMicPhone},
      {VelWBVectorTypeMedia, 8, VelWBVectorStrMedia},
      {VelWBVectorTypeInstruction, 9, VelWBVectorStrInstruction},
      {VelWBVectorTypeClear, 10, VelWBVectorStrClear},
      {VelWBVectorTypeRemove, 11, VelWBVectorStrRemove},
      {VelWBVectorTypeSwitchPage, 12, VelWBVectorStrSwitchPage},
      {VelWBVectorTypeMarkerPen, 13, VelWBVectorStrMarkerPen},
      {VelWBVectorTypeMagnifier, 14, VelWBVectorStrMagnifier},
      {VelWBVectorTypeDiagram, 15, VelWBVectorStrDiagram},
      {VelWBVectorTypeMediaList, 16, VelWBVectorStrMediaList},
      {VelWBVectorTypeOffset, 17, VelWBVectorStrOffset},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.code, row.number) << row.name;
    EXPECT_EQ(VelWbVectorDefines::vectorType(row.code), row.name);
  }
}

TEST(VectorDefines, EveryOtherCodeHasNoTypeName) {
  for (const std::uint64_t code : {std::uint64_t{0}, std::uint64_t{18}, std::uint64_t{1} << 32U,
                                   (std::uint64_t{1} << 32U) + 1, UINT64_MAX}) {
    EXPECT_EQ(VelWbVectorDefines::vectorType(code), std::nullopt) << code;
  }
}

TEST(VectorDefines, EachKindCodeHasItsNameAndEveryOtherIsACircle) {
  const struct {
    std::int64_t code;
    const char* name;
  } rows[] = {{0, "rectangle"}, {1, "circle"},    {2, "ellipse"},        {3, "triangle"},
              {4, "line"},      {5, "arrowLine"}, {6, "rhombus"},        {7, "circle"},
              {-1, "circle"},   {100, "circle"},  {INT64_MIN, "circle"}, {INT64_MAX, "circle"}};
  for (const auto& row : rows) EXPECT_EQ(VelWbVectorDefines::diagramKind(row.code), row.name);
}

TEST(VectorDefines, TheConstantsAreTheLiterals) {
  EXPECT_EQ(VelWBVectorStrCursor, "cursor");
  EXPECT_EQ(VelWBVectorStrText, "text");
  EXPECT_EQ(VelWBVectorStrLine, "line");
  EXPECT_EQ(VelWBVectorStrEraser, "eraser");
  EXPECT_EQ(VelWBVectorStrImage, "image");
  EXPECT_EQ(VelWBVectorStrCamera, "camera");
  EXPECT_EQ(VelWBVectorStrMicPhone, "micPhone");
  EXPECT_EQ(VelWBVectorStrMedia, "media");
  EXPECT_EQ(VelWBVectorStrInstruction, "instruction");
  EXPECT_EQ(VelWBVectorStrClear, "clear");
  EXPECT_EQ(VelWBVectorStrRemove, "remove");
  EXPECT_EQ(VelWBVectorStrSwitchPage, "switchPage");
  EXPECT_EQ(VelWBVectorStrMarkerPen, "markerPen");
  EXPECT_EQ(VelWBVectorStrMagnifier, "magnifier");
  EXPECT_EQ(VelWBVectorStrDiagram, "diagram");
  EXPECT_EQ(VelWBVectorStrMediaList, "mediaList");
  EXPECT_EQ(VelWBVectorStrOffset, "offset");
  EXPECT_EQ(VelWBVectorStrKindRectangle, "rectangle");
  EXPECT_EQ(VelWBVectorStrKindCircle, "circle");
  EXPECT_EQ(VelWBVectorStrKindEllipse, "ellipse");
  EXPECT_EQ(VelWBVectorStrKindTriangle, "triangle");
  EXPECT_EQ(VelWBVectorStrKindLine, "line");
  EXPECT_EQ(VelWBVectorStrKindLine, VelWBVectorStrLine);
  EXPECT_EQ(VelWBVectorStrKindArrowLine, "arrowLine");
  EXPECT_EQ(VelWBVectorStrKindRhombus, "rhombus");
  EXPECT_EQ(VelWBVectorStrKindVideo, "video");
  EXPECT_EQ(VelWBVectorStrKindAudio, "audio");
}

TEST(VectorDefines, TheStrokeTestsComparePlainStrings) {
  const struct {
    std::optional<std::string> type;
    bool line, marker, eraser;
  } rows[] = {{"line", true, false, false},      {"markerPen", false, true, false},
              {"eraser", false, false, true},    {std::nullopt, false, false, false},
              {"", false, false, false},         {"Line", false, false, false},
              {"line ", false, false, false},    {std::string("line\0", 5), false, false, false},
              {"markerpen", false, false, false}};
  for (const auto& row : rows) {
    EXPECT_EQ(VelWbVectorDefines::isLine(row.type), row.line) << row.type.value_or("none");
    EXPECT_EQ(VelWbVectorDefines::isMarkerPen(row.type), row.marker) << row.type.value_or("none");
    EXPECT_EQ(VelWbVectorDefines::isEraser(row.type), row.eraser) << row.type.value_or("none");
  }
}

}  // namespace
}  // namespace VelWhiteBoard
