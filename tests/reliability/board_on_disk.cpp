#include "tests/reliability/board_on_disk.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/commands.h"

#include "tests/support/property_lists.h"

namespace VelWhiteBoard {
namespace {

std::string contentsOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace

std::shared_ptr<VWBVectorStorage> BoardOnDisk::open() const {
  auto storage = VWBVectorStorage::initWithPath(parent());
  storage->setIgnoreChanges(false);
  return storage;
}

Names setAsideIn(const std::string& folder, const std::string& name) {
  Names found = namesIn(folder);
  std::erase_if(found,
                [&](const std::string& each) { return !each.starts_with(name + ".damaged"); });
  return found;
}

bool BoardOnDisk::hasTemporaries() const {
  const Names all = names();
  return std::any_of(all.begin(), all.end(), [](const std::string& name) {
    return name.find(".tmp") != std::string::npos;
  });
}

std::string BoardOnDisk::contents(const std::string& name) const { return contentsOf(at(name)); }

void BoardOnDisk::put(const std::string& name, const std::string& contents) const {
  std::ofstream(at(name), std::ios::binary | std::ios::trunc) << contents;
}

Names recordsIn(const std::string& path) {
  const ReadRecords list = readPropertyList(VelWbBaseVector::ownClass(), contentsOf(path));
  if (!list.result.ok()) return {};
  Names identifiers;
  for (const auto& record : list.records) {
    const auto* const visit = recordCast<const VelWbVecSwitchPage>(record.get());
    const auto& vector = static_cast<const VelWbBaseVector&>(*record);
    identifiers.push_back(visit != nullptr ? visit->pageInfo() : vector.ID.value_or(""));
  }
  return identifiers;
}

Strings keptIn(const std::string& folder, const std::string& name) {
  Names all = recordsIn(folder + "/" + name);
  for (const std::string& aside : setAsideIn(folder, name)) {
    const Names more = recordsIn(folder + "/" + aside);
    all.insert(all.end(), more.begin(), more.end());
  }
  return {all.begin(), all.end()};
}

Names identifiersOf(const VectorList& vectors) {
  Names identifiers;
  for (const VectorPtr& vector : vectors) identifiers.push_back(vector->ID.value_or(""));
  return identifiers;
}

Names numbered(const std::string& prefix, int first, int last) {
  Names names;
  for (int i = first; i <= last; ++i) names.push_back(prefix + ' ' + std::to_string(i));
  return names;
}

void draw(VWBVectorStorage& storage, const Names& identifiers) {
  for (const std::string& identifier : identifiers) {
    auto text = VelWbVecText::initWithType("text");
    text->ID = identifier;
    text->text = "words";
    storage.saveVector(text);
  }
}

void settle(const VWBVectorStorage& storage) {
  storage.saveQueue()->waitUntilAllOperationsAreFinished();
}

void saveNow(VWBVectorStorage& storage) {
  storage.saveFile(true);
  settle(storage);
}

Names missing(const Names& wanted, const Strings& kept) {
  Names result;
  std::copy_if(wanted.begin(), wanted.end(), std::back_inserter(result),
               [&](const std::string& name) { return !kept.contains(name); });
  return result;
}

int numberFromEnvironment(const char* variable, int otherwise) {
  const char* const text = std::getenv(variable);
  return text != nullptr ? std::atoi(text) : otherwise;
}

}  // namespace VelWhiteBoard
