#include "VelWhiteBoard/storage/board_files.h"

#include <cerrno>
#include <string_view>
#include <utility>

#include "VelWhiteBoard/foundation/file_system.h"
#include "VelWhiteBoard/foundation/property_list_reader.h"

namespace VelWhiteBoard {

namespace {

/// Reads all records of a file, or none: a file that breaks off is no list.
RecordList readRecords(OpenedFile& file, const std::string& path, const RecordClass& asked,
                       DamagedFiles* damaged) {
  RecordList records;
  PropertyListReader reader(
      asked, [&records](std::shared_ptr<Record> record) { records.push_back(std::move(record)); });
  const FileResult read =
      file.read([&reader](std::string_view block) { return reader.feed(block); });
  const PropertyListResult parsed = reader.finish();
  const bool sound = read.ok() && parsed.ok();
  if (damaged != nullptr) sound ? damaged->remove(path) : damaged->add(path);
  if (!sound) records.clear();
  return records;
}

RecordList loadRecords(const std::string& path, const RecordClass& asked, DamagedFiles* damaged) {
  std::unique_ptr<OpenedFile> file;
  if (!openList(path, file, damaged)) return {};
  return readRecords(*file, path, asked, damaged);
}

VectorList vectorsOf(RecordList records) {
  VectorList vectors;
  vectors.reserve(records.size());
  for (auto& record : records) {
    vectors.push_back(std::static_pointer_cast<VelWbBaseVector>(std::move(record)));
  }
  return vectors;
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

bool openList(const std::string& path, std::unique_ptr<OpenedFile>& file, DamagedFiles* damaged) {
  const FileResult opened = FileSystem::current().open(path, file);
  // Whatever else the reason is, there may be a file, and a good one.
  const bool isMissing = opened.error == ENOENT || opened.error == ENOTDIR;
  if (!opened.ok() && !isMissing && damaged != nullptr) damaged->add(path);
  return opened.ok();
}

VectorList readVectors(OpenedFile& file, const std::string& path, DamagedFiles* damaged) {
  return vectorsOf(readRecords(file, path, VelWbBaseVector::ownClass(), damaged));
}

VectorList loadVectors(const std::string& path, DamagedFiles* damaged) {
  return vectorsOf(loadRecords(path, VelWbBaseVector::ownClass(), damaged));
}

std::vector<std::shared_ptr<VelWbVecSwitchPage>> loadPages(const std::string& file,
                                                           DamagedFiles* damaged) {
  std::vector<std::shared_ptr<VelWbVecSwitchPage>> pages;
  for (auto& record : loadRecords(file, VelWbVecSwitchPage::ownClass(), damaged)) {
    if (recordCast<VelWbVecSwitchPage>(record.get()) == nullptr) continue;
    pages.push_back(std::static_pointer_cast<VelWbVecSwitchPage>(std::move(record)));
  }
  return pages;
}

void writeRecords(const std::string& file, DamagedFiles& damaged,
                  const std::function<void(PropertyListWriter& writer)>& addAll) {
  if (!damaged.setAside(file)) return;
  const FileResult written =
      FileSystem::current().writeAtomically(file, [&addAll](const BlockConsumer& consume) {
        PropertyListWriter writer(consume);
        addAll(writer);
        return writer.finish();
      });
  static_cast<void>(written);
}

}  // namespace VelWhiteBoard
