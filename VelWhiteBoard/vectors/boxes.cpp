#include "VelWhiteBoard/vectors/boxes.h"

#include "VelWhiteBoard/foundation/property_table.h"

namespace VelWhiteBoard {

namespace {

/// A coordinate of an update counts as given above this.
constexpr double kPositionNotGiven = -10.0;

/// Takes over a text that is given: present and not empty.
void takeNonEmpty(std::optional<std::string>& field, const std::optional<std::string>& update) {
  if (update && !update->empty()) field = update;
}

/// Takes over a text that is given: present, empty or not.
void takePresent(std::optional<std::string>& field, const std::optional<std::string>& update) {
  if (update) field = update;
}

}  // namespace

const RecordClass& VelWbVecSquare::ownClass() {
  static const RecordClass own = makeRecordClass<VelWbVecSquare>(
      "VelWbVecSquare", &VelWbVecPoint::ownClass(), &vectorClassForDictionary);
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
  static const RecordClass own = makeRecordClass<VelWbVecFile>(
      "VelWbVecFile", &VelWbVecSquare::ownClass(), &vectorClassForDictionary);
  return own;
}

void VelWbVecFile::merge(const VelWbBaseVector& update) {
  VelWbVecSquare::merge(update);
  const auto* file = recordCast<const VelWbVecFile>(update);
  if (file == nullptr || !isSameStroke(update)) return;
  takeNonEmpty(url, file->url);
  undeletable = file->undeletable;
}

std::shared_ptr<Record> VelWbVecFile::makeMutableCopy() const {
  auto copy = std::make_shared<VelWbVecFile>(*this);
  copy->ps = 0;
  return copy;
}

const RecordClass& VelWbVecVideo::ownClass() {
  static const RecordClass own = makeRecordClass<VelWbVecVideo>(
      "VelWbVecVideo", &VelWbVecFile::ownClass(), &vectorClassForDictionary);
  return own;
}

void VelWbVecVideo::merge(const VelWbBaseVector& update) {
  VelWbVecFile::merge(update);
  const auto* video = recordCast<const VelWbVecVideo>(update);
  if (video == nullptr || !isSameStroke(update)) return;
  // `url` has been taken by the rule for files, under the same condition.
  takeNonEmpty(title, video->title);
  if (video->owner >= 1) owner = video->owner;
  if (video->manualPlayTs >= 0) manualPlayTs = video->manualPlayTs;
  autoPlayTs = video->autoPlayTs;
  takeNonEmpty(status, video->status);
  takePresent(kind, video->kind);
  takePresent(cover, video->cover);
}

std::shared_ptr<Record> VelWbVecVideo::makeMutableCopy() const {
  auto copy = std::make_shared<VelWbVecVideo>(*this);
  copy->ps = 0;
  copy->path.reset();
  copy->undeletable = false;
  return copy;
}

const RecordClass& VelWbVecText::ownClass() {
  static const RecordClass own = makeRecordClass<VelWbVecText>(
      "VelWbVecText", &VelWbVecSquare::ownClass(), &vectorClassForDictionary);
  return own;
}

void VelWbVecText::merge(const VelWbBaseVector& update) {
  VelWbVecSquare::merge(update);
  const auto* other = recordCast<const VelWbVecText>(update);
  if (other == nullptr || !isSameStroke(update)) return;
  takeNonEmpty(color, other->color);
  takePresent(bgColor, other->bgColor);
  takeNonEmpty(text, other->text);
  if (other->fontSize > 0.0) fontSize = other->fontSize;
  takeNonEmpty(fontName, other->fontName);
}

std::shared_ptr<Record> VelWbVecText::makeMutableCopy() const {
  return std::make_shared<VelWbVecText>(*this);
}

}  // namespace VelWhiteBoard
