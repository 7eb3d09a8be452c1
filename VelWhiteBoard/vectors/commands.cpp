#include "VelWhiteBoard/vectors/commands.h"

#include "VelWhiteBoard/foundation/records/property_table.h"

namespace VelWhiteBoard {

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
