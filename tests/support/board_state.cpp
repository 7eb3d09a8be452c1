#include "tests/support/board_state.h"

#include <filesystem>
#include <optional>
#include <utility>

#include "VelWhiteBoard/foundation/records/model_mapping.h"
#include "VelWhiteBoard/storage/vector_storage.h"

namespace VelWhiteBoard {
namespace {

Value lastComponent(const std::optional<std::string>& path) {
  return path ? Value(std::filesystem::path(*path).filename().string()) : Value();
}

}  // namespace

void Inventory::add(const std::string& name, const VectorList& list) {
  Value numbers = Array();
  for (const VectorPtr& vector : list) numbers.push_back(number(vector));
  lists_[name] = std::move(numbers);
}

Value Inventory::number(const VectorPtr& vector) {
  if (!vector) return Value();
  const auto [at, isNew] = numbers_.try_emplace(vector, numbers_.size());
  if (isNew) {
    records_.push_back(Array{Value(vector->recordClass().name), modelToJSONObject(*vector)});
  }
  return at->second;
}

Value stateOf(const VWBVectorStorage& storage, const VectorList& others) {
  Inventory state;
  state.add("others", others);
  state.addAll("whole", storage.wholeVectorss());
  state.addAll("snap", storage.snapVectorss());
  state.addQuery("query", storage.snapQuery());
  state.addPages("pageArray", storage.pageArray());
  state.add("currentPage", storage.currentPage());
  state.note("hasNewChange", storage.hasNewChange());
  state.note("ignoreChanges", storage.ignoreChanges());
  state.note("pageCacheList", storage.pageCacheList());
  state.note("folder", lastComponent(storage.folder()));
  state.note("pageFile", lastComponent(storage.pageFile()));
  state.note("wholeFile", lastComponent(storage.wholeFile()));
  state.note("snapFile", lastComponent(storage.snapFile()));
  return state.value();
}

}  // namespace VelWhiteBoard
