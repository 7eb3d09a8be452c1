// Colours as strings: how they are stored, how they are handed out, and the palette lookups.
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "VelWhiteBoard/tools/tool_manager.h"

#include "tests/support/fresh_tool_manager.h"
#include "tests/support/special_numbers.h"

namespace VelWhiteBoard {
namespace {

class ColourStrings : public FreshToolManager {
 protected:
  /// What a colour set as text colour is handed out as.
  std::string handedOut(const std::string& color) {
    manager.setTextColor(color);
    return manager.textColor();
  }

  /// The marker's two alpha digits.
  std::string alphaDigits(double alpha) {
    manager.setMarkerColorAlpha(alpha);
    return manager.markerColor().substr(7);
  }
};

// ---- Getters ----

TEST_F(ColourStrings, AFreshManagerHandsOutTheFirstPaletteEntry) {
  EXPECT_EQ(manager.lineColor(), "#FF3467FF");
  EXPECT_EQ(manager.diagramColor(), "#FF3467FF");
  EXPECT_EQ(manager.textColor(), "#FF3467FF");
  EXPECT_EQ(manager.markerColor(), "#FF34675e");
  EXPECT_EQ(manager.textBgColor(), std::nullopt);
}

TEST_F(ColourStrings, AGetterNeverChangesWhatIsStored) {
  manager.setTextColor("#21A7FF80");
  const std::string first = manager.textColor();
  EXPECT_EQ(manager.textColor(), first);
  const std::string marker = manager.markerColor();
  EXPECT_EQ(manager.markerColor(), marker);
}

TEST_F(ColourStrings, TheMarkersAlphaIsCutTowardZeroAndWrittenInLowerCase) {
  const struct {
    double alpha;
    const char* digits;
  } rows[] = {
      {0.37, "5e"},    // 94.35
      {0.5, "7f"},     // 127.5
      {0.0, "00"},     //
      {0.0039, "00"},  // 0.9945
      {0.05, "0c"},    // 12.75: two digits, always
      {0.999, "fe"},   // 254.745
      {1.0, "ff"},     //
      {1.5, "ff"},     //
      {1e300, "ff"},  {std::numeric_limits<double>::infinity(), "ff"},
  };
  for (const auto& row : rows) EXPECT_EQ(alphaDigits(row.alpha), row.digits) << row.alpha;
}

TEST_F(ColourStrings, AnAlphaBelowZeroOrNoNumberIsTransparent) {
  EXPECT_EQ(alphaDigits(-0.5), "00");
  EXPECT_EQ(alphaDigits(-1e300), "00");
  EXPECT_EQ(alphaDigits(-std::numeric_limits<double>::infinity()), "00");
  EXPECT_EQ(alphaDigits(std::numeric_limits<double>::quiet_NaN()), "00");
}

TEST_F(ColourStrings, TheMarkersColourIsNotTurnedToUpperCaseAsAWhole) {
  manager.setMarkerColor("#21A7FF");
  manager.setMarkerColorAlpha(0.8);
  EXPECT_EQ(manager.markerColor(), "#21A7FFcc");
}

TEST_F(ColourStrings, TheAlphaBelongsToTheMarkerAlone) {
  manager.setMarkerColorAlpha(0.0);
  manager.setTextBgColor("#FFFFFF");
  EXPECT_EQ(manager.lineColor(), "#FF3467FF");
  EXPECT_EQ(manager.diagramColor(), "#FF3467FF");
  EXPECT_EQ(manager.textColor(), "#FF3467FF");
  EXPECT_EQ(manager.textBgColor(), "#FFFFFFFF");
}

// ---- Palette setters ----

TEST_F(ColourStrings, APaletteSetterTakesEveryPaletteEntry) {
  for (const std::string& entry : manager.colorArr()) {
    manager.setLineColor(entry);
    manager.setDiagramColor(entry);
    manager.setMarkerColor(entry);
    EXPECT_EQ(manager.lineColor(), entry + "FF");
    EXPECT_EQ(manager.diagramColor(), entry + "FF");
    EXPECT_EQ(manager.markerColor(), entry + "5e");
  }
}

TEST_F(ColourStrings, EachPaletteSetterSetsItsOwnColour) {
  manager.setLineColor("#21A7FF");
  manager.setDiagramColor("#FFA400");
  manager.setMarkerColor("#00CDB1");
  EXPECT_EQ(manager.lineColor(), "#21A7FFFF");
  EXPECT_EQ(manager.diagramColor(), "#FFA400FF");
  EXPECT_EQ(manager.markerColor(), "#00CDB15e");
}

TEST_F(ColourStrings, APaletteSetterRefusesWhatIsNoPaletteEntry) {
  manager.setLineColor("#FFA400");
  manager.setDiagramColor("#FFA400");
  manager.setMarkerColor("#FFA400");
  const std::optional<std::string> refused[] = {
      "#21a7ff", "#21A7FFFF",  "21A7FF",
      "#123456", "",           " #21A7FF",
      "#21A7F",  std::nullopt, std::string("#21A7FF\0", 8)};
  for (const auto& color : refused) {
    manager.setLineColor(color);
    manager.setDiagramColor(color);
    manager.setMarkerColor(color);
    EXPECT_EQ(manager.lineColor(), "#FFA400FF") << color.value_or("none");
    EXPECT_EQ(manager.diagramColor(), "#FFA400FF") << color.value_or("none");
    EXPECT_EQ(manager.markerColor(), "#FFA4005e") << color.value_or("none");
  }
}

TEST_F(ColourStrings, APaletteSetterRefusesWhatItsOwnGetterHandsOut) {
  manager.setLineColor("#21A7FF");
  const std::string handed = manager.lineColor();
  manager.setLineColor("#FFA400");
  manager.setLineColor(handed);
  EXPECT_EQ(manager.lineColor(), "#FFA400FF");
}

// ---- Free setters ----

TEST_F(ColourStrings, AFreeSetterPutsTheMissingHashInFront) {
  EXPECT_EQ(handedOut("303033"), "#303033FF");
  EXPECT_EQ(handedOut("#303033"), "#303033FF");
  manager.setTextBgColor("303033");
  EXPECT_EQ(manager.textBgColor(), "#303033FF");
}

TEST_F(ColourStrings, AFreeSetterLooksForTheHashOnlyAtTheBeginning) {
  // Stored as "#30#033".
  EXPECT_EQ(handedOut("30#033"), "#30#033FF");
}

TEST_F(ColourStrings, AnOpaqueAlphaIsCutInEitherCase) {
  EXPECT_EQ(handedOut("303033ff"), "#303033FF");
  EXPECT_EQ(handedOut("#21a7ffFF"), "#21A7FFFF");
  EXPECT_EQ(handedOut("#21a7fffF"), "#21A7FFFF");
}

TEST_F(ColourStrings, AnotherAlphaIsDroppedWhenTheColourIsHandedOut) {
  EXPECT_EQ(handedOut("#21A7FF80"), "#21A7FFFF");
  EXPECT_EQ(handedOut("21A7FF80"), "#21A7FFFF");
}

TEST_F(ColourStrings, AFreeColourIsHandedOutInUpperCase) {
  EXPECT_EQ(handedOut("#ffabcd"), "#FFABCDFF");
  manager.setTextBgColor("#ffffff");
  EXPECT_EQ(manager.textBgColor(), "#FFFFFFFF");
}

TEST_F(ColourStrings, AFreeSetterTakesAnyTextAndTheGetterKeepsSevenCharactersOfIt) {
  const struct {
    const char* set;
    const char* handed;
  } rows[] = {{"", "#FF"},
              {"#", "#FF"},
              {"ff", "#FFFF"},
              {"abc", "#ABCFF"},
              {"#12345", "#12345FF"},
              {"#1234567", "#123456FF"},
              {"#1234567890", "#123456FF"},
              {"#12345ff", "#12345FFF"},  // 8 characters: no alpha is looked for, "#12345F" is kept
              {"no colour at all", "#NO COLFF"},
              {"##123456", "##12345FF"}};
  for (const auto& row : rows) EXPECT_EQ(handedOut(row.set), row.handed) << row.set;
}

TEST_F(ColourStrings, NoneClearsTheTextBackground) {
  manager.setTextBgColor("#303033");
  EXPECT_EQ(manager.textBgColor(), "#303033FF");
  manager.setTextBgColor(std::nullopt);
  EXPECT_EQ(manager.textBgColor(), std::nullopt);
}

TEST_F(ColourStrings, AnEmptyTextBackgroundIsAColourAndNotNone) {
  manager.setTextBgColor("");
  EXPECT_EQ(manager.textBgColor(), "#FF");
}

TEST_F(ColourStrings, NoneAsTextColourThrowsAndKeepsTheColour) {
  manager.setTextColor("#303033");
  EXPECT_THROW(manager.setTextColor(std::nullopt), std::invalid_argument);
  EXPECT_EQ(manager.textColor(), "#303033FF");
}

TEST_F(ColourStrings, TextColourAndTextBackgroundArePropertiesOfTheirOwn) {
  manager.setTextColor("#111111");
  manager.setTextBgColor("#222222");
  EXPECT_EQ(manager.textColor(), "#111111FF");
  EXPECT_EQ(manager.textBgColor(), "#222222FF");
}

// ---- Text that is not ASCII ----

TEST_F(ColourStrings, LengthsCountCharactersAndNotBytes) {
  // Six characters of three bytes each: long enough to be looked up, kept whole when handed out.
  EXPECT_EQ(handedOut("白板白板白板"), "#白板白板白板FF");
  // Nine characters with an alpha at the end, however many bytes they are.
  EXPECT_EQ(handedOut("#白板白板白板ff"), "#白板白板白板FF");
  EXPECT_EQ(handedOut("#白板白板白板板板板"), "#白板白板白板FF");
  // Nine bytes, but five characters: nothing is cut.
  EXPECT_EQ(handedOut("#白板ff"), "#白板FFFF");
}

TEST_F(ColourStrings, NoCharacterIsCutInHalf) {
  EXPECT_EQ(handedOut("#12345é7"), "#12345éFF");
  EXPECT_EQ(handedOut("#12345😀7"), "#12345😀FF");
  EXPECT_EQ(handedOut("#123456😀"), "#123456FF");
}

TEST_F(ColourStrings, OnlyAsciiLettersChangeCase) {
  EXPECT_EQ(handedOut("#éßﬀaz"), "#éßﬀAZFF");
  EXPECT_EQ(handedOut("#[`{@"), "#[`{@FF");
}

TEST_F(ColourStrings, BytesThatAreNoUtf8AreHarmless) {
  EXPECT_EQ(handedOut("#\xFF\xFE"),
            "#\xFF\xFE"
            "FF");
  EXPECT_EQ(handedOut("\x80\x80\x80\x80\x80\x80\x80\x80"),
            "#\x80\x80\x80\x80\x80\x80\x80\x80"
            "FF");
  EXPECT_EQ(handedOut("#123456\xE7"), "#123456FF");
  EXPECT_EQ(VWBToolManager::indexOfColor("\x80\x80\x80\x80\x80\x80\x80"), 0);
  EXPECT_EQ(VWBToolManager::indexOfColor("#FFA400\xE7"), 2);
}

TEST_F(ColourStrings, AZeroByteIsACharacterLikeAnyOther) {
  EXPECT_EQ(handedOut(std::string("#12\0"
                                  "4567",
                                  8)),
            std::string("#12\0"
                        "456FF",
                        9));
}

// ---- Index to colour ----

TEST_F(ColourStrings, AnIndexOfThePaletteGivesItsEntry) {
  const auto& palette = manager.colorArr();
  for (std::size_t i = 0; i < palette.size(); ++i) {
    EXPECT_EQ(VWBToolManager::colorStringWithIndex(static_cast<std::int64_t>(i)), palette[i]);
  }
  EXPECT_EQ(VWBToolManager::colorStringWithIndex(6), "#FFFFFF");
}

TEST_F(ColourStrings, AnIndexBelowOrFarAboveThePaletteGivesTheFirstEntry) {
  for (const std::int64_t index : {std::int64_t{-1}, std::int64_t{8}, kLowest, kHighest}) {
    EXPECT_EQ(VWBToolManager::colorStringWithIndex(index), "#FF3467") << index;
  }
}

TEST_F(ColourStrings, AnIndexEqualToThePalettesLengthThrows) {
  EXPECT_THROW(VWBToolManager::colorStringWithIndex(7), std::out_of_range);
  EXPECT_THROW(manager._colorStringWithIndex(7), std::out_of_range);
}

// ---- Colour to index ----

TEST_F(ColourStrings, AColourIsFoundWithAndWithoutHashAndAlpha) {
  const struct {
    const char* color;
    std::int64_t index;
  } rows[] = {{"#FF3467", 0}, {"#21A7FF", 1},   {"#21A7FFFF", 1}, {"FFA400", 2}, {"#FFA400FF", 2},
              {"00CDB1", 3},  {"#9763FF00", 4}, {"303033FF", 5},  {"#FFFFFF", 6}};
  for (const auto& row : rows) {
    EXPECT_EQ(VWBToolManager::indexOfColor(row.color), row.index) << row.color;
  }
}

TEST_F(ColourStrings, TheIndexOfAColourIsFoundByItsBeginning) {
  EXPECT_EQ(VWBToolManager::indexOfColor("#21A7FF and more"), 1);
  EXPECT_EQ(VWBToolManager::indexOfColor("FFFFFF8040"), 6);
  EXPECT_EQ(VWBToolManager::indexOfColor(" #21A7FF"), 0);
}

TEST_F(ColourStrings, AColourThatIsNotFoundHasIndexZero) {
  for (const char* color : {"#0A0B0C", "#21a7ff", "##21A7FF", "#FFA40", "0x21A7FF"}) {
    EXPECT_EQ(VWBToolManager::indexOfColor(color), 0) << color;
  }
}

TEST_F(ColourStrings, AColourOfFewerThanSixCharactersHasIndexZero) {
  for (const char* color : {"", "#", "#FFA4", "FFA40", "白板白板白"}) {
    EXPECT_EQ(VWBToolManager::indexOfColor(color), 0) << color;
  }
  EXPECT_EQ(VWBToolManager::indexOfColor("FFA400"), 2);  // six are enough
}

TEST_F(ColourStrings, TheInstanceTwinsOfTheLookupsGiveTheSame) {
  for (const std::int64_t index : {-1, 0, 3, 6, 8}) {
    EXPECT_EQ(manager._colorStringWithIndex(index), VWBToolManager::colorStringWithIndex(index));
  }
  for (const char* color : {"#9763FF00", "#0A0B0C", ""}) {
    EXPECT_EQ(manager._indexOfColor(color), VWBToolManager::indexOfColor(color));
  }
}

}  // namespace
}  // namespace VelWhiteBoard
