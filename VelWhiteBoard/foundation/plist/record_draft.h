/// @file
/// A record whose class is not known yet, because its dictionary is still being read.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "VelWhiteBoard/foundation/records/record.h"
#include "VelWhiteBoard/foundation/values/path.h"
#include "VelWhiteBoard/foundation/values/scalar.h"
#include "VelWhiteBoard/foundation/values/value.h"

namespace VelWhiteBoard {

/// The keys and values of one dictionary, in the order of their arrival. One draft serves all
/// records of a file, so that its memory is allocated once.
class RecordDraft final : public DictionaryKeys {
 public:
  explicit RecordDraft(const RecordClass& asked) : asked_(asked) {}

  void clear();

  /// Starts the next member; its value is null until one is set. Beyond 64 members, keeps only
  /// those whose keys some class declares; this bounds time and memory for hostile input.
  void beginMember(std::string_view key);
  /// The value of the member that was begun last. A string is copied.
  void setScalar(const Scalar& scalar);
  /// Takes the string over; `text` gets memory of its own to be used again.
  void setText(std::string& text);
  void setPath(Path path);
  /// Takes the value over, and leaves null in its place.
  void setValue(Value&& value);
  /// No property can take the value of the member that was begun last.
  void setNothing();

  /// The kind of property that the member begun last will be, whatever the keys are that follow;
  /// absent when no class has a property of that name.
  std::optional<PropertyKind> expectedKind() const;

  /// The record that all members make; takes their values.
  std::shared_ptr<Record> record();

  bool contains(std::string_view key) const override;
  std::optional<std::string_view> text(std::string_view key) const override;

 private:
  struct Member {
    std::string key;
    bool useful = true;
    Scalar scalar;
    std::string text;
    std::optional<Path> path;
    std::optional<Value> value;

    Member() = default;
    Member(const Member& other) = delete;
    Member(Member&& other) noexcept = default;
    Member& operator=(const Member& other) = delete;
    Member& operator=(Member&& other) noexcept = default;
    ~Member() { dropValue(); }
    void dropValue() noexcept;
  };

  Member& last() { return current_ == nullptr ? unused_ : *current_; }
  Member* memberFor(std::string_view key);
  const Property* propertyOfFamily(std::string_view key) const;
  const RecordClass& chosenClass() const;

  const RecordClass& asked_;
  std::vector<Member> members_;
  std::size_t count_ = 0;
  /// The member that was begun last; null when it is not kept.
  Member* current_ = nullptr;
  Member unused_;
};

}  // namespace VelWhiteBoard
