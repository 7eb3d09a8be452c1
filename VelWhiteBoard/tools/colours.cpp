#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

#include "VelWhiteBoard/foundation/values/truncation.h"
#include "VelWhiteBoard/tools/tool_manager.h"

namespace VelWhiteBoard {
namespace {

constexpr std::size_t kDigitsOnly = 6;       // RRGGBB
constexpr std::size_t kDigitsWithHash = 7;   // #RRGGBB
constexpr std::size_t kLengthWithAlpha = 9;  // #RRGGBBAA
constexpr std::string_view kOpaque = "FF";

// A character begins at every byte that does not continue one. Cutting only there never splits a
// character, and the rule also works for bytes that are not UTF-8.
bool beginsCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; }

std::size_t characterCount(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), beginsCharacter));
}

/// The string up to, not including, the character at `position`; all of it when it is shorter.
std::string_view firstCharacters(std::string_view text, std::size_t position) {
  std::size_t seen = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!beginsCharacter(text[i])) continue;
    if (seen == position) return text.substr(0, i);
    ++seen;
  }
  return text;
}

// The standard functions for case depend on the locale; colours must not.
char upperCaseCharacter(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

std::string upperCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), upperCaseCharacter);
  return text;
}

/// The stored colour without anything after its six digits. Every stored colour begins with "#":
/// the palette's entries do, and the other setters ensure it.
std::string withoutAlpha(const std::string& stored) {
  return std::string(firstCharacters(stored, kDigitsWithHash));
}

std::string handedOut(const std::string& stored) {
  return upperCase(withoutAlpha(stored).append(kOpaque));
}

std::string twoHexDigits(std::int64_t byte) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  const auto value = static_cast<std::size_t>(byte);
  return {kDigits[value / 16], kDigits[value % 16]};
}

std::string withHash(const std::string& color) {
  return color.starts_with('#') ? color : "#" + color;
}

/// The form in which the freely chosen colours are stored.
std::string normalised(const std::string& color) {
  std::string result = upperCase(withHash(color));
  if (characterCount(result) == kLengthWithAlpha && result.ends_with(kOpaque)) {
    result.resize(result.size() - kOpaque.size());
  }
  return result;
}

}  // namespace

// ---- Current colours ----

std::string VWBToolManager::textColor() const { return handedOut(user_.textColor); }

std::string VWBToolManager::lineColor() const { return handedOut(user_.lineColor); }

std::string VWBToolManager::diagramColor() const { return handedOut(user_.diagramColor); }

std::optional<std::string> VWBToolManager::textBgColor() const {
  if (!user_.textBgColor) return std::nullopt;
  return handedOut(*user_.textBgColor);
}

std::string VWBToolManager::markerColor() const {
  const std::int64_t alpha = truncatedToSigned(markerColorAlpha_ * 255.0);
  return withoutAlpha(user_.markerColor) + twoHexDigits(std::clamp<std::int64_t>(alpha, 0, 255));
}

void VWBToolManager::setTextColor(const std::optional<std::string>& textColor) {
  if (!textColor) throw std::invalid_argument("a text colour must be given");
  user_.textColor = normalised(*textColor);
}

void VWBToolManager::setTextBgColor(const std::optional<std::string>& textBgColor) {
  if (textBgColor) {
    user_.textBgColor = normalised(*textBgColor);
  } else {
    user_.textBgColor.reset();
  }
}

void VWBToolManager::setLineColor(const std::optional<std::string>& lineColor) {
  if (isPaletteColor(lineColor)) user_.lineColor = *lineColor;
}

void VWBToolManager::setDiagramColor(const std::optional<std::string>& diagramColor) {
  if (isPaletteColor(diagramColor)) user_.diagramColor = *diagramColor;
}

void VWBToolManager::setMarkerColor(const std::optional<std::string>& markerColor) {
  if (isPaletteColor(markerColor)) user_.markerColor = *markerColor;
}

double VWBToolManager::markerColorAlpha() const { return markerColorAlpha_; }

void VWBToolManager::setMarkerColorAlpha(double markerColorAlpha) {
  markerColorAlpha_ = markerColorAlpha;
}

bool VWBToolManager::isPaletteColor(const std::optional<std::string>& color) const {
  // An absent colour equals no entry.
  return std::find(colorArr().begin(), colorArr().end(), color) != colorArr().end();
}

// ---- Palette lookups ----

std::string VWBToolManager::colorStringWithIndex(std::int64_t index) {
  return sharedManager()._colorStringWithIndex(index);
}

std::string VWBToolManager::_colorStringWithIndex(std::int64_t index) const {
  const auto& palette = colorArr();
  // "<=" and not "<": an index equal to the length reaches at(), which throws.
  const bool isTaken = index >= 0 && static_cast<std::uint64_t>(index) <= palette.size();
  return palette.at(isTaken ? static_cast<std::size_t>(index) : 0);
}

std::int64_t VWBToolManager::indexOfColor(const std::string& color) {
  return sharedManager()._indexOfColor(color);
}

std::int64_t VWBToolManager::_indexOfColor(const std::string& color) const {
  if (characterCount(color) < kDigitsOnly) return 0;
  const std::string sought = withHash(color);
  const auto& palette = colorArr();
  const auto found = std::find_if(palette.begin(), palette.end(), [&](const std::string& entry) {
    return sought.starts_with(entry);
  });
  return found == palette.end() ? 0 : found - palette.begin();
}

}  // namespace VelWhiteBoard
