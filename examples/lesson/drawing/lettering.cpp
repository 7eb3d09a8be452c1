#include "drawing/lettering.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace lesson {
namespace {

constexpr double kSmallestFont = 1;
constexpr double kLargestFont = 2000;

// More than fits a page, or the caption of a picture. Records come from other machines, and
// measuring a text takes its length times the number of its words.
constexpr std::size_t kLongestText = 10000;
constexpr std::size_t kLongestCaption = 200;

/// Whether the byte begins a character of UTF-8, or stands behind the last one.
bool isBoundary(const std::string& text, std::size_t at) {
  return at >= text.size() || (static_cast<unsigned char>(text[at]) & 0xC0) != 0x80;
}

/// The first boundary between characters at or behind `at`.
std::size_t boundaryFrom(const std::string& text, std::size_t at) {
  while (!isBoundary(text, at)) ++at;
  return at;
}

void breakLine(cairo_t* context, const std::string& line, double width,
               std::vector<std::string>& lines) {
  std::string current;
  for (std::size_t start = 0; start <= line.size();) {
    const std::size_t end = std::min(line.find(' ', start), line.size());
    const std::string word = line.substr(start, end - start);
    const std::string longer = start == 0 ? word : current + " " + word;
    if (start > 0 && widthOf(context, longer) > width) {
      lines.push_back(std::move(current));
      current = word;
    } else {
      current = longer;
    }
    start = end + 1;
  }
  lines.push_back(std::move(current));
}

}  // namespace

void setFont(cairo_t* context, const std::string& name, double fontSize, double otherwise) {
  const bool isSize = std::isfinite(fontSize) && fontSize > 0;
  cairo_select_font_face(context, name.empty() ? "sans-serif" : name.c_str(),
                         CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(context,
                      std::clamp(isSize ? fontSize : otherwise, kSmallestFont, kLargestFont));
}

double widthOf(cairo_t* context, const std::string& text) {
  cairo_text_extents_t extents{};
  cairo_text_extents(context, text.c_str(), &extents);
  return extents.x_advance;
}

std::vector<std::string> linesOf(cairo_t* context, const std::string& text, double width) {
  std::vector<std::string> lines;
  const std::size_t length = std::min(text.size(), boundaryFrom(text, kLongestText));
  for (std::size_t start = 0; start <= length;) {
    const std::size_t end = std::min(text.find('\n', start), length);
    breakLine(context, text.substr(start, end - start), width, lines);
    start = end + 1;
  }
  return lines;
}

std::string shortened(cairo_t* context, const std::string& text, double width) {
  const bool isShort = text.size() <= kLongestCaption;
  if (isShort && widthOf(context, text) <= width) return text;
  std::size_t start = boundaryFrom(text, isShort ? 0 : text.size() - kLongestCaption);
  while (start < text.size()) {
    const std::string candidate = "…" + text.substr(start);
    if (widthOf(context, candidate) <= width) return candidate;
    start = boundaryFrom(text, start + 1);
  }
  return {};
}

void write(cairo_t* context, const std::string& line, double left, double base) {
  cairo_move_to(context, left, base);
  cairo_show_text(context, line.c_str());
}

}  // namespace lesson
