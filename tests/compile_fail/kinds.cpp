// A member whose type is no kind of property cannot be declared as one. Compiled twice: with
// -DTYPE=std::int64_t it must compile, with -DTYPE=int it must not.
#include "VelWhiteBoard/foundation/records/property_table.h"

namespace VelWhiteBoard {

class Twin : public RecordOf<Twin, Record> {
 public:
  TYPE member = 0;

  static const RecordClass& ownClass();

  template <class Visitor>
  static constexpr void properties(Visitor&& visit) {
    visit(property<&Twin::member>("member"));
  }
};

const RecordClass& Twin::ownClass() {
  static const RecordClass own = makeRecordClass<Twin>("Twin", nullptr);
  return own;
}

}  // namespace VelWhiteBoard
