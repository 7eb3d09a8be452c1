#include "VelWhiteBoard/vectors/drawing_settings.h"

namespace VelWhiteBoard {

namespace {

using WidthTable = DrawingSettings::WidthTable;

struct WidthTables {
  WidthTable line;
  WidthTable marker;
};

const WidthTables& tablesOf(std::uint64_t version) {
  static const auto& three = *new WidthTables{{2.0, 4.0, 7.0}, {8.0, 14.0, 20.0}};
  static const auto& five =
      *new WidthTables{{2.0, 4.0, 6.0, 8.0, 10.0}, {16.0, 30.0, 44.0, 58.0, 72.0}};
  return version == 1 ? five : three;
}

}  // namespace

DrawingSettings& DrawingSettings::shared() {
  static auto& shared = *new DrawingSettings;
  return shared;
}

void DrawingSettings::init() {
  setVersion(0);
  wbSize = {400.0, 225.0};
  wbBaseSize = {400.0, 225.0};
}

void DrawingSettings::setVersion(std::uint64_t version) {
  const WidthTables& tables = tablesOf(version);
  version_.store(version);
  lineWidths_ = &tables.line;
  markerWidths_ = &tables.marker;
}

const WidthTable& DrawingSettings::eraserWidths() const {
  static const auto& widths = *new WidthTable{20.0};
  return widths;
}

}  // namespace VelWhiteBoard
