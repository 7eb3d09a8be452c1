#include "VelWhiteBoard/storage/files/board_files.h"

#include <cerrno>
#include <utility>

#include "VelWhiteBoard/foundation/files/file_system.h"
#include "VelWhiteBoard/foundation/plist/property_list_reader.h"
#include "VelWhiteBoard/foundation/queue/operation_queue.h"

namespace VelWhiteBoard {

namespace {

/// Reads all records that `feedAll` feeds, or none: a list that breaks off is no list.
template <class T, class FeedAll>
ReadList<T> readRecords(const FeedAll& feedAll) {
  ReadList<T> read;
  PropertyListReader reader(T::ownClass(), [&read](std::shared_ptr<Record> record) {
    if (recordCast<T>(record.get()) != nullptr) {
      read.list.push_back(std::static_pointer_cast<T>(std::move(record)));
    }
  });
  const FileResult given = feedAll([&reader](std::string_view block) {
    // The records of a long log take their time; whoever waits for the queue can tell.
    OperationQueue::reportProgress();
    return reader.feed(block);
  });
  const PropertyListResult parsed = reader.finish();
  read.found = stateAfterReading(given);
  if (given.ok() && !parsed.ok()) read.found = FileState::kUnknown;
  if (read.found != FileState::kReadWhole) read.list.clear();
  return read;
}

template <class T>
ReadList<T> readFile(const std::string& path) {
  return readRecords<T>(
      [&path](const BlockConsumer& consume) { return FileSystem::current().read(path, consume); });
}

std::string listFile(const std::string& folder, std::string_view kind, const std::string& pageKey) {
  return appendPathComponent(folder, std::string(kind) + '_' + pageKey + ".plist");
}

}  // namespace

std::string boardFolder(const std::string& path) { return appendPathComponent(path, "whiteBoard"); }

std::string pageListFile(const std::string& folder) {
  return appendPathComponent(folder, "page.plist");
}

std::string wholeListFile(const std::string& folder, const std::string& pageKey) {
  return listFile(folder, "whole", pageKey);
}

std::string snapListFile(const std::string& folder, const std::string& pageKey) {
  return listFile(folder, "snap", pageKey);
}

FileState stateAfterReading(const FileResult& result) {
  if (result.ok()) return FileState::kReadWhole;
  // Whatever else the reason is, there may be a file, and a good one.
  const bool isMissing = result.error == ENOENT || result.error == ENOTDIR;
  return isMissing ? FileState::kAbsent : FileState::kUnknown;
}

ReadList<VelWbBaseVector> readVectors(const std::string& path) {
  return readFile<VelWbBaseVector>(path);
}

ReadList<VelWbBaseVector> vectorsInBytes(std::string_view bytes) {
  return readRecords<VelWbBaseVector>([bytes](const BlockConsumer& consume) {
    for (std::string_view rest = bytes; !rest.empty();) {
      const std::string_view block = rest.substr(0, kFileBlockSize);
      if (!consume(block)) break;
      rest.remove_prefix(block.size());
    }
    return FileResult::success();
  });
}

ReadList<VelWbVecSwitchPage> readPages(const std::string& path) {
  return readFile<VelWbVecSwitchPage>(path);
}

}  // namespace VelWhiteBoard
