// What the benchmarks work on: made up from a formula, so that every run sees the same.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "VelWhiteBoard/VelWhiteBoard.h"

namespace benchmarks {

using namespace VelWhiteBoard;

/// JSON text of piece `index` of one stroke: one position, ten milliseconds after the piece before.
std::string pieceText(const std::string& identifier, std::size_t index);

/// The texts of a stroke of `count` pieces.
std::vector<std::string> strokeTexts(const std::string& identifier, std::size_t count);

/// A lesson page as it arrives: strokes of four users interleaved, boxes moved again and again,
/// removes.
std::vector<std::string> lessonTexts(std::size_t strokes, std::size_t piecesOfAStroke,
                                     std::size_t boxes, std::size_t movesOfABox,
                                     std::size_t removes);

/// A page switch.
std::shared_ptr<VelWbVecSwitchPage> page(std::uint64_t number);

/// A folder of its own that goes with the object.
class Folder {
 public:
  Folder();
  ~Folder();
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  std::string path() const { return path_.string(); }

 private:
  std::filesystem::path path_;
};

/// A storage that records, on page 1 of a folder.
std::shared_ptr<VWBVectorStorage> recordingStorage(const Folder& folder);

}  // namespace benchmarks
