// A board whose first page is on the disk.
#pragma once

#include <memory>
#include <string>

#include "benchmarks/workload.h"

namespace benchmarks {

std::string readFile(const std::string& path);

/// A board whose page 1 has strokes that arrived in pieces of one position, written.
class WrittenBoard {
 public:
  WrittenBoard(std::size_t strokes, std::size_t piecesOfAStroke);

  const Folder& folder() const { return folder_; }
  std::string snapFile() const { return *storage_->snapFile(); }
  std::string wholeFile() const { return *storage_->wholeFile(); }
  VWBVectorStorage& storage() { return *storage_; }

 private:
  Folder folder_;
  std::shared_ptr<VWBVectorStorage> storage_;
};

/// Parses a file block by block, as the property list reader does, but does nothing with what is
/// found. False when it is no XML.
bool parseWithEmptyHandlers(const std::string& path);

}  // namespace benchmarks
