/// @file
/// A record whose class is not known yet, because its dictionary is still being read.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "VelWhiteBoard/foundation/path.h"
#include "VelWhiteBoard/foundation/record.h"
#include "VelWhiteBoard/foundation/scalar.h"
#include "VelWhiteBoard/foundation/value.h"

namespace VelWhiteBoard {

/// The keys and values of one dictionary, in the order of their arrival. One draft serves all
/// records of a file, so that its memory is asked for once.
class RecordDraft final : public DictionaryKeys {
 public:
  explicit RecordDraft(const RecordClass& asked) : asked_(asked) {}

  void clear();

  /// Starts the next member; its value is null until one is set. Of a dictionary with very many
  /// members only those are kept that some class has a use for, so that time stays linear and
  /// memory small, whoever wrote it.
  void beginMember(std::string_view key);
  /// The value of the member that was begun last. A text is copied.
  void setScalar(const Scalar& scalar);
  /// Takes the text over; `text` gets memory of its own to be used again.
  void setText(std::string& text);
  void setPath(Path path);
  void setValue(Value value);
  /// The value of the member that was begun last is of no use to any property.
  void setNothing();

  /// Whether the member that was begun last will be a path, whatever the keys are that follow.
  bool expectsPath() const;
  /// Whether the member that was begun last may be of use to some class.
  bool isOfUse() const;

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
  };

  Member& last() { return current_ == nullptr ? unused_ : *current_; }
  Member* memberFor(std::string_view key);
  const Property* propertyOfFamily(std::string_view key) const;
  const RecordClass& chosenClass() const;

  const RecordClass& asked_;
  std::vector<Member> members_;
  std::size_t count_ = 0;
  /// The member that was begun last; null when nobody has a use for it.
  Member* current_ = nullptr;
  Member unused_;
};

}  // namespace VelWhiteBoard
