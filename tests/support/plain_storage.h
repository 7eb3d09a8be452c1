/// @file
/// A storage as plain as it can be: dictionaries of lists, linear searches, files that are arrays
/// of dictionaries, one queue.
#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "VelWhiteBoard/foundation/values/value.h"
#include "VelWhiteBoard/vectors/base_vector.h"
#include "VelWhiteBoard/vectors/commands.h"

namespace VelWhiteBoard {

/// A disk: path -> the dictionaries of a list, or anything else for a file that is none.
class PlainDisk {
 public:
  void write(const std::string& path, const Value& contents);
  void remove(const std::string& path);
  void removeFolder(const std::string& folder);
  /// The dictionaries of a list; none when the file is missing or no list.
  Array list(const std::string& path) const;
  bool has(const std::string& path) const { return files_.contains(path); }

  const std::map<std::string, Value>& files() const { return files_; }
  /// Writes past every queue, in place; no part of the log.
  void overwrite(const std::string& path, const Value& contents) { files_[path] = contents; }
  /// "write PATH" and "remove PATH" of files that there were, in order.
  const std::vector<std::string>& log() const { return log_; }

 private:
  std::map<std::string, Value> files_;
  std::vector<std::string> log_;
};

/// Runs every operation at once, unless it is held; then in order when it is let go.
class PlainQueue {
 public:
  /// `writes` are the files that the operation writes.
  void add(std::function<void()> operation, std::vector<std::string> writes = {});
  void hold() { isHeld_ = true; }
  void letGo();
  bool isHeld() const { return isHeld_; }
  /// How many operations wait that write the same file; of the file that most wait for.
  std::size_t mostWaitingForAFile() const;

 private:
  struct Operation {
    std::function<void()> run;
    std::vector<std::string> writes;
  };
  std::deque<Operation> waiting_;
  bool isHeld_ = false;
};

/// The rules of a storage told in the plainest way. Slow and obvious; shares nothing with the
/// storage but the records.
///
/// Fields are the properties. What an operation queues is the dictionary form of the lists at that
/// instant. A read finds the disk as it is: whatever its queue was given has been done, unless the
/// queue is held.
class PlainStorage {
 public:
  using Page = std::shared_ptr<VelWbVecSwitchPage>;
  using Lists = std::map<std::string, VectorList>;

  PlainStorage(PlainDisk& disk, const std::string& path);

  Page currentPage;
  bool ignoreChanges = true;
  bool hasNewChange = false;
  std::string folder;
  std::string pageFile;
  std::optional<std::string> wholeFile;
  std::optional<std::string> snapFile;
  std::vector<Page> pageArray;
  Lists wholeVectorss;
  Lists snapVectorss;
  std::map<std::string, VectorPtr> snapQuery;
  std::chrono::system_clock::time_point lastSaveDate;
  std::shared_ptr<PlainQueue> saveQueue = std::make_shared<PlainQueue>();
  std::vector<std::string> pageCacheList;

  void reload();
  void saveFile(bool force);
  void saveVector(const VectorPtr& vector);
  void appendVectors(const VectorList& vectors, const Page& page);
  bool hasVectorsWithPage(const VelWbVecSwitchPage& page) const;
  Page latestPage() const { return pageArray.empty() ? nullptr : pageArray.back(); }
  VectorList switchPage(const Page& page);
  VectorList snapWithPage(const VelWbVecSwitchPage& page) const;
  void clear();
  void clearPage(const VelWbVecSwitchPage& page);

 private:
  std::string wholePath(const std::string& key) const;
  std::string snapPath(const std::string& key) const;
  VectorList load(const std::string& path) const;
  void continueEntry(const VectorPtr& entry, const VectorPtr& vector, VectorList& snap);
  void applyNew(const VectorPtr& vector, VectorList& snap);
  static void applyAppended(const VectorPtr& vector, VectorList& snap);

  PlainDisk& disk_;
};

}  // namespace VelWhiteBoard
