#include "VelWhiteBoard/vectors/media_lists.h"

#include <utility>

#include "VelWhiteBoard/foundation/records/property_table.h"

namespace VelWhiteBoard {

const RecordClass& VelWbVecMediaItem::ownClass() {
  static const RecordClass own = makeRecordClass<VelWbVecMediaItem>("VelWbVecMediaItem", nullptr);
  return own;
}

std::shared_ptr<VelWbVecMediaItem> VelWbVecMediaItem::mutableCopyWithZone() const {
  return std::make_shared<VelWbVecMediaItem>(*this);
}

const RecordClass& VelWbVecMediaList::ownClass() {
  static const RecordClass own =
      makeRecordClass<VelWbVecMediaList>("VelWbVecMediaList", &VelWbBaseVector::ownClass());
  return own;
}

void VelWbVecMediaList::merge(const VelWbVecMediaList& other) {
  if (!other.list) return;
  auto items = other.list;  // copied first: when that throws, the receiver keeps its own
  list = std::move(items);
}

std::map<std::string, const RecordClass*> VelWbVecMediaList::modelContainerPropertyGenericClass() {
  return containerClasses(ownClass());
}

std::shared_ptr<Record> VelWbVecMediaList::makeMutableCopy() const {
  auto copy = std::make_shared<VelWbVecMediaList>(*this);
  copy->owner = 0;
  return copy;
}

}  // namespace VelWhiteBoard
