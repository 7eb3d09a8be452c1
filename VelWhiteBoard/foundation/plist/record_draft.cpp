#include "VelWhiteBoard/foundation/plist/record_draft.h"

#include <utility>

#include "VelWhiteBoard/foundation/records/assignment.h"

namespace VelWhiteBoard {

namespace {

/// More than any class has properties; a dictionary with more keys is unusual.
constexpr std::size_t kUsualMembers = 64;

}  // namespace

void RecordDraft::clear() noexcept {
  for (Member& member : members_) dismantle(member.value);
  members_.clear();
  current_ = nullptr;
}

void RecordDraft::beginMember(std::string_view key) {
  current_ = nullptr;
  if (members_.size() >= kUsualMembers) {
    if (propertyOfFamily(key) == nullptr) return;
    // Of a key that occurs twice the last value counts, so that one is replaced.
    if (const std::size_t index = indexOf(key); index < members_.size()) {
      current_ = &members_[index];
      dismantle(current_->value);
      current_->value = nullptr;
      current_->path.reset();
      return;
    }
  }
  current_ = &members_.emplace_back();
  current_->key = key;
}

std::size_t RecordDraft::indexOf(std::string_view key) const {
  for (std::size_t index = members_.size(); index-- > 0;) {
    if (members_[index].key == key) return index;
  }
  return members_.size();
}

const Property* RecordDraft::propertyOfFamily(std::string_view key) const {
  const RecordClass* root = &asked_;
  while (root->base != nullptr) root = root->base;
  if (root->propertyOfFamily != nullptr) return root->propertyOfFamily(key);
  return PropertyFinder(asked_).find(key);
}

void RecordDraft::setValue(Value&& value) {
  if (current_ != nullptr) current_->value.swap(value);
}

void RecordDraft::setPath(Path path) {
  if (current_ != nullptr) current_->path = std::move(path);
}

std::optional<PropertyKind> RecordDraft::expectedKind() const {
  if (current_ == nullptr) return std::nullopt;
  // The class may depend on later keys, but a name has the same kind in all classes.
  const Property* property = propertyOfFamily(current_->key);
  return property == nullptr ? std::nullopt : std::optional(property->kind);
}

std::shared_ptr<Record> RecordDraft::record() {
  const RecordClass& chosen =
      asked_.customClass == nullptr ? asked_ : asked_.customClass(*this, asked_);
  auto record = chosen.create();
  PropertyFinder finder(chosen);
  for (Member& member : members_) {
    const Property* property = finder.find(member.key);
    if (property == nullptr) continue;
    if (member.path) {
      property->in<std::optional<Path>>(*record) = std::move(*member.path);
    } else {
      assign(*property, *record, std::move(member.value));
    }
  }
  return record;
}

bool RecordDraft::contains(std::string_view key) const { return indexOf(key) < members_.size(); }

std::optional<std::string_view> RecordDraft::text(std::string_view key) const {
  const std::size_t index = indexOf(key);
  if (index == members_.size() || !members_[index].value.is_string()) return std::nullopt;
  return members_[index].value.get_ref<const std::string&>();
}

}  // namespace VelWhiteBoard
