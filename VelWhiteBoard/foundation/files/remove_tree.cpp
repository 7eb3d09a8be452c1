#include "VelWhiteBoard/foundation/files/remove_tree.h"

#include <cerrno>
#include <string_view>
#include <utility>

namespace VelWhiteBoard {
namespace {

// Folders that cannot be removed themselves; emptying them first would be half a deed, and a bad
// one.
bool isRemovable(std::string_view path) {
  const std::string_view last = path.substr(path.find_last_of('/') + 1);
  return !last.empty() && last != "." && last != "..";
}

}  // namespace

RemoveTree::RemoveTree(SystemCalls& calls, const std::string& path)
    : calls_(calls),
      path_(withoutTrailingSeparators(path)),  // "link/" would mean the folder behind the link
      current_(calls),
      parent_(calls) {}

FileResult RemoveTree::run() {
  if (!isRemovable(path_)) return FileResult::failure(FileStep::kRemove, EINVAL, path_);
  removeEntry(path_);
  while (!levels_.empty()) {
    std::vector<std::string>& remaining = levels_.back().remaining;
    if (remaining.empty()) {
      leave();
    } else {
      std::string name = std::move(remaining.back());
      remaining.pop_back();
      removeEntry(std::move(name));
    }
  }
  return first_;
}

int RemoveTree::remove(const std::string& name, bool isFolder) {
  const int folder = here();
  const int result = uninterrupted([&] { return calls_.remove(folder, name, isFolder); });
  // Not there: somebody else may have been faster, the entry is gone all the same. A way that leads
  // through a file, which is what the second error means, has nothing at its end either.
  const bool isGone = result == -ENOENT || (!isFolder && result == -ENOTDIR);
  return isGone ? 0 : result;
}

void RemoveTree::removeEntry(std::string name) {
  const int result = remove(name, false);
  if (result >= 0) return;
  // What a folder answers differs between systems; whether it is one shows when it is opened.
  if (result == -EISDIR || result == -EPERM) {
    enter(std::move(name), result);
  } else {
    note(FileStep::kRemove, result, name);
  }
}

// `refusal` is why the entry could not be removed as a file.
void RemoveTree::enter(std::string name, int refusal) {
  const int folder = here();
  OpenHandle opened(calls_, uninterrupted([&] { return calls_.openFolder(folder, name); }));
  if (!opened.isOpen()) {
    const bool isFolder = opened.error() != ENOTDIR && opened.error() != ELOOP;
    // A folder closed to us can still be removed when it is empty.
    if (isFolder && remove(name, true) >= 0) return;
    note(FileStep::kRemove, isFolder ? -opened.error() : refusal, name);
    return;
  }
  Level level;
  FileInfo info;
  int result = uninterrupted([&] { return calls_.statusOfHandle(opened.get(), info); });
  if (result >= 0) {
    result = uninterrupted([&] {
      level.remaining.clear();
      return calls_.list(opened.get(), level.remaining);
    });
  }
  if (result < 0) {
    note(FileStep::kList, result, name);
    return;
  }
  level.name = std::move(name);
  level.device = info.device;
  level.inode = info.inode;
  levels_.push_back(std::move(level));
  parent_ = std::move(current_);
  current_ = std::move(opened);
}

void RemoveTree::leave() {
  const std::string name = std::move(levels_.back().name);
  levels_.pop_back();
  if (!levels_.empty() && !returnToParent()) {
    levels_.clear();
    return;
  }
  if (levels_.empty()) current_.close();
  const int result = remove(name, true);
  // A folder that keeps an entry which could not be removed is not worth a second mention, and
  // `note` keeps the first one anyway.
  if (result < 0) note(FileStep::kRemove, result, name);
}

bool RemoveTree::returnToParent() {
  if (parent_.isOpen()) {
    current_ = std::move(parent_);
    return true;
  }
  OpenHandle above(calls_, uninterrupted([&] { return calls_.openFolder(current_.get(), ".."); }));
  if (!above.isOpen()) {
    note(FileStep::kRemove, -above.error(), "..");
    return false;
  }
  if (!isLastLevel(above.get())) {
    note(FileStep::kRemove, -ESTALE, "..");
    return false;
  }
  current_ = std::move(above);
  return true;
}

// True when the handle leads to the folder of the last level.
bool RemoveTree::isLastLevel(int handle) {
  FileInfo info;
  const int result = uninterrupted([&] { return calls_.statusOfHandle(handle, info); });
  return result >= 0 && info.device == levels_.back().device && info.inode == levels_.back().inode;
}

void RemoveTree::note(FileStep step, int negatedError, const std::string& name) {
  if (!first_.ok()) return;
  std::string path;
  for (const Level& level : levels_) {
    path += level.name;
    path += '/';
  }
  first_ = FileResult::failure(step, -negatedError, path + name);
}

}  // namespace VelWhiteBoard
