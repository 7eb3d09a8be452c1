// Pages as pictures: files for people, pixels to be compared.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <cstddef>
#include <string>
#include <vector>

namespace lesson {

/// Draws a page into a file. Both kinds come from one and the same drawing.
/// @throws CannotRun when the file cannot be written.
void writeSvg(const std::string& path, const VelWhiteBoard::VectorList& snapshot,
              VelWhiteBoard::Size size);
void writePng(const std::string& path, const VelWhiteBoard::VectorList& snapshot,
              VelWhiteBoard::Size size);

/// The pixels of the page's picture, four bytes each, line by line.
std::vector<std::byte> pixelsOf(const VelWhiteBoard::VectorList& snapshot,
                                VelWhiteBoard::Size size);

}  // namespace lesson
