#include "fuzz/check.h"

#include <cmath>

#include "VelWhiteBoard/foundation/records/dictionary_keys.h"
#include "VelWhiteBoard/foundation/records/model_mapping.h"

namespace fuzz {

namespace {

using VelWhiteBoard::Value;

// Values from outside are nested 256 levels at most, so this may recurse.
bool isFiniteValue(const Value& value) {
  if (value.is_number_float()) return std::isfinite(value.get<double>());
  if (!value.is_structured()) return true;
  for (const Value& element : value) {
    if (!isFiniteValue(element)) return false;
  }
  return true;
}

}  // namespace

bool isFinite(const VelWhiteBoard::Record& record) {
  // The archive is the one form that keeps every number.
  VelWhiteBoard::Coder archive;
  record.encodeWithCoder(archive);
  for (const auto& [name, value] : archive.values()) {
    if (!isFiniteValue(value)) return false;
  }
  return true;
}

bool keepsItsClass(const VelWhiteBoard::Record& record, const VelWhiteBoard::RecordClass& asked) {
  if (asked.customClass == nullptr) return record.recordClass() == asked;
  const VelWhiteBoard::Dictionary form = VelWhiteBoard::modelToJSONObject(record);
  return asked.customClass(VelWhiteBoard::KeysOfDictionary(form), asked) == record.recordClass();
}

}  // namespace fuzz
