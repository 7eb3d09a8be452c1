#include "drawing/pictures.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <ios>
#include <system_error>

#include <cairo-pdf.h>
#include <cairo-svg.h>
#include <cairo.h>

#include "cannot_run.h"
#include "drawing/canvas.h"
#include "drawing/page_drawing.h"

namespace lesson {

namespace vwb = VelWhiteBoard;

namespace {

// Erased vectors may become small pictures inside an SVG or PDF file: this many pixels an inch,
// twice those of the page.
constexpr double kPixelsPerInch = 144;

void require(cairo_status_t status, const std::string& path) {
  if (status == CAIRO_STATUS_SUCCESS) return;
  throw CannotRun("cannot write " + path + ": " + cairo_status_to_string(status));
}

cairo_status_t draw(cairo_surface_t* surface, const vwb::VectorList& snapshot, vwb::Size size) {
  const ContextPtr context(cairo_create(surface));
  drawPage(context.get(), snapshot, size);
  return cairo_status(context.get());
}

}  // namespace

/// A picture's file, which gets its name once it is whole: a full disk leaves the picture that was
/// there, or none.
class PictureFile {
 public:
  explicit PictureFile(const std::string& path) : path_(path), temporary_(path + ".tmp") {}
  ~PictureFile() {
    std::error_code ignored;
    if (!isWhole_) std::filesystem::remove(temporary_, ignored);
  }
  PictureFile(const PictureFile&) = delete;
  PictureFile& operator=(const PictureFile&) = delete;

  /// Where to write.
  const char* temporary() const { return temporary_.c_str(); }

  void finish(cairo_status_t status) {
    require(status, path_);
    std::error_code error;
    std::filesystem::rename(temporary_, path_, error);
    if (error) throw CannotRun("cannot write " + path_ + ": " + error.message());
    isWhole_ = true;
  }

 private:
  std::string path_;
  std::string temporary_;
  bool isWhole_ = false;
};

namespace {

SurfacePtr pictureOf(const vwb::VectorList& snapshot, vwb::Size size) {
  SurfacePtr surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(size.width),
                                                static_cast<int>(size.height)));
  require(draw(surface.get(), snapshot, size), "a picture");
  cairo_surface_flush(surface.get());
  return surface;
}

}  // namespace

void writeSvg(const std::string& path, const vwb::VectorList& snapshot, vwb::Size size) {
  PictureFile file(path);
  const SurfacePtr surface(cairo_svg_surface_create(file.temporary(), size.width, size.height));
  cairo_svg_surface_set_document_unit(surface.get(), CAIRO_SVG_UNIT_PX);
  cairo_surface_set_fallback_resolution(surface.get(), kPixelsPerInch, kPixelsPerInch);
  require(draw(surface.get(), snapshot, size), path);
  cairo_surface_finish(surface.get());  // writes the file, and tells whether that worked
  file.finish(cairo_surface_status(surface.get()));
}

// cairo 1.16 does not tell that a PDF file could not be written, so the bytes come through here.
struct PdfFile::Parts {
  Parts(const std::string& path, vwb::Size pageSize)
      : name(path),
        size(pageSize),
        file(path),
        bytes(file.temporary(), std::ios::binary),
        surface(cairo_pdf_surface_create_for_stream(takeBytes, this, size.width, size.height)) {
    require(bytes ? CAIRO_STATUS_SUCCESS : CAIRO_STATUS_WRITE_ERROR, name);
  }

  static cairo_status_t takeBytes(void* parts, const unsigned char* data, unsigned int length) {
    std::ofstream& out = static_cast<Parts*>(parts)->bytes;
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(length));
    return out ? CAIRO_STATUS_SUCCESS : CAIRO_STATUS_WRITE_ERROR;
  }

  std::string name;
  vwb::Size size;
  PictureFile file;
  std::ofstream bytes;
  SurfacePtr surface;
};

PdfFile::PdfFile(const std::string& path, vwb::Size size)
    : parts_(std::make_unique<Parts>(path, size)) {
  cairo_surface_set_fallback_resolution(parts_->surface.get(), kPixelsPerInch, kPixelsPerInch);
}

PdfFile::~PdfFile() = default;

void PdfFile::add(const vwb::VectorList& snapshot) {
  require(draw(parts_->surface.get(), snapshot, parts_->size), parts_->name);
  cairo_surface_show_page(parts_->surface.get());
}

void PdfFile::finish() {
  cairo_surface_finish(parts_->surface.get());
  parts_->bytes.close();
  require(parts_->bytes ? CAIRO_STATUS_SUCCESS : CAIRO_STATUS_WRITE_ERROR, parts_->name);
  parts_->file.finish(cairo_surface_status(parts_->surface.get()));
}

void writePng(const std::string& path, const vwb::VectorList& snapshot, vwb::Size size) {
  PictureFile file(path);
  file.finish(cairo_surface_write_to_png(pictureOf(snapshot, size).get(), file.temporary()));
}

std::vector<std::byte> pixelsOf(const vwb::VectorList& snapshot, vwb::Size size) {
  const SurfacePtr surface = pictureOf(snapshot, size);
  const auto stride = static_cast<std::size_t>(cairo_image_surface_get_stride(surface.get()));
  const auto height = static_cast<std::size_t>(cairo_image_surface_get_height(surface.get()));
  std::vector<std::byte> pixels(stride * height);
  std::memcpy(pixels.data(), cairo_image_surface_get_data(surface.get()), pixels.size());
  return pixels;
}

}  // namespace lesson
