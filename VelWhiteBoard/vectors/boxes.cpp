#include "VelWhiteBoard/vectors/boxes.h"

#include <optional>
#include <string>
#include <utility>

#include "VelWhiteBoard/foundation/records/property_table.h"

namespace VelWhiteBoard {

namespace {

/// A coordinate of an update counts as given above this.
constexpr double kPositionNotGiven = -10.0;

// Merging copies every string first, then runs the rule of the base, and only then changes fields
// of its own, which cannot throw. So an edit is made whole or not at all.

using Text = std::optional<std::string>;

/// What an update gives for a string that counts as given when it is not empty; absent otherwise.
Text nonEmpty(const Text& update) { return update && !update->empty() ? update : std::nullopt; }

/// Takes over a string that is given.
void take(Text& field, Text given) noexcept {
  if (given) field = std::move(given);
}

}  // namespace

const RecordClass& VelWbVecSquare::ownClass() {
  static const RecordClass own =
      makeRecordClass<VelWbVecSquare>("VelWbVecSquare", &VelWbVecPoint::ownClass());
  return own;
}

void VelWbVecSquare::merge(const VelWbBaseVector& update) {
  if (!isSameStroke(update)) return;
  if (const auto* point = recordCast<const VelWbVecPoint>(update)) {
    if (point->x > kPositionNotGiven && point->y > kPositionNotGiven) {
      x = point->x;
      y = point->y;
    }
  }
  if (const auto* box = recordCast<const VelWbVecSquare>(update)) {
    if (box->w > 0.0 && box->h > 0.0) {
      w = box->w;
      h = box->h;
    }
  }
  ts = update.ts;
}

std::shared_ptr<Record> VelWbVecSquare::makeMutableCopy() const {
  auto copy = std::make_shared<VelWbVecSquare>(*this);
  copy->ps = 0;
  return copy;
}

const RecordClass& VelWbVecFile::ownClass() {
  static const RecordClass own =
      makeRecordClass<VelWbVecFile>("VelWbVecFile", &VelWbVecSquare::ownClass());
  return own;
}

void VelWbVecFile::merge(const VelWbBaseVector& update) {
  if (!isSameStroke(update)) return;
  const auto* file = recordCast<const VelWbVecFile>(update);
  if (file == nullptr) return VelWbVecSquare::merge(update);
  Text newURL = nonEmpty(file->url);
  VelWbVecSquare::merge(update);
  take(url, std::move(newURL));
  undeletable = file->undeletable;
}

std::shared_ptr<Record> VelWbVecFile::makeMutableCopy() const {
  auto copy = std::make_shared<VelWbVecFile>(*this);
  copy->ps = 0;
  return copy;
}

const RecordClass& VelWbVecVideo::ownClass() {
  static const RecordClass own =
      makeRecordClass<VelWbVecVideo>("VelWbVecVideo", &VelWbVecFile::ownClass());
  return own;
}

void VelWbVecVideo::merge(const VelWbBaseVector& update) {
  if (!isSameStroke(update)) return;
  const auto* video = recordCast<const VelWbVecVideo>(update);
  if (video == nullptr) return VelWbVecFile::merge(update);
  Text newTitle = nonEmpty(video->title);
  Text newStatus = nonEmpty(video->status);
  Text newKind = video->kind;
  Text newCover = video->cover;
  // `url` is taken by the rule for files, under the same condition.
  VelWbVecFile::merge(update);
  take(title, std::move(newTitle));
  if (video->owner >= 1) owner = video->owner;
  if (video->manualPlayTs >= 0) manualPlayTs = video->manualPlayTs;
  autoPlayTs = video->autoPlayTs;
  take(status, std::move(newStatus));
  take(kind, std::move(newKind));
  take(cover, std::move(newCover));
}

std::shared_ptr<Record> VelWbVecVideo::makeMutableCopy() const {
  auto copy = std::make_shared<VelWbVecVideo>(*this);
  copy->ps = 0;
  copy->path.reset();
  copy->undeletable = false;
  return copy;
}

const RecordClass& VelWbVecText::ownClass() {
  static const RecordClass own =
      makeRecordClass<VelWbVecText>("VelWbVecText", &VelWbVecSquare::ownClass());
  return own;
}

void VelWbVecText::merge(const VelWbBaseVector& update) {
  if (!isSameStroke(update)) return;
  const auto* other = recordCast<const VelWbVecText>(update);
  if (other == nullptr) return VelWbVecSquare::merge(update);
  Text newColor = nonEmpty(other->color);
  Text newBgColor = other->bgColor;
  Text newText = nonEmpty(other->text);
  Text newFontName = nonEmpty(other->fontName);
  VelWbVecSquare::merge(update);
  take(color, std::move(newColor));
  take(bgColor, std::move(newBgColor));
  take(text, std::move(newText));
  if (other->fontSize > 0.0) fontSize = other->fontSize;
  take(fontName, std::move(newFontName));
}

double VelWbVecText::fontSizeWith(Size size) const {
  if (ps < 1) return fontSize;
  return size.width * fontSize / static_cast<double>(ps);
}

std::shared_ptr<Record> VelWbVecText::makeMutableCopy() const {
  return std::make_shared<VelWbVecText>(*this);
}

}  // namespace VelWhiteBoard
