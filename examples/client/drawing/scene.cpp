#include "drawing/scene.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace whiteboard {

namespace vwb = VelWhiteBoard;

using Kind = vwb::EntryChange::Kind;

void Scene::setSize(vwb::Size size) {
  size_ = size;
  stale_ = {QRectF(0, 0, size.width, size.height)};
}

void Scene::show(const vwb::VectorList& entries, const OwnInk& ink, const std::string& page) {
  shapes_.clear();
  byEntry_.clear();
  ink_.clear();
  isCleared_ = ink.isCleared(page);
  for (const vwb::VectorPtr& entry : entries) add(entry);
  for (const auto& [ID, own] : ink.inks()) takeInk(ID, 0, ink, page);
  setSize(size_);
}

bool Scene::isHidden(const Shape& shape) const {
  if (isCleared_) return true;
  return !ink_.empty() && shape.vector()->ID && ink_.contains(*shape.vector()->ID);
}

void Scene::addStale(const QRectF& rect) {
  if (!rect.isEmpty()) stale_.push_back(rect);
}

void Scene::addStale(const Shape& shape) {
  if (!isHidden(shape)) addStale(shape.bounds(size_));
}

Shape* Scene::shapeOf(const vwb::VectorPtr& entry) const {
  const auto found = byEntry_.find(entry.get());
  return found == byEntry_.end() ? nullptr : found->second;
}

void Scene::add(const vwb::VectorPtr& entry) {
  shapes_.push_back(std::make_unique<Shape>(entry));
  byEntry_[entry.get()] = shapes_.back().get();
}

Scene::Shapes::iterator Scene::find(const vwb::VectorPtr& entry, bool isLast) {
  const auto isEntry = [&](const auto& shape) { return shape->vector() == entry; };
  if (!isLast) return std::find_if(shapes_.begin(), shapes_.end(), isEntry);
  const auto last = std::find_if(shapes_.rbegin(), shapes_.rend(), isEntry);
  return last == shapes_.rend() ? shapes_.end() : std::prev(last.base());
}

void Scene::remove(Shapes::iterator shape) {
  if (shape == shapes_.end()) return;
  const vwb::VectorPtr entry = (*shape)->vector();
  addStale(**shape);
  shapes_.erase(shape);
  byEntry_.erase(entry.get());
  if (const auto other = find(entry, false); other != shapes_.end()) {
    byEntry_[entry.get()] = other->get();
  }
}

/// An entry that stands twice has changed in both places.
void Scene::updateAll(const vwb::VectorPtr& entry, std::size_t firstNew) {
  for (const auto& each : shapes_) {
    if (each->vector() == entry) each->update(firstNew);
  }
}

void Scene::take(const vwb::EntryChange& change) {
  if (change.kind == Kind::kCleared) {
    for (const auto& shape : shapes_) addStale(*shape);
    shapes_.clear();
    byEntry_.clear();
    return;
  }
  if (change.kind == Kind::kAdded) {
    add(change.entry);
    return addStale(*shapes_.back());
  }
  if (change.kind == Kind::kRemoved) return remove(find(change.entry, false));
  if (change.kind == Kind::kRemovedTop) return remove(find(change.entry, true));

  Shape* const shape = shapeOf(change.entry);
  if (shape == nullptr) return;
  if (change.kind == Kind::kExtended) {
    if (byEntry_.size() == shapes_.size()) {
      shape->update(change.firstNew);
    } else {
      updateAll(change.entry, change.firstNew);
    }
    if (!isHidden(*shape)) addStale(shape->boundsFrom(change.firstNew, size_));
    return;
  }
  addStale(*shape);
  if (change.kind == Kind::kRaised) {
    const auto place = find(change.entry, true);
    std::rotate(place, std::next(place), shapes_.end());
  }
  updateAll(change.entry, 0);
  addStale(*shape);
}

void Scene::takeInk(const std::string& ID, std::size_t firstNew, const OwnInk& ink,
                    const std::string& page) {
  const OwnInk::Ink* own = ink.find(ID);
  if (own != nullptr && own->page != page) own = nullptr;
  const auto shown = ink_.find(ID);
  if (shown != ink_.end() && shown->second && own != nullptr &&
      own->shown == shown->second->vector()) {
    Shape& shape = *shown->second;
    if (firstNew == 0) addStale(shape.bounds(size_));
    shape.update(firstNew);
    return addStale(firstNew == 0 ? shape.bounds(size_) : shape.boundsFrom(firstNew, size_));
  }
  if (shown != ink_.end() && shown->second) addStale(shown->second->bounds(size_));
  // The entry comes out, or is covered.
  for (const auto& shape : shapes_) {
    if (shape->vector()->ID == ID) addStale(shape->bounds(size_));
  }
  ink_.erase(ID);
  if (own == nullptr) return;
  auto& shape = ink_[ID];
  if (!own->shown) return;
  shape = std::make_unique<Shape>(own->shown);
  addStale(shape->bounds(size_));
}

std::vector<QRectF> Scene::takeStale() { return std::exchange(stale_, {}); }

void Scene::paint(QPainter& painter, const QRectF& part) const {
  const auto draw = [&](const Shape& shape) {
    if (shape.bounds(size_).intersects(part)) shape.paint(painter, size_, part);
  };
  for (const auto& shape : shapes_) {
    if (!isHidden(*shape)) draw(*shape);
  }
  for (const auto& [ID, shape] : ink_) {
    if (shape) draw(*shape);
  }
}

/// Whether the visitor answers true for a shape, from the uppermost on.
template <class Visitor>
bool Scene::anyFromTop(const Visitor& visitor) const {
  for (auto each = ink_.rbegin(); each != ink_.rend(); ++each) {
    if (each->second && visitor(*each->second)) return true;
  }
  return std::any_of(shapes_.rbegin(), shapes_.rend(),
                     [&](const auto& shape) { return !isHidden(*shape) && visitor(*shape); });
}

const Shape* Scene::at(QPointF point, double tolerance) const {
  const Shape* found = nullptr;
  anyFromTop([&](const Shape& shape) {
    if (shape.hits(point, tolerance, size_)) found = &shape;
    return found != nullptr;
  });
  return found;
}

const Shape* Scene::find(const std::string& ID) const {
  const Shape* found = nullptr;
  anyFromTop([&](const Shape& shape) {
    if (shape.vector()->ID == ID) found = &shape;
    return found != nullptr;
  });
  return found;
}

const Shape* Scene::lens() const {
  // It never stays below another entry.
  return !shapes_.empty() && !isCleared_ && shapes_.back()->isMagnifier() ? shapes_.back().get()
                                                                          : nullptr;
}

}  // namespace whiteboard
