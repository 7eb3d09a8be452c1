#include "VelWhiteBoard/vectors/commands.h"

#include <charconv>
#include <cstddef>
#include <system_error>

#include "VelWhiteBoard/foundation/records/property_table.h"
#include "VelWhiteBoard/vectors/vector_defines.h"

namespace VelWhiteBoard {

namespace {

/// Reads `text` as a whole into `number`; tells whether it is a decimal number in its range.
template <class Integer>
bool readWhole(std::string_view text, Integer& number) {
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  return result.ec == std::errc() && result.ptr == end;
}

}  // namespace

const RecordClass& VelWbVecRemove::ownClass() {
  static const RecordClass own =
      makeRecordClass<VelWbVecRemove>("VelWbVecRemove", &VelWbBaseVector::ownClass());
  return own;
}

std::shared_ptr<Record> VelWbVecRemove::makeMutableCopy() const {
  return std::make_shared<VelWbVecRemove>(*this);
}

const RecordClass& VelWbVecClear::ownClass() {
  static const RecordClass own =
      makeRecordClass<VelWbVecClear>("VelWbVecClear", &VelWbBaseVector::ownClass());
  return own;
}

std::shared_ptr<Record> VelWbVecClear::makeMutableCopy() const {
  return std::make_shared<VelWbVecClear>(*this);
}

const RecordClass& VelWbVecSwitchPage::ownClass() {
  static const RecordClass own =
      makeRecordClass<VelWbVecSwitchPage>("VelWbVecSwitchPage", &VelWbBaseVector::ownClass());
  return own;
}

std::string VelWbVecSwitchPage::pageInfo() const {
  return std::to_string(WBID) + '_' + std::to_string(curPage);
}

std::shared_ptr<VelWbVecSwitchPage> VelWbVecSwitchPage::pageFromInfo(std::string_view info) {
  const std::size_t joint = info.find('_');
  if (joint == std::string_view::npos) return nullptr;
  std::int64_t board = 0;
  std::uint64_t number = 0;
  if (!readWhole(info.substr(0, joint), board)) return nullptr;
  if (!readWhole(info.substr(joint + 1), number)) return nullptr;
  auto page = initWithType(VelWBVectorStrSwitchPage);
  page->WBID = board;
  page->curPage = number;
  // Leading zeros and "-0" are read, but never written.
  return page->pageInfo() == info ? page : nullptr;
}

std::shared_ptr<Record> VelWbVecSwitchPage::makeMutableCopy() const {
  return std::make_shared<VelWbVecSwitchPage>(*this);
}

const RecordClass& VelWbVecOffset::ownClass() {
  static const RecordClass own =
      makeRecordClass<VelWbVecOffset>("VelWbVecOffset", &VelWbBaseVector::ownClass());
  return own;
}

std::shared_ptr<Record> VelWbVecOffset::makeMutableCopy() const {
  return std::make_shared<VelWbVecOffset>(*this);
}

const RecordClass& VelWbCaptureInfo::ownClass() {
  static const RecordClass own =
      makeRecordClass<VelWbCaptureInfo>("VelWbCaptureInfo", &VelWbVecSquare::ownClass());
  return own;
}

std::shared_ptr<Record> VelWbCaptureInfo::makeMutableCopy() const {
  auto copy = std::make_shared<VelWbCaptureInfo>(*this);
  copy->ps = 0;
  return copy;
}

}  // namespace VelWhiteBoard
