#include "tests/reliability/generations.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "VelWhiteBoard/foundation/files/file_system.h"
#include "VelWhiteBoard/foundation/plist/property_list_reader.h"
#include "VelWhiteBoard/foundation/records/model_mapping.h"

namespace VelWhiteBoard {
namespace {

// FNV-1a, 64 bits.
void mix(std::uint64_t& hash, std::string_view text) {
  for (const char character : text) {
    hash ^= static_cast<unsigned char>(character);
    hash *= 0x100000001b3U;
  }
}

bool readList(const std::string& path, VectorList& vectors) {
  PropertyListReader reader(VelWbBaseVector::ownClass(), [&](std::shared_ptr<Record> record) {
    vectors.push_back(std::static_pointer_cast<VelWbBaseVector>(std::move(record)));
  });
  const FileResult read =
      FileSystem::current().read(path, [&](std::string_view block) { return reader.feed(block); });
  return reader.finish().ok() && read.ok();
}

}  // namespace

std::string digestOf(const VectorList& vectors) {
  std::uint64_t hash = 0xcbf29ce484222325U;
  for (const VectorPtr& vector : vectors) {
    mix(hash, modelToJSONString(*vector));
    mix(hash, "\n");
  }
  char text[48];
  std::snprintf(text, sizeof text, "%zu:%016llx", vectors.size(),
                static_cast<unsigned long long>(hash));
  return text;
}

std::string digestOfFile(const std::string& path) {
  if (!FileSystem::current().exists(path)) return kAbsentFile;
  VectorList vectors;
  return readList(path, vectors) ? digestOf(vectors) : kUnreadableFile;
}

std::set<std::string> identifiersIn(const std::string& path) {
  VectorList vectors;
  std::set<std::string> identifiers;
  if (!readList(path, vectors)) return identifiers;
  for (const VectorPtr& vector : vectors) identifiers.insert(vector->ID.value_or(""));
  return identifiers;
}

std::string wholeName(const std::string& key) { return "whole_" + key + ".plist"; }
std::string snapName(const std::string& key) { return "snap_" + key + ".plist"; }

VectorList vectorsOf(const std::vector<VWBVectorStorage::SwitchPagePtr>& pages) {
  return {pages.begin(), pages.end()};
}

std::vector<std::string> namesIn(const std::string& folder) { return namesIn(folder, ""); }

std::vector<std::string> namesIn(const std::string& folder, const std::string& suffix) {
  std::vector<std::string> names;
  std::error_code ignored;
  for (const auto& entry : std::filesystem::directory_iterator(folder, ignored)) {
    const std::string name = entry.path().filename().string();
    if (name.ends_with(suffix)) names.push_back(name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

void Generations::add(const std::string& name, const std::string& digest) {
  File& file = files_[name];
  file.digests.push_back(digest);
  file.isUncertain = false;
}

void Generations::addClear() {
  for (auto& [name, file] : files_) {
    file.digests.push_back(kAbsentFile);
    file.isUncertain = true;
  }
}

void Generations::settle() {
  for (auto& [name, file] : files_) {
    if (!file.isUncertain) file.digests = {file.digests.back()};
  }
}

void Generations::set(const std::string& name, const std::string& digest) {
  files_[name] = {{digest}, false};
}

void Generations::forget() { files_.clear(); }

bool Generations::allow(const std::string& name, const std::string& digest) const {
  const auto found = files_.find(name);
  if (found == files_.end()) return digest == kAbsentFile;
  const auto& digests = found->second.digests;
  return std::find(digests.begin(), digests.end(), digest) != digests.end();
}

std::string Generations::describe(const std::string& name) const {
  std::string text = name + " may hold:";
  const auto found = files_.find(name);
  if (found == files_.end()) return text + " nothing";
  for (const std::string& digest : found->second.digests) text += " " + digest;
  return text;
}

std::set<std::string> Generations::names() const {
  std::set<std::string> names;
  for (const auto& [name, file] : files_) names.insert(name);
  return names;
}

}  // namespace VelWhiteBoard
