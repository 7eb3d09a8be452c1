// Whether a list's text is what the library writes.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "VelWhiteBoard/foundation/plist/property_list_writer.h"

#include "place.h"

namespace board_check {

/// Compares a text with what the library's writer makes of its records, while the text is being
/// read. Memory is that of a block and a record.
class LayoutCheck {
 public:
  LayoutCheck();
  LayoutCheck(const LayoutCheck&) = delete;
  LayoutCheck& operator=(const LayoutCheck&) = delete;

  /// The next block of the text, before the records that end in it.
  void addText(std::string_view block);
  /// The next record of the text.
  void addRecord(const VelWhiteBoard::Record& record);
  /// To be called once, behind the end: where the text begins to differ; nullopt when it does not.
  std::optional<Place> finish();

 private:
  bool compare(std::string_view written);

  VelWhiteBoard::BlockConsumer consume_;
  VelWhiteBoard::PropertyListWriter writer_;
  /// Text that the writer has not reached yet, from `compared_` on.
  std::string text_;
  std::size_t compared_ = 0;
  bool isSame_ = true;
  Place place_;
};

}  // namespace board_check
