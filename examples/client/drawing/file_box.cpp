#include "drawing/file_box.h"

#include <cmath>
#include <functional>

#include "drawing/canvas.h"
#include "drawing/signs.h"

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

// Points of the base board.
constexpr double kCaptionSize = 4.5;
constexpr double kCaptionMargin = 2;

const vwb::VelWbVecVideo* mediaOf(const vwb::VelWbVecFile& file) {
  return vwb::recordCast<const vwb::VelWbVecVideo>(&file);
}

std::string captionOf(const vwb::VelWbVecFile& file) {
  const vwb::VelWbVecVideo* const media = mediaOf(file);
  if (media != nullptr && !media->title.value_or("").empty()) return *media->title;
  const std::string url = file.url.value_or("");
  return url.starts_with("data:") ? url.substr(0, url.find_first_of(";,")) : url;
}

/// The address of what may be shown.
const std::optional<std::string>& contentOf(const vwb::VelWbVecFile& file) {
  const vwb::VelWbVecVideo* const media = mediaOf(file);
  return media == nullptr ? file.url : media->cover;
}

}  // namespace

void FileBox::update(std::size_t firstNew) {
  static_cast<void>(firstNew);
  const std::optional<std::string>& url = contentOf(file_);
  const std::string_view address = url ? std::string_view(*url) : std::string_view();
  const std::pair now(address.size(), std::hash<std::string_view>()(address));
  if (decoded_ == now) return;
  decoded_.reset();
  picture_.reset();
}

const Picture* FileBox::picture() const {
  if (!decoded_) {
    const std::string url = contentOf(file_).value_or("");
    decoded_.emplace(url.size(), std::hash<std::string_view>()(url));
    picture_ = Picture::fromUrl(url);
  }
  return picture_.get();
}

std::optional<QRectF> FileBox::placeOn(vwb::Size board) const {
  const auto box = boxOf(file_, board);
  if (!box || box->width() <= 0 || box->height() <= 0) return std::nullopt;
  return box;
}

/// Turns about the middle of the box.
QTransform FileBox::turningOf(const QRectF& box) const {
  if (!std::isfinite(file_.rotation) || file_.rotation == 0) return {};
  const QPointF middle = box.center();
  QTransform turning = QTransform::fromTranslate(middle.x(), middle.y());
  turning.rotate(std::fmod(file_.rotation, 360.0));
  return turning.translate(-middle.x(), -middle.y());
}

QRectF FileBox::inked(vwb::Size board) const {
  const auto box = placeOn(board);
  if (!box) return {};
  const double half = frameWidth(board) / 2;
  return turningOf(*box).mapRect(box->adjusted(-half, -half, half, half));
}

void FileBox::paint(QPainter& painter, vwb::Size board, const QRectF& part) const {
  const auto box = placeOn(board);
  if (!box) return;
  if (const Picture* const content = picture()) {
    content->paint(painter, *box, turningOf(*box), part);
  } else {
    painter.setTransform(turningOf(*box), true);
    paintPlaceholder(painter, *box, board);
  }
}

void FileBox::paintPlaceholder(QPainter& painter, const QRectF& box, vwb::Size board) const {
  paintEmptyBox(painter, box, board);
  const vwb::VelWbVecVideo* const media = mediaOf(file_);
  const bool isSound = media != nullptr && media->kind == vwb::VelWBVectorStrKindAudio;
  paintSign(painter, media == nullptr ? Sign::kImage : isSound ? Sign::kSound : Sign::kPlay, box);
  paintCaption(painter, box, board);
}

void FileBox::paintCaption(QPainter& painter, const QRectF& box, vwb::Size board) const {
  if (!lettering_) lettering_.emplace("");
  const double size = onBoard(kCaptionSize, board);
  const double margin = onBoard(kCaptionMargin, board);
  const QString line = lettering_->shortened(captionOf(file_), (box.width() - 2 * margin) / size);
  lettering_->write(painter, line, box.bottomLeft() + QPointF(margin, -margin), size,
                    captionColour());
}

bool FileBox::hits(QPointF at, double tolerance, vwb::Size board) const {
  const auto box = placeOn(board);
  if (!box) return false;
  const QPointF straight = turningOf(*box).inverted().map(at);
  return box->adjusted(-tolerance, -tolerance, tolerance, tolerance).contains(straight);
}

}  // namespace whiteboard
