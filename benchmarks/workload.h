// What the benchmarks work on: made up from a formula, so that every run sees the same.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "VelWhiteBoard/VelWhiteBoard.h"

namespace benchmarks {

using namespace VelWhiteBoard;

inline constexpr double kLessonStart = 1700000000.0;

/// After this the next vector makes a save due, which comes more than 20 seconds after the last.
inline constexpr std::chrono::seconds kBeyondSaveInterval{21};

/// JSON text of a piece of one position.
std::string lineText(const std::string& identifier, double x, double y, double time);

/// JSON text of a box.
std::string boxText(const std::string& identifier, double x, double y, double time);

/// JSON text of piece `index` of one stroke: one position, ten milliseconds after the piece before.
std::string pieceText(const std::string& identifier, std::size_t index);

/// The texts of a stroke of `count` pieces.
std::vector<std::string> strokeTexts(const std::string& identifier, std::size_t count);

/// A lesson page as it arrives: strokes of four users interleaved, boxes moved again and again,
/// removes.
std::vector<std::string> lessonTexts(std::size_t strokes, std::size_t piecesOfAStroke,
                                     std::size_t boxes, std::size_t movesOfABox,
                                     std::size_t removes);

/// The identifier of a stroke of such a page.
std::string lessonStroke(std::size_t number);
/// The identifier of a box of such a page.
std::string lessonBox(std::size_t number);

/// The records of JSON texts.
VectorList decoded(const std::vector<std::string>& texts);

/// Decodes texts and saves what they hold.
void saveTexts(const std::vector<std::string>& texts, VWBVectorStorage& storage);

/// A page switch.
std::shared_ptr<VelWbVecSwitchPage> page(std::uint64_t number);

/// A folder whose files are in memory, where the system has one: syncing them costs nothing.
std::filesystem::path parentInMemory();

/// A folder of its own that goes with the object.
class Folder {
 public:
  explicit Folder(const std::filesystem::path& parent = std::filesystem::temp_directory_path());
  ~Folder();
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  std::string path() const { return path_.string(); }

 private:
  std::filesystem::path path_;
};

/// A storage that records, on page 1 of a folder; its queue is idle.
std::shared_ptr<VWBVectorStorage> recordingStorage(const Folder& folder);

}  // namespace benchmarks
