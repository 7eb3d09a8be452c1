#include "record_copy.h"

#include <optional>
#include <type_traits>
#include <utility>

#include "property_kinds.h"

namespace bindings {

namespace vwb = VelWhiteBoard;

namespace {

std::optional<vwb::RecordList> copiesOfElements(std::optional<vwb::RecordList> elements) {
  if (!elements) return elements;
  for (auto& element : *elements) {
    if (element) element = copyOfRecord(*element);
  }
  return elements;
}

}  // namespace

std::shared_ptr<vwb::Record> copyOfRecord(const vwb::Record& record) {
  const vwb::RecordClass& recordClass = record.recordClass();
  std::shared_ptr<vwb::Record> copy = recordClass.create();
  for (const vwb::Property& property : recordClass.properties) {
    withKind(property, *copy, [&](auto* field) {
      using Field = std::remove_pointer_t<decltype(field)>;
      if constexpr (std::is_same_v<Field, std::optional<vwb::RecordList>>) {
        property.list->set(*copy, copiesOfElements(property.list->get(record)));
      } else {
        *field = property.in<Field>(record);
      }
    });
  }
  return copy;
}

vwb::VectorList independentCopies(const vwb::VectorList& entries,
                                  const std::shared_ptr<vwb::Semaphore>& semphore) {
  const vwb::SemaphoreHold hold(semphore);
  vwb::VectorList copies;
  copies.reserve(entries.size());
  for (const vwb::VectorPtr& entry : entries) {
    copies.push_back(entry ? independentCopy(*entry) : nullptr);
  }
  return copies;
}

}  // namespace bindings
