// The names of the tools and what they start.
#include "VelWhiteBoard/tools/tool_defines.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "VelWhiteBoard/tools/tool_manager.h"
#include "VelWhiteBoard/vectors/base_vector.h"
#include "VelWhiteBoard/vectors/vector_defines.h"

#include "tests/support/fresh_tool_manager.h"

namespace VelWhiteBoard {
namespace {

using ToolDefines = FreshToolManager;

constexpr struct {
  std::uint64_t constant;
  std::uint64_t number;
  std::string_view type;
} kTools[] = {
    {VelWBToolLine, 1, VelWBVectorStrLine},
    {VelWBToolCursor, 2, VelWBVectorStrCursor},
    {VelWBToolEraser, 3, VelWBVectorStrEraser},
    {VelWBToolText, 4, VelWBVectorStrText},
    {VelWBToolRemove, 6, VelWBVectorStrRemove},
    {VelWBToolImage, 7, VelWBVectorStrImage},
    {VelWBToolCamera, 8, VelWBVectorStrCamera},
    {VelWBToolClear, 9, VelWBVectorStrClear},
    {VelWBToolMarkerPen, 11, VelWBVectorStrMarkerPen},
    {VelWBToolMedia, 13, VelWBVectorStrMedia},
};

TEST_F(ToolDefines, EachToolHasItsNumber) {
  for (const auto& tool : kTools) EXPECT_EQ(tool.constant, tool.number) << tool.type;
  EXPECT_EQ(VelWBToolNone, 5U);
}

TEST_F(ToolDefines, EachToolStartsTheTypeItIsNamedAfter) {
  for (const auto& tool : kTools) {
    const VectorPtr vector = VWBToolManager::genVectorWithTool(tool.constant);
    ASSERT_NE(vector, nullptr) << tool.type;
    EXPECT_EQ(vector->type, tool.type);
  }
}

TEST_F(ToolDefines, TheEraserIsARemoveAtVersion1AndNothingAbove) {
  manager.setVersion(1);
  EXPECT_EQ(VWBToolManager::genVectorWithTool(VelWBToolEraser)->type, VelWBVectorStrRemove);
  manager.setVersion(2);
  EXPECT_EQ(VWBToolManager::genVectorWithTool(VelWBToolEraser), nullptr);
}

TEST_F(ToolDefines, NoToolIsTheInitialOneAndStartsNothing) {
  EXPECT_EQ(manager.tool(), VelWBToolNone);
  EXPECT_EQ(VWBToolManager::genVectorWithTool(VelWBToolNone), nullptr);
}

TEST_F(ToolDefines, EveryToolThatStartsAVectorHasAName) {
  for (std::uint64_t tool = 0; tool < 100; ++tool) {
    const bool named = std::any_of(std::begin(kTools), std::end(kTools),
                                   [tool](const auto& each) { return each.constant == tool; });
    EXPECT_EQ(VWBToolManager::genVectorWithTool(tool) != nullptr, named) << tool;
  }
}

TEST_F(ToolDefines, ATypeCodeMakesAVectorOfItsType) {
  for (std::uint64_t code = VelWBVectorTypeCursor; code <= VelWBVectorTypeOffset; ++code) {
    const VectorPtr vector = VWBToolManager::genVectorWithType(code);
    ASSERT_NE(vector, nullptr) << code;
    EXPECT_EQ(vector->type, VelWbVectorDefines::vectorType(code));
  }
  EXPECT_EQ(VWBToolManager::genVectorWithType(VelWBVectorTypeOffset + 1), nullptr);
}

}  // namespace
}  // namespace VelWhiteBoard
