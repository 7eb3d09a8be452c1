// A record with one property of every kind, so that a rule can be tried on all kinds in one table.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "VelWhiteBoard/foundation/records/property_table.h"
#include "VelWhiteBoard/foundation/records/record.h"
#include "VelWhiteBoard/foundation/values/path.h"
#include "VelWhiteBoard/foundation/values/value.h"

namespace VelWhiteBoard {

class AllKinds : public RecordOf<AllKinds, Record> {
 public:
  std::optional<std::string> text;
  double real = 0;
  std::int64_t whole = 0;
  std::uint64_t natural = 0;
  bool flag = false;
  std::optional<Path> path;
  std::optional<Array> array;
  std::optional<std::vector<std::shared_ptr<AllKinds>>> list;

  static const RecordClass& ownClass();

  template <class Visitor>
  static constexpr void properties(Visitor&& visit) {
    visit(property<&AllKinds::text>("text"));
    visit(property<&AllKinds::real>("real"));
    visit(property<&AllKinds::whole>("whole"));
    visit(property<&AllKinds::natural>("natural"));
    visit(property<&AllKinds::flag>("flag"));
    visit(property<&AllKinds::path>("path"));
    visit(property<&AllKinds::array>("array"));
    visit(property<&AllKinds::list>("list"));
  }
};

// Outside of the class: the table needs the list of properties to be defined.
inline const RecordClass& AllKinds::ownClass() {
  static const RecordClass own = makeRecordClass<AllKinds>("AllKinds", nullptr);
  return own;
}

}  // namespace VelWhiteBoard
