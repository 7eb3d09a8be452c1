/// @file
/// The settings that a vector's width and timestamp depend on.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "VelWhiteBoard/foundation/values/geometry.h"

namespace VelWhiteBoard {

/// The part of the drawing settings that vectors read. Clients set them through the tool manager.
///
/// One object serves the whole process. It is never destroyed: threads that outlive main() may
/// still ask for widths.
///
/// Threads: `version()` may be read from any thread at any time; everything else is used on the
/// tool manager's thread only.
class DrawingSettings {
 public:
  using WidthTable = std::vector<double>;

  static DrawingSettings& shared();

  /// Puts everything back to its initial value.
  void init();

  std::uint64_t version() const { return version_.load(); }
  /// Also chooses the width tables.
  void setVersion(std::uint64_t version);

  // In points of the base board size. A table lives as long as the process and never changes.
  const WidthTable& lineWidths() const { return *lineWidths_; }
  const WidthTable& markerWidths() const { return *markerWidths_; }
  const WidthTable& eraserWidths() const;

  /// The size of the view, in points.
  Size wbSize;
  /// The size that the widths are meant for, in points.
  Size wbBaseSize;

 private:
  DrawingSettings() { init(); }

  const WidthTable* lineWidths_ = nullptr;
  const WidthTable* markerWidths_ = nullptr;
  // The vector manager reads it for timestamps, on any thread.
  std::atomic<std::uint64_t> version_{0};
};

}  // namespace VelWhiteBoard
