#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "VelWhiteBoard/tools/tool_manager.h"
#include "VelWhiteBoard/vectors/drawing_settings.h"

namespace VelWhiteBoard {
namespace {

using WidthTable = std::vector<double>;

/// As an unsigned number a negative index is huge, so one comparison refuses both ends.
bool isIndexInto(const WidthTable& table, std::int64_t index) {
  return static_cast<std::uint64_t>(index) < table.size();
}

double widthAt(const WidthTable& table, std::int64_t index) {
  // ">" and not ">=": an index equal to the length reaches at(), which throws.
  const bool useFirst = index < 0 || static_cast<std::uint64_t>(index) > table.size();
  const double width = table.at(useFirst ? 0 : static_cast<std::size_t>(index));
  return static_cast<double>(static_cast<float>(width));
}

}  // namespace

// ---- The one object ----

VWBToolManager& VWBToolManager::sharedManager() {
  static auto& shared = *new VWBToolManager;
  return shared;
}

VWBToolManager& VWBToolManager::allocWithZone() { return sharedManager(); }

VWBToolManager::VWBToolManager() { _setToDefault(); }

VWBToolManager& VWBToolManager::init() {
  DrawingSettings::shared().init();
  markerColorAlpha_ = kMarkerColorAlpha;
  _setToDefault();
  return *this;
}

VWBToolManager& VWBToolManager::copy() { return *this; }

VWBToolManager& VWBToolManager::mutableCopy() { return *this; }

// ---- Settings ----

void VWBToolManager::setToDefault() { sharedManager()._setToDefault(); }

void VWBToolManager::_setToDefault() {
  UserSettings defaults;
  const std::string& firstColor = colorArr().front();
  defaults.markerColor = firstColor;
  defaults.textColor = firstColor;
  defaults.lineColor = firstColor;
  defaults.diagramColor = firstColor;
  user_ = std::move(defaults);
}

const std::vector<std::string>& VWBToolManager::colorArr() const {
  static const auto& palette = *new std::vector<std::string>{
      "#FF3467", "#21A7FF", "#FFA400", "#00CDB1", "#9763FF", "#303033", "#FFFFFF"};
  return palette;
}

const std::vector<double>& VWBToolManager::lineWidthArr() const {
  return DrawingSettings::shared().lineWidths();
}

const std::vector<double>& VWBToolManager::markerWidthArr() const {
  return DrawingSettings::shared().markerWidths();
}

const std::vector<double>& VWBToolManager::eraserWidthArr() const {
  return DrawingSettings::shared().eraserWidths();
}

double VWBToolManager::textFontMaxSize() const { return 72.0; }

double VWBToolManager::textFontMinSize() const { return 8.0; }

std::uint64_t VWBToolManager::whiteBoardTotalCount() const { return 10; }

std::uint64_t VWBToolManager::version() const { return DrawingSettings::shared().version(); }

void VWBToolManager::setVersion(std::uint64_t version) {
  DrawingSettings::shared().setVersion(version);
}

Size VWBToolManager::wbSize() const { return DrawingSettings::shared().wbSize; }

void VWBToolManager::setWbSize(Size wbSize) { DrawingSettings::shared().wbSize = wbSize; }

Size VWBToolManager::wbBaseSize() const { return DrawingSettings::shared().wbBaseSize; }

void VWBToolManager::setWbBaseSize(Size wbBaseSize) {
  DrawingSettings::shared().wbBaseSize = wbBaseSize;
}

std::uint64_t VWBToolManager::tool() const { return user_.tool; }

void VWBToolManager::setTool(std::uint64_t tool) { user_.tool = tool; }

std::int64_t VWBToolManager::lineWidthIndex() const { return user_.lineWidthIndex; }

void VWBToolManager::setLineWidthIndex(std::int64_t lineWidthIndex) {
  if (isIndexInto(lineWidthArr(), lineWidthIndex)) user_.lineWidthIndex = lineWidthIndex;
}

std::int64_t VWBToolManager::diagramWidthIndex() const { return user_.diagramWidthIndex; }

void VWBToolManager::setDiagramWidthIndex(std::int64_t diagramWidthIndex) {
  if (isIndexInto(lineWidthArr(), diagramWidthIndex)) user_.diagramWidthIndex = diagramWidthIndex;
}

std::int64_t VWBToolManager::markerWidthIndex() const { return user_.markerWidthIndex; }

void VWBToolManager::setMarkerWidthIndex(std::int64_t markerWidthIndex) {
  user_.markerWidthIndex = markerWidthIndex;
}

std::int64_t VWBToolManager::eraserWidthIndex() const { return user_.eraserWidthIndex; }

void VWBToolManager::setEraserWidthIndex(std::int64_t eraserWidthIndex) {
  if (isIndexInto(eraserWidthArr(), eraserWidthIndex)) user_.eraserWidthIndex = eraserWidthIndex;
}

double VWBToolManager::textFontSize() const { return user_.textFontSize; }

void VWBToolManager::setTextFontSize(double textFontSize) {
  // Written such that NaN is refused.
  const bool isWithinLimits =
      textFontMinSize() <= textFontSize && textFontSize <= textFontMaxSize();
  if (isWithinLimits) user_.textFontSize = textFontSize;
}

std::uint64_t VWBToolManager::currentPage() const { return user_.currentPage; }

void VWBToolManager::setCurrentPage(std::uint64_t currentPage) { user_.currentPage = currentPage; }

std::uint64_t VWBToolManager::totalPage() const { return user_.totalPage; }

void VWBToolManager::setTotalPage(std::uint64_t totalPage) { user_.totalPage = totalPage; }

std::uint64_t VWBToolManager::whiteBoardCount() const { return user_.whiteBoardCount; }

void VWBToolManager::setWhiteBoardCount(std::uint64_t whiteBoardCount) {
  user_.whiteBoardCount = whiteBoardCount;
}

// ---- Width lookups ----

double VWBToolManager::lineWidth(std::int64_t index) { return sharedManager()._lineWidth(index); }

double VWBToolManager::markerWidth(std::int64_t index) {
  return sharedManager()._markerWidth(index);
}

double VWBToolManager::eraserWidth(std::int64_t index) {
  return sharedManager()._eraserWidth(index);
}

double VWBToolManager::_lineWidth(std::int64_t index) const {
  return widthAt(lineWidthArr(), index);
}

double VWBToolManager::_markerWidth(std::int64_t index) const {
  return widthAt(markerWidthArr(), index);
}

double VWBToolManager::_eraserWidth(std::int64_t index) const {
  return widthAt(eraserWidthArr(), index);
}

// ---- Limits ----

double VWBToolManager::textLimitHeight(double fontSize) {
  return ((fontSize + -20.0) * 24.0 / 20.0) + 23.0;
}

double VWBToolManager::imageLimitSize() { return 10.0; }

}  // namespace VelWhiteBoard
