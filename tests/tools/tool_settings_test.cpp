// The tool manager's settings, width lookups and limits.
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/tools/tool_manager.h"

#include "tests/support/fresh_tool_manager.h"
#include "tests/support/special_numbers.h"

namespace VelWhiteBoard {
namespace {

using Widths = std::vector<double>;

class ToolSettings : public FreshToolManager {
 protected:
  /// Moves every writable property away from its initial value.
  void changeEverything() {
    manager.setVersion(1);
    manager.setWbSize({800.5, 450.25});
    manager.setWbBaseSize({1600, 900});
    manager.setTool(11);
    manager.setLineWidthIndex(4);
    manager.setDiagramWidthIndex(3);
    manager.setMarkerWidthIndex(99);
    // The eraser table has one entry, so its index cannot leave 0.
    manager.setTextFontSize(33);
    manager.setCurrentPage(7);
    manager.setTotalPage(8);
    manager.setWhiteBoardCount(9);
    manager.setMarkerColorAlpha(0.5);
    manager.setLineColor("#21A7FF");
    manager.setDiagramColor("#FFA400");
    manager.setMarkerColor("#00CDB1");
    manager.setTextColor("#9763FF");
    manager.setTextBgColor("#303033");
  }

  void expectUserSettingsAtDefault() {
    EXPECT_EQ(manager.tool(), 5U);
    EXPECT_EQ(manager.lineWidthIndex(), 1);
    EXPECT_EQ(manager.diagramWidthIndex(), 1);
    EXPECT_EQ(manager.markerWidthIndex(), 1);
    EXPECT_EQ(manager.eraserWidthIndex(), 0);
    EXPECT_EQ(manager.textFontSize(), 20.0);
    EXPECT_EQ(manager.currentPage(), 1U);
    EXPECT_EQ(manager.totalPage(), 1U);
    EXPECT_EQ(manager.whiteBoardCount(), 1U);
    EXPECT_EQ(manager.lineColor(), "#FF3467FF");
    EXPECT_EQ(manager.diagramColor(), "#FF3467FF");
    EXPECT_EQ(manager.textColor(), "#FF3467FF");
    EXPECT_EQ(manager.markerColor().substr(0, 7), "#FF3467");
    EXPECT_EQ(manager.textBgColor(), std::nullopt);
  }
};

// ---- The one object ----

TEST_F(ToolSettings, EveryWayToAManagerLeadsToTheSameObject) {
  EXPECT_EQ(&VWBToolManager::sharedManager(), &manager);
  EXPECT_EQ(&VWBToolManager::allocWithZone(), &manager);
  EXPECT_EQ(&VWBToolManager::allocWithZone().init(), &manager);
  EXPECT_EQ(&manager.copy(), &manager);
  EXPECT_EQ(&manager.mutableCopy(), &manager);
}

TEST_F(ToolSettings, NobodyElseCanMakeCopyMoveOrDestroyOne) {
  EXPECT_FALSE(std::is_default_constructible_v<VWBToolManager>);
  EXPECT_FALSE(std::is_copy_constructible_v<VWBToolManager>);
  EXPECT_FALSE(std::is_move_constructible_v<VWBToolManager>);
  EXPECT_FALSE(std::is_copy_assignable_v<VWBToolManager>);
  EXPECT_FALSE(std::is_move_assignable_v<VWBToolManager>);
  EXPECT_FALSE(std::is_destructible_v<VWBToolManager>);
}

TEST_F(ToolSettings, CopyingChangesNothing) {
  changeEverything();
  manager.copy();
  manager.mutableCopy();
  EXPECT_EQ(manager.version(), 1U);
  EXPECT_EQ(manager.tool(), 11U);
}

// ---- Initial state and reset ----

TEST_F(ToolSettings, AFreshManagerHasTheInitialValues) {
  expectUserSettingsAtDefault();
  EXPECT_EQ(manager.version(), 0U);
  EXPECT_EQ(manager.colorArr(),
            (std::vector<std::string>{"#FF3467", "#21A7FF", "#FFA400", "#00CDB1", "#9763FF",
                                      "#303033", "#FFFFFF"}));
  EXPECT_EQ(manager.lineWidthArr(), (Widths{2, 4, 7}));
  EXPECT_EQ(manager.markerWidthArr(), (Widths{8, 14, 20}));
  EXPECT_EQ(manager.eraserWidthArr(), (Widths{20}));
  EXPECT_EQ(manager.textFontMaxSize(), 72.0);
  EXPECT_EQ(manager.textFontMinSize(), 8.0);
  EXPECT_EQ(manager.whiteBoardTotalCount(), 10U);
  EXPECT_EQ(manager.markerColorAlpha(), 0.37);
  EXPECT_EQ(manager.wbSize(), (Size{400, 225}));
  EXPECT_EQ(manager.wbBaseSize(), (Size{400, 225}));
}

TEST_F(ToolSettings, AFreshManagersLookupsReadTheThreeEntryTables) {
  EXPECT_EQ(VWBToolManager::lineWidth(1), 4.0);
  EXPECT_EQ(VWBToolManager::markerWidth(1), 14.0);
  EXPECT_EQ(VWBToolManager::eraserWidth(0), 20.0);
}

TEST_F(ToolSettings, InitAgainPutsEverythingBackToItsInitialValueTheVersionIncluded) {
  changeEverything();
  EXPECT_EQ(&manager.init(), &manager);
  expectUserSettingsAtDefault();
  EXPECT_EQ(manager.version(), 0U);
  EXPECT_EQ(manager.lineWidthArr(), (Widths{2, 4, 7}));
  EXPECT_EQ(manager.markerWidthArr(), (Widths{8, 14, 20}));
  EXPECT_EQ(manager.eraserWidthArr(), (Widths{20}));
  EXPECT_EQ(manager.markerColorAlpha(), 0.37);
  EXPECT_EQ(manager.wbSize(), (Size{400, 225}));
  EXPECT_EQ(manager.wbBaseSize(), (Size{400, 225}));
}

TEST_F(ToolSettings, SetToDefaultRestoresWhatTheUserChose) {
  changeEverything();
  VWBToolManager::setToDefault();
  expectUserSettingsAtDefault();
}

TEST_F(ToolSettings, SetToDefaultKeepsVersionSizesAlphaAndTables) {
  changeEverything();
  VWBToolManager::setToDefault();
  EXPECT_EQ(manager.version(), 1U);
  EXPECT_EQ(manager.wbSize(), (Size{800.5, 450.25}));
  EXPECT_EQ(manager.wbBaseSize(), (Size{1600, 900}));
  EXPECT_EQ(manager.markerColorAlpha(), 0.5);
  EXPECT_EQ(manager.markerColor(), "#FF34677f");
  EXPECT_EQ(manager.lineWidthArr(), (Widths{2, 4, 6, 8, 10}));
  EXPECT_EQ(manager.markerWidthArr(), (Widths{16, 30, 44, 58, 72}));
  EXPECT_EQ(manager.colorArr().size(), 7U);
}

TEST_F(ToolSettings, TheInstanceTwinOfSetToDefaultDoesTheSame) {
  changeEverything();
  manager._setToDefault();
  expectUserSettingsAtDefault();
  EXPECT_EQ(manager.version(), 1U);
}

// ---- Version ----

TEST_F(ToolSettings, Version1SelectsTheFiveEntryTables) {
  manager.setVersion(1);
  EXPECT_EQ(manager.version(), 1U);
  EXPECT_EQ(manager.lineWidthArr(), (Widths{2, 4, 6, 8, 10}));
  EXPECT_EQ(manager.markerWidthArr(), (Widths{16, 30, 44, 58, 72}));
  EXPECT_EQ(manager.eraserWidthArr(), (Widths{20}));
  EXPECT_EQ(VWBToolManager::lineWidth(4), 10.0);
  EXPECT_EQ(VWBToolManager::markerWidth(4), 72.0);
}

TEST_F(ToolSettings, EveryOtherVersionSelectsTheThreeEntryTables) {
  for (const std::uint64_t version : {std::uint64_t{0}, std::uint64_t{2}, kHighestUnsigned}) {
    SCOPED_TRACE(version);
    manager.setVersion(1);
    manager.setVersion(version);
    EXPECT_EQ(manager.version(), version);
    EXPECT_EQ(manager.lineWidthArr(), (Widths{2, 4, 7}));
    EXPECT_EQ(manager.markerWidthArr(), (Widths{8, 14, 20}));
    EXPECT_EQ(manager.eraserWidthArr(), (Widths{20}));
  }
}

TEST_F(ToolSettings, AVersionSwitchLeavesEveryWidthIndexWhereItIs) {
  manager.setVersion(1);
  manager.setLineWidthIndex(3);
  manager.setDiagramWidthIndex(4);
  manager.setMarkerWidthIndex(4);
  manager.setVersion(2);
  EXPECT_EQ(manager.lineWidthIndex(), 3);
  EXPECT_EQ(manager.diagramWidthIndex(), 4);
  EXPECT_EQ(manager.markerWidthIndex(), 4);
  EXPECT_EQ(manager.eraserWidthIndex(), 0);
}

TEST_F(ToolSettings, ATableOnceHandedOutKeepsItsEntriesWhenTheVersionChanges) {
  const Widths& line = manager.lineWidthArr();
  const Widths& marker = manager.markerWidthArr();
  manager.setVersion(1);
  EXPECT_EQ(line, (Widths{2, 4, 7}));
  EXPECT_EQ(marker, (Widths{8, 14, 20}));
}

// ---- Index setters ----

TEST_F(ToolSettings, TheLineWidthIndexTakesOnlyAnIndexOfItsTable) {
  for (const std::int64_t refused : {std::int64_t{3}, std::int64_t{-1}, kLowest, kHighest}) {
    manager.setLineWidthIndex(refused);
    EXPECT_EQ(manager.lineWidthIndex(), 1) << refused;
  }
  for (const std::int64_t taken : {0, 1, 2}) {
    manager.setLineWidthIndex(taken);
    EXPECT_EQ(manager.lineWidthIndex(), taken);
  }
}

TEST_F(ToolSettings, TheDiagramWidthIndexIsMeasuredAgainstTheLineWidths) {
  for (const std::int64_t refused : {std::int64_t{3}, std::int64_t{-1}, kLowest, kHighest}) {
    manager.setDiagramWidthIndex(refused);
    EXPECT_EQ(manager.diagramWidthIndex(), 1) << refused;
  }
  manager.setDiagramWidthIndex(2);
  EXPECT_EQ(manager.diagramWidthIndex(), 2);
}

TEST_F(ToolSettings, TheFiveEntryTablesAllowHigherIndexes) {
  manager.setVersion(1);
  manager.setLineWidthIndex(4);
  manager.setDiagramWidthIndex(3);
  EXPECT_EQ(manager.lineWidthIndex(), 4);
  EXPECT_EQ(manager.diagramWidthIndex(), 3);
  manager.setLineWidthIndex(5);
  manager.setDiagramWidthIndex(5);
  EXPECT_EQ(manager.lineWidthIndex(), 4);
  EXPECT_EQ(manager.diagramWidthIndex(), 3);
}

TEST_F(ToolSettings, TheEraserWidthIndexTakesOnlyZero) {
  for (const std::int64_t index : {std::int64_t{1}, std::int64_t{-1}, std::int64_t{0}, kHighest}) {
    manager.setEraserWidthIndex(index);
    EXPECT_EQ(manager.eraserWidthIndex(), 0) << index;
  }
}

TEST_F(ToolSettings, TheMarkerWidthIndexTakesAnyValue) {
  for (const std::int64_t index : {std::int64_t{99}, std::int64_t{-1}, kLowest, kHighest}) {
    manager.setMarkerWidthIndex(index);
    EXPECT_EQ(manager.markerWidthIndex(), index);
  }
}

TEST_F(ToolSettings, EachWidthIndexIsAPropertyOfItsOwn) {
  manager.setLineWidthIndex(0);
  manager.setDiagramWidthIndex(2);
  manager.setMarkerWidthIndex(5);
  EXPECT_EQ(manager.lineWidthIndex(), 0);
  EXPECT_EQ(manager.diagramWidthIndex(), 2);
  EXPECT_EQ(manager.markerWidthIndex(), 5);
  EXPECT_EQ(manager.eraserWidthIndex(), 0);
}

// ---- Font size ----

TEST_F(ToolSettings, TheFontSizeTakesBothLimits) {
  manager.setTextFontSize(8.0);
  EXPECT_EQ(manager.textFontSize(), 8.0);
  manager.setTextFontSize(72.0);
  EXPECT_EQ(manager.textFontSize(), 72.0);
}

TEST_F(ToolSettings, TheFontSizeIgnoresWhatIsOutsideTheLimitsOrNoNumber) {
  for (const double refused : {7.99, 72.01, 0.0, -20.0, kInfinity, -kInfinity, kNaN}) {
    manager.setTextFontSize(refused);
    EXPECT_EQ(manager.textFontSize(), 20.0) << refused;
  }
}

// ---- Plain properties ----

TEST_F(ToolSettings, ThePlainSettersStoreAnyValue) {
  for (const std::uint64_t value : {std::uint64_t{0}, std::uint64_t{3}, kHighestUnsigned}) {
    manager.setTool(value);
    manager.setCurrentPage(value);
    manager.setTotalPage(value / 2);
    manager.setWhiteBoardCount(value / 3);
    EXPECT_EQ(manager.tool(), value);
    EXPECT_EQ(manager.currentPage(), value);
    EXPECT_EQ(manager.totalPage(), value / 2);
    EXPECT_EQ(manager.whiteBoardCount(), value / 3);
  }
  for (const double value : {-1.0, 0.0, 1.5, kInfinity}) {
    manager.setWbSize({value, 1});
    manager.setWbBaseSize({2, value});
    manager.setMarkerColorAlpha(value);
    EXPECT_EQ(manager.wbSize(), (Size{value, 1}));
    EXPECT_EQ(manager.wbBaseSize(), (Size{2, value}));
    EXPECT_EQ(manager.markerColorAlpha(), value);
  }
}

// ---- Width lookups ----

TEST_F(ToolSettings, ALookupBelowZeroOrAboveTheLengthReadsTheFirstEntry) {
  for (const std::int64_t index : {std::int64_t{-1}, kLowest, std::int64_t{4}, kHighest}) {
    SCOPED_TRACE(index);
    EXPECT_EQ(VWBToolManager::lineWidth(index), 2.0);
    EXPECT_EQ(VWBToolManager::markerWidth(index), 8.0);
    EXPECT_EQ(VWBToolManager::eraserWidth(index), 20.0);
  }
}

TEST_F(ToolSettings, ALookupAtTheLengthOfItsTableThrows) {
  EXPECT_THROW(VWBToolManager::lineWidth(3), std::out_of_range);
  EXPECT_THROW(VWBToolManager::markerWidth(3), std::out_of_range);
  EXPECT_THROW(VWBToolManager::eraserWidth(1), std::out_of_range);
  EXPECT_EQ(VWBToolManager::eraserWidth(2), 20.0);
  manager.setVersion(1);
  EXPECT_THROW(VWBToolManager::lineWidth(5), std::out_of_range);
  EXPECT_THROW(VWBToolManager::markerWidth(5), std::out_of_range);
  EXPECT_EQ(VWBToolManager::lineWidth(3), 8.0);
  EXPECT_EQ(VWBToolManager::lineWidth(6), 2.0);
  EXPECT_EQ(VWBToolManager::markerWidth(6), 16.0);
}

TEST_F(ToolSettings, TheInstanceTwinsOfTheLookupsGiveTheSame) {
  for (const std::uint64_t version : {0U, 1U}) {
    manager.setVersion(version);
    for (const std::int64_t index : {-1, 0, 2, 8}) {
      SCOPED_TRACE(index);
      EXPECT_EQ(manager._lineWidth(index), VWBToolManager::lineWidth(index));
      EXPECT_EQ(manager._markerWidth(index), VWBToolManager::markerWidth(index));
      EXPECT_EQ(manager._eraserWidth(index), VWBToolManager::eraserWidth(index));
    }
  }
  EXPECT_THROW(manager._lineWidth(5), std::out_of_range);
  EXPECT_THROW(manager._markerWidth(5), std::out_of_range);
  EXPECT_THROW(manager._eraserWidth(1), std::out_of_range);
}

// ---- Limits ----

TEST_F(ToolSettings, TheTextHeightLimitIs23AtSize20AndGrowsBy1Point2APoint) {
  EXPECT_EQ(VWBToolManager::textLimitHeight(20), 23.0);
  EXPECT_EQ(VWBToolManager::textLimitHeight(40), 47.0);
  EXPECT_EQ(VWBToolManager::textLimitHeight(0), -1.0);
  EXPECT_DOUBLE_EQ(VWBToolManager::textLimitHeight(21), 24.2);
}

TEST_F(ToolSettings, TheTextHeightLimitMultipliesBeforeItDivides) {
  // Multiplying by 1.2 instead gives the neighbouring double for each of these.
  EXPECT_EQ(VWBToolManager::textLimitHeight(8.0), 0x1.1333333333333p+3);
  EXPECT_EQ(VWBToolManager::textLimitHeight(8.4), 0x1.228f5c28f5c2ap+3);
  EXPECT_EQ(VWBToolManager::textLimitHeight(38.0), 0x1.64ccccccccccdp+5);
  EXPECT_EQ(VWBToolManager::textLimitHeight(71.0), 0x1.50ccccccccccdp+6);
}

TEST_F(ToolSettings, TheImageLimitIs10) { EXPECT_EQ(VWBToolManager::imageLimitSize(), 10.0); }

}  // namespace
}  // namespace VelWhiteBoard
