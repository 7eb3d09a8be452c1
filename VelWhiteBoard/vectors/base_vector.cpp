#include "VelWhiteBoard/vectors/base_vector.h"

#include "VelWhiteBoard/foundation/records/property_table.h"

namespace VelWhiteBoard {

const RecordClass& VelWbBaseVector::ownClass() {
  static constexpr RecordClass own = makeRecordClass<VelWbBaseVector>(
      "VelWbBaseVector", nullptr, &vectorClassForDictionary, &propertyOfAnyVector);
  return own;
}

std::shared_ptr<VelWbBaseVector> VelWbBaseVector::initWithType(std::optional<std::string> type) {
  auto vector = std::make_shared<VelWbBaseVector>();
  vector->type = std::move(type);
  return vector;
}

const RecordClass& VelWbBaseVector::modelCustomClassForDictionary(const Dictionary& dictionary) {
  return vectorClassForDictionary(dictionary, ownClass());
}

bool VelWbBaseVector::isSameStroke(const VelWbBaseVector& update) const {
  return type && ID && type == update.type && ID == update.ID;
}

std::shared_ptr<Record> VelWbBaseVector::makeMutableCopy() const {
  auto copy = std::make_shared<VelWbBaseVector>();
  copy->type = type;
  copy->ts = ts;
  copy->ID = ID;
  return copy;
}

Array modelToJSONObject(const VectorList& vectors) {
  Array array;
  array.reserve(vectors.size());
  for (const VectorPtr& vector : vectors) {
    if (vector) array.emplace_back(modelToJSONObject(*vector));
  }
  return array;
}

std::string modelToJSONString(const VectorList& vectors) {
  std::string text = "[";
  for (const VectorPtr& vector : vectors) {
    if (!vector) continue;
    if (text.size() > 1) text += ',';
    appendJSON(*vector, text);
  }
  text += ']';
  return text;
}

}  // namespace VelWhiteBoard
