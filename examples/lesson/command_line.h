// What the user asks for.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <optional>
#include <string>
#include <variant>

namespace lesson {

struct Options {
  /// The lesson's file; "-" is standard input.
  std::string file;
  /// The folder in which the board is made; none: a new one below the temporary directory.
  std::optional<std::string> board;
  /// Whether pages that the board folder already holds are deleted first.
  bool fresh = false;
  /// Whether two more clients receive the lesson and are compared with the first.
  bool secondClient = false;
  /// Folders for one picture a page; none: no such pictures.
  std::optional<std::string> svgFolder;
  std::optional<std::string> pngFolder;
  /// The file for a sheet a page; none: no such file.
  std::optional<std::string> pdfFile;
  /// The size of the board as it is shown and drawn, in view points.
  VelWhiteBoard::Size size{1280, 720};
};

/// The options, or the status with which the program ends at once: 0 after `--help`, 2 after a
/// mistake, which has been explained on stderr.
std::variant<Options, int> parseCommandLine(int argc, const char* const* argv);

}  // namespace lesson
