// Pages as pictures: files for people, pixels to be compared.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace lesson {

/// Draws a page into a file. Both kinds come from one and the same drawing.
/// @throws CannotRun when the file cannot be written.
void writeSvg(const std::string& path, const VelWhiteBoard::VectorList& snapshot,
              VelWhiteBoard::Size size);
void writePng(const std::string& path, const VelWhiteBoard::VectorList& snapshot,
              VelWhiteBoard::Size size);

/// A PDF file with a sheet for every page, each drawn as in the other kinds. It is written when
/// `finish` is called; without that an earlier file stays.
class PdfFile {
 public:
  PdfFile(const std::string& path, VelWhiteBoard::Size size);
  ~PdfFile();
  PdfFile(const PdfFile&) = delete;
  PdfFile& operator=(const PdfFile&) = delete;

  /// @throws CannotRun when there is no memory for the drawing, or no room for the file.
  void add(const VelWhiteBoard::VectorList& snapshot);
  /// @throws CannotRun when the file cannot be written.
  void finish();

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

/// The pixels of the page's picture, four bytes each, line by line.
std::vector<std::byte> pixelsOf(const VelWhiteBoard::VectorList& snapshot,
                                VelWhiteBoard::Size size);

}  // namespace lesson
