#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/disk_file_system.h"
#include "VelWhiteBoard/storage/files/board_files.h"
#include "VelWhiteBoard/storage/vector_storage.h"

#include "tests/reliability/generations.h"
#include "tests/support/faulty_calls.h"
#include "tests/support/storage_story.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/write_all.h"

namespace VelWhiteBoard {

using Names = std::vector<std::string>;
using Strings = std::set<std::string>;

/// A board of two pages with a line each, "old 1" and "old 2", on a disk that can be made to fail.
class DamagedBoard {
 public:
  DamagedBoard() {
    open();
    for (std::uint64_t number = 1; number <= 2; ++number) {
      show(number);
      storage_->saveVector(line("old " + std::to_string(number), 1, 2, 3));
    }
    save();
    storage_.reset();
  }

  VWBVectorStorage* operator->() const { return storage_.get(); }
  FaultyCalls& calls() { return calls_; }
  std::string at(const std::string& name) const { return boardFolder(parent_.path()) + "/" + name; }

  void open() {
    storage_ = VWBVectorStorage::initWithPath(parent_.path());
    storage_->setIgnoreChanges(false);
  }
  Tale show(std::uint64_t number) { return tell(storage_->switchPage(page(1, number, ++time_))); }
  void draw(const std::string& id) { storage_->saveVector(line(id, 1, 2, 3)); }
  void save() {
    storage_->saveFile(true);
    settle();
  }
  void settle() { storage_->saveQueue()->waitUntilAllOperationsAreFinished(); }

  std::string contents(const std::string& name) {
    FileBytes bytes;
    const FileResult read = disk_.readBytes(at(name), bytes);
    return read ? std::string(bytes.view()) : "(" + read.describe() + ")";
  }
  void put(const std::string& name, const std::string& text) {
    const FileResult written = writeAll(disk_, at(name), text);
    ASSERT_TRUE(written) << written.describe();
  }
  Names setAside() const { return namesIn(boardFolder(parent_.path()), ".damaged"); }
  std::set<std::string> identifiers(const std::string& name) const {
    return identifiersIn(at(name));
  }

 private:
  TemporaryFolder parent_{TemporaryFolder::Volume::kMemory};
  FaultyCalls calls_;
  DiskFileSystem disk_{calls_};
  ScopedFileSystem scope_{disk_};
  std::shared_ptr<VWBVectorStorage> storage_;
  double time_ = 0;
};

}  // namespace VelWhiteBoard
