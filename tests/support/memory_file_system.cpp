#include "tests/support/memory_file_system.h"

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <utility>

#include "VelWhiteBoard/foundation/files/temporary_file.h"

namespace VelWhiteBoard {
namespace {

bool namesSomething(const std::string& path) {
  return !path.empty() && path.find('\0') == std::string::npos;
}

std::string_view folderOf(std::string_view key) { return key.substr(0, key.find_last_of('/')); }

std::string_view nameOf(std::string_view key) { return key.substr(key.find_last_of('/') + 1); }

// The form in which nodes are kept: "//a/./b/../c/" is "/a/c".
std::string keyOf(std::string_view path) {
  std::string key;
  while (!path.empty()) {
    const std::string_view part = path.substr(0, path.find('/'));
    path.remove_prefix(std::min(path.size(), part.size() + 1));
    if (part == "..") {
      key.resize(key.empty() ? 0 : folderOf(key).size());
    } else if (!part.empty() && part != ".") {
      key += '/';
      key += part;
    }
  }
  return key;
}

FileResult outcome(FileStep step, int negatedError, const std::string& path) {
  return negatedError < 0 ? FileResult::failure(step, -negatedError, path) : FileResult::success();
}

bool lies(const std::string& key, const std::string& under) { return key.starts_with(under + "/"); }

class OpenedContents final : public OpenedFile {
 public:
  explicit OpenedContents(std::string contents) : contents_(std::move(contents)) {}

  FileResult read(const BlockConsumer& consume) override {
    for (std::string_view rest = contents_; !rest.empty();) {
      const std::string_view block = rest.substr(0, kFileBlockSize);
      rest.remove_prefix(block.size());
      if (!consume(block)) break;
    }
    return FileResult::success();
  }

 private:
  std::string contents_;
};

}  // namespace

const MemoryFileSystem::Node* MemoryFileSystem::find(const std::string& key) const {
  static const Node root{true, ""};
  if (key.empty()) return &root;
  const auto found = nodes_.find(key);
  return found == nodes_.end() ? nullptr : &found->second;
}

int MemoryFileSystem::requireFolderOf(const std::string& key) const {
  std::string folder(folderOf(key));
  if (const Node* node = find(folder)) return node->isFolder ? 0 : -ENOTDIR;
  while (!find(folder)) folder.resize(folderOf(folder).size());
  return find(folder)->isFolder ? -ENOENT : -ENOTDIR;
}

bool MemoryFileSystem::hasEntries(const std::string& key) const {
  return std::any_of(nodes_.begin(), nodes_.end(),
                     [&](const auto& entry) { return lies(entry.first, key); });
}

int MemoryFileSystem::writable(const std::string& key) const {
  if (const int result = requireFolderOf(key); result < 0) return result;
  const Node* node = find(key);
  return node && node->isFolder ? -EISDIR : 0;
}

FileResult MemoryFileSystem::status(const std::string& path, FileStatus& status) {
  status = {};
  if (!namesSomething(path)) return FileResult::success();
  const std::lock_guard<std::mutex> lock(mutex_);
  const Node* node = find(keyOf(path));
  // "page.plist/" asks for a folder.
  if (!node || (!node->isFolder && path.back() == '/')) return FileResult::success();
  status.kind = node->isFolder ? FileKind::kFolder : FileKind::kFile;
  status.size = node->contents.size();
  return FileResult::success();
}

int MemoryFileSystem::findFile(const std::string& path, const Node*& node) const {
  if (!namesSomething(path)) return -ENOENT;
  const std::string key = keyOf(path);
  node = find(key);
  if (!node) return std::min(requireFolderOf(key), -ENOENT);
  return node->isFolder ? -EISDIR : 0;
}

FileResult MemoryFileSystem::open(const std::string& path, std::unique_ptr<OpenedFile>& file) {
  file.reset();
  const std::lock_guard<std::mutex> lock(mutex_);
  const Node* node = nullptr;
  const int result = findFile(path, node);
  if (result >= 0) file = std::make_unique<OpenedContents>(node->contents);
  return outcome(FileStep::kOpen, result, path);
}

FileResult MemoryFileSystem::readBytes(const std::string& path, FileBytes& bytes) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const Node* node = nullptr;
  bytes = {};
  if (const int result = findFile(path, node); result < 0) {
    return outcome(FileStep::kOpen, result, path);
  }
  const std::size_t size = node->contents.size();
  std::unique_ptr<char[]> buffer(new char[size]);
  node->contents.copy(buffer.get(), size);
  bytes = FileBytes(std::move(buffer), size);
  return FileResult::success();
}

FileResult MemoryFileSystem::writeAtomically(const std::string& path,
                                             const ContentProducer& produce) {
  if (!namesSomething(path)) return FileResult::failure(FileStep::kOpen, ENOENT, path);
  const std::string key = keyOf(path);
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    const int result = requireFolderOf(key);
    if (result < 0) return outcome(FileStep::kOpen, result, path);
  }
  std::string contents;
  const bool produced = produce([&contents](std::string_view block) {
    contents += block;
    return true;
  });
  if (!produced) return FileResult::failure(FileStep::kProduce, 0, path);
  const std::lock_guard<std::mutex> lock(mutex_);
  const int result = writable(key);
  if (result >= 0) {
    nodes_[key].contents = std::move(contents);
    nodes_.erase(key + std::string(kTemporarySuffix));  // a leftover would have been used up
  }
  return outcome(FileStep::kRename, result, path);
}

FileResult MemoryFileSystem::removeRecursively(const std::string& path) {
  if (!namesSomething(path)) return FileResult::success();
  const std::string_view last = nameOf(withoutTrailingSeparators(path));
  if (last.empty() || last == "." || last == "..") {
    return FileResult::failure(FileStep::kRemove, EINVAL, path);
  }
  const std::lock_guard<std::mutex> lock(mutex_);
  const std::string key = keyOf(path);
  std::erase_if(nodes_,
                [&](const auto& entry) { return entry.first == key || lies(entry.first, key); });
  return FileResult::success();
}

FileResult MemoryFileSystem::list(const std::string& path, std::vector<std::string>& names) {
  if (!namesSomething(path)) return FileResult::failure(FileStep::kList, ENOENT, path);
  const std::lock_guard<std::mutex> lock(mutex_);
  const std::string key = keyOf(path);
  const Node* node = find(key);
  if (!node) return outcome(FileStep::kList, std::min(requireFolderOf(key), -ENOENT), path);
  if (!node->isFolder) return FileResult::failure(FileStep::kList, ENOTDIR, path);
  for (auto entry = nodes_.rbegin(); entry != nodes_.rend(); ++entry) {
    if (folderOf(entry->first) == key) names.emplace_back(nameOf(entry->first));
  }
  return FileResult::success();
}

int MemoryFileSystem::makeOne(const std::string& key) {
  if (find(key)) return -EEXIST;
  const int result = requireFolderOf(key);
  if (result >= 0) nodes_[key].isFolder = true;
  return result;
}

FileResult MemoryFileSystem::makeFolder(const std::string& path) {
  if (!namesSomething(path)) return FileResult::failure(FileStep::kMakeFolder, ENOENT, path);
  const std::lock_guard<std::mutex> lock(mutex_);
  return outcome(FileStep::kMakeFolder, makeOne(keyOf(path)), path);
}

FileResult MemoryFileSystem::makeFolders(const std::string& path) {
  if (!namesSomething(path)) return FileResult::failure(FileStep::kMakeFolder, ENOENT, path);
  const std::lock_guard<std::mutex> lock(mutex_);
  const std::string key = keyOf(path);
  for (std::size_t end = 0; end != std::string::npos;) {
    end = key.find('/', end + 1);
    const std::string prefix = key.substr(0, end);
    const Node* node = find(prefix);
    const int result = node && node->isFolder ? 0 : makeOne(prefix);
    if (result < 0) return outcome(FileStep::kMakeFolder, result, prefix);
  }
  return FileResult::success();
}

FileResult MemoryFileSystem::removeUnusedTemporaries(const std::string& folder,
                                                     std::string_view targetSuffix) {
  std::vector<std::string> names;
  FileResult listed = list(folder, names);
  const std::lock_guard<std::mutex> lock(mutex_);
  // No write here ever leaves one, and none is in use: those that lie there were put there.
  for (const std::string& name : names) {
    const auto found = nodes_.find(keyOf(folder) + "/" + name);
    const bool isFile = found != nodes_.end() && !found->second.isFolder;
    if (isFile && isTemporaryName(name, targetSuffix)) nodes_.erase(found);
  }
  return listed;
}

int MemoryFileSystem::move(const std::string& from, const std::string& to) {
  const Node* source = find(from);
  if (!source) return -ENOENT;
  if (const int result = requireFolderOf(to); result < 0) return result;
  if (from == to) return 0;
  if (lies(to, from)) return -EINVAL;
  if (const Node* target = find(to)) {
    if (target->isFolder && !source->isFolder) return -EISDIR;
    if (!target->isFolder && source->isFolder) return -ENOTDIR;
    if (hasEntries(to)) return -ENOTEMPTY;
  }
  Nodes moved;
  for (const auto& [key, node] : nodes_) {
    if (key == from || lies(key, from)) moved[to + key.substr(from.size())] = node;
  }
  std::erase_if(nodes_,
                [&](const auto& entry) { return entry.first == from || lies(entry.first, from); });
  for (auto& [key, node] : moved) nodes_[key] = std::move(node);
  return 0;
}

FileResult MemoryFileSystem::rename(const std::string& from, const std::string& to) {
  if (!namesSomething(from)) return FileResult::failure(FileStep::kRename, ENOENT, from);
  if (!namesSomething(to)) return FileResult::failure(FileStep::kRename, ENOENT, to);
  const std::lock_guard<std::mutex> lock(mutex_);
  return outcome(FileStep::kRename, move(keyOf(from), keyOf(to)), from);
}

FileResult MemoryFileSystem::renameToNew(const std::string& from, const std::string& to) {
  if (!namesSomething(from)) return FileResult::failure(FileStep::kRename, ENOENT, from);
  if (!namesSomething(to)) return FileResult::failure(FileStep::kRename, ENOENT, to);
  const std::lock_guard<std::mutex> lock(mutex_);
  const bool isTaken = find(keyOf(from)) != nullptr && find(keyOf(to)) != nullptr;
  const int result = isTaken ? -EEXIST : move(keyOf(from), keyOf(to));
  return outcome(FileStep::kRename, result, from);
}

}  // namespace VelWhiteBoard
