#include "benchmarks/written_board.h"

#include <fstream>
#include <iterator>

#include <expat.h>

namespace benchmarks {

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

WrittenBoard::WrittenBoard(std::size_t strokes, std::size_t piecesOfAStroke)
    : storage_(recordingStorage(folder_)) {
  saveTexts(lessonTexts(strokes, piecesOfAStroke, 0, 0, 0), *storage_);
  storage_->saveFile(true);
  storage_->saveQueue()->waitUntilAllOperationsAreFinished();
}

bool parseWithEmptyHandlers(const std::string& path) {
  constexpr int kBlock = 64 * 1024;
  std::ifstream file(path, std::ios::binary);
  if (!file) return false;
  XML_Parser parser = XML_ParserCreate(nullptr);
  XML_SetElementHandler(
      parser, [](void*, const XML_Char*, const XML_Char**) {}, [](void*, const XML_Char*) {});
  XML_SetCharacterDataHandler(parser, [](void*, const XML_Char*, int) {});
  XML_Status status = XML_STATUS_OK;
  while (status == XML_STATUS_OK && file) {
    file.read(static_cast<char*>(XML_GetBuffer(parser, kBlock)), kBlock);
    const auto length = static_cast<int>(file.gcount());
    status = XML_ParseBuffer(parser, length, length < kBlock);
  }
  XML_ParserFree(parser);
  return status == XML_STATUS_OK;
}

}  // namespace benchmarks
