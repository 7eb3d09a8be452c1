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
#include "VelWhiteBoard/foundation/values/value.h"

namespace VelWhiteBoard {

/// The keys and values of one dictionary, in the order of their arrival. One draft serves all
/// records of a file.
class RecordDraft final : public DictionaryKeys {
 public:
  explicit RecordDraft(const RecordClass& asked) : asked_(asked) {}
  ~RecordDraft() { clear(); }
  RecordDraft(const RecordDraft&) = delete;
  RecordDraft& operator=(const RecordDraft&) = delete;

  void clear() noexcept;

  /// Starts the next member; its value is null until one is set. Beyond 64 members, keeps only
  /// those whose keys some class declares; this bounds time and memory for hostile input.
  void beginMember(std::string_view key);
  /// Sets the value of the member that was begun last; `value` becomes null.
  void setValue(Value&& value);
  void setPath(Path path);

  /// The kind of property of the member that was begun last, whatever keys follow; absent when no
  /// class has a property of that name.
  std::optional<PropertyKind> expectedKind() const;

  /// Makes the record from all members, whose values it takes over.
  std::shared_ptr<Record> record();

  bool contains(std::string_view key) const override;
  std::optional<std::string_view> text(std::string_view key) const override;

 private:
  struct Member {
    std::string key;
    Value value;
    std::optional<Path> path;
  };

  /// The index of the last member of that key; the number of members when there is none.
  std::size_t indexOf(std::string_view key) const;
  const Property* propertyOfFamily(std::string_view key) const;

  const RecordClass& asked_;
  std::vector<Member> members_;
  /// The member that was begun last; null when it is not kept.
  Member* current_ = nullptr;
};

}  // namespace VelWhiteBoard
