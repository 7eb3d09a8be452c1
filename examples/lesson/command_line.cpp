#include "command_line.h"

#include <charconv>
#include <string_view>
#include <system_error>

#include <CLI/CLI.hpp>

namespace lesson {
namespace {

constexpr int kMistake = 2;

// Wider pictures are beyond what an image surface holds in reasonable memory.
constexpr int kLargestSide = 8192;

constexpr const char* kFooter = R"(
Every record is handled as a client handles what it receives: a page switch switches the
page, everything else is saved on the current page. At the end a second storage opens the
board's files and every page is compared with what was in memory.

The table tells for each page, called by its board and number: the records in its log, the
entries of its snapshot (what is on the page), the positions of their strokes, the bytes of
its two files, the time that reading and saving its records took, and how it came back.

A board folder that holds pages already is refused, because a second playing would add
the lesson to its own log; --fresh deletes those pages first. The board lies in the
folder "whiteBoard" below DIR, and nothing else in DIR is touched.

Exit status: 0 when the board's files hold the whole lesson; 1 when lines were skipped,
a page came back different or the clients disagree; 2 when the lesson could not be
played: a wrong option, a missing file, a folder that cannot be written, a full disk under
a picture or the report.)";

/// One side of "1280x720"; none when it is no whole number or out of range.
std::optional<double> sideOf(std::string_view text) {
  int side = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, side);
  if (error != std::errc() || rest != end || side < 1 || side > kLargestSide) return std::nullopt;
  return side;
}

std::optional<VelWhiteBoard::Size> sizeOf(std::string_view text) {
  const std::size_t cross = text.find('x');
  if (cross == std::string_view::npos) return std::nullopt;
  const auto width = sideOf(text.substr(0, cross));
  const auto height = sideOf(text.substr(cross + 1));
  if (!width || !height) return std::nullopt;
  return VelWhiteBoard::Size{*width, *height};
}

std::string checkSize(const std::string& text) {
  if (sizeOf(text)) return {};
  return "'" + text + "' is no size; write it as WIDTHxHEIGHT, such as 1280x720, sides up to " +
         std::to_string(kLargestSide);
}

}  // namespace

std::variant<Options, int> parseCommandLine(int argc, const char* const* argv) {
  Options options;
  std::string size = "1280x720";
  CLI::App app("Plays a recorded lesson into a board and proves that the board's files hold it.",
               "lesson");
  // What stands last counts, so that a script's options can be overruled.
  app.option_defaults()->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
  app.add_option("LESSON", options.file, "The lesson, one JSON record a line; - reads stdin")
      ->required();
  app.add_option("--board", options.board,
                 "Where the board is made [a new folder in the temporary directory]")
      ->type_name("DIR");
  app.add_flag("--fresh", options.fresh, "Delete the pages that the board folder already holds");
  app.add_flag("--second-client", options.secondClient,
               "Send the records to two more boards as JSON text, to one of them everything twice, "
               "and compare pages, pictures and files");
  app.add_option("--svg", options.svgFolder, "Draw each page as an SVG file")->type_name("DIR");
  app.add_option("--png", options.pngFolder, "Draw each page as a PNG file")->type_name("DIR");
  app.add_option("--pdf", options.pdfFile, "Draw all pages into one PDF file, a sheet for each")
      ->type_name("FILE");
  app.add_option("--size", size, "Size of the pictures")
      ->type_name("WIDTHxHEIGHT")
      ->check(checkSize)
      ->capture_default_str();
  app.set_version_flag("--version", "lesson " VELWHITEBOARD_VERSION_STRING);
  app.footer(kFooter);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kMistake;
  }
  options.size = *sizeOf(size);
  return options;
}

}  // namespace lesson
