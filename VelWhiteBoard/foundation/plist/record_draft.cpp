#include "VelWhiteBoard/foundation/plist/record_draft.h"

#include <algorithm>
#include <utility>
#include <variant>

#include "VelWhiteBoard/foundation/records/assignment.h"
#include "VelWhiteBoard/foundation/values/safe_values.h"

namespace VelWhiteBoard {

namespace {

/// More than any class has properties; a dictionary with more keys is unusual.
constexpr std::size_t kUsualMembers = 64;

}  // namespace

void RecordDraft::Member::dropValue() noexcept {
  if (value) dismantle(*value);
  value.reset();
}

void RecordDraft::clear() {
  count_ = 0;
  current_ = nullptr;
}

void RecordDraft::beginMember(std::string_view key) {
  current_ = memberFor(key);
  Member& member = last();
  member.key = current_ == nullptr ? std::string_view() : key;
  member.useful = true;
  member.scalar = {};
  member.path.reset();
  member.dropValue();
}

RecordDraft::Member* RecordDraft::memberFor(std::string_view key) {
  if (count_ >= kUsualMembers) {
    if (propertyOfFamily(key) == nullptr) return nullptr;
    // Of a key that occurs twice the last value counts, so that one is replaced.
    for (std::size_t index = count_; index-- > 0;) {
      if (members_[index].key == key) return &members_[index];
    }
  }
  if (count_ == members_.size()) members_.emplace_back();
  return &members_[count_++];
}

const Property* RecordDraft::propertyOfFamily(std::string_view key) const {
  const RecordClass* root = &asked_;
  while (root->base != nullptr) root = root->base;
  if (root->propertyOfFamily != nullptr) return root->propertyOfFamily(key);
  return PropertyFinder(asked_).find(key);
}

void RecordDraft::setScalar(const Scalar& scalar) {
  Member& member = last();
  member.scalar = scalar;
  if (const auto* text = std::get_if<std::string_view>(&scalar)) member.text = *text;
}

void RecordDraft::setText(std::string& text) {
  Member& member = last();
  member.scalar = std::string_view();  // the text itself is kept beside it
  member.text.swap(text);
}

void RecordDraft::setPath(Path path) { last().path = std::move(path); }

void RecordDraft::setValue(Value&& value) { last().value.emplace().swap(value); }

void RecordDraft::setNothing() { last().useful = false; }

std::optional<PropertyKind> RecordDraft::expectedKind() const {
  if (current_ == nullptr) return std::nullopt;
  // The class may not be known before later keys are, but a name means the same to all of them.
  const Property* property = propertyOfFamily(current_->key);
  return property == nullptr ? std::nullopt : std::optional(property->kind);
}

const RecordClass& RecordDraft::chosenClass() const {
  return asked_.customClass == nullptr ? asked_ : asked_.customClass(*this, asked_);
}

std::shared_ptr<Record> RecordDraft::record() {
  const RecordClass& chosen = chosenClass();
  auto record = chosen.create();
  PropertyFinder finder(chosen);
  for (std::size_t index = 0; index < count_; ++index) {
    Member& member = members_[index];
    const Property* property = finder.find(member.key);
    if (property == nullptr) continue;
    if (!member.useful) {
      assign(*property, *record, Scalar());
    } else if (member.path) {
      // Keys that came later may have changed what this one means.
      if (property->kind == PropertyKind::path) {
        property->in<std::optional<Path>>(*record) = std::move(*member.path);
      } else {
        Value positions;
        const DismantledAtEnd guard(positions);
        putPath(positions, *member.path);
        assign(*property, *record, std::move(positions));
      }
    } else if (member.value) {
      assign(*property, *record, std::move(*member.value));
    } else if (std::holds_alternative<std::string_view>(member.scalar)) {
      assign(*property, *record, Scalar(std::string_view(member.text)));
    } else {
      assign(*property, *record, member.scalar);
    }
  }
  return record;
}

bool RecordDraft::contains(std::string_view key) const {
  const auto end = members_.begin() + static_cast<std::ptrdiff_t>(count_);
  return std::any_of(members_.begin(), end,
                     [key](const Member& member) { return member.key == key; });
}

std::optional<std::string_view> RecordDraft::text(std::string_view key) const {
  for (std::size_t index = count_; index-- > 0;) {
    const Member& member = members_[index];
    if (member.key != key) continue;
    const bool isText = member.useful && !member.path && !member.value &&
                        std::holds_alternative<std::string_view>(member.scalar);
    if (isText) return member.text;
    return std::nullopt;
  }
  return std::nullopt;
}

}  // namespace VelWhiteBoard
