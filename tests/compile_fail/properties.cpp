// Two properties of one record must not share a name: each would overwrite the other in every
// dictionary and file. Compiled twice: with -DSECOND_NAME=second it must compile, with
// -DSECOND_NAME=first it must not.
#include "VelWhiteBoard/foundation/records/property_table.h"

namespace VelWhiteBoard {

#define TEXT_OF(name) #name
#define QUOTED(name) TEXT_OF(name)

class Twin : public RecordOf<Twin, Record> {
 public:
  double first = 0;
  double second = 0;

  static const RecordClass& ownClass();

  template <class Visitor>
  static constexpr void properties(Visitor&& visit) {
    visit(property<&Twin::first>("first"));
    visit(property<&Twin::second>(QUOTED(SECOND_NAME)));
  }
};

const RecordClass& Twin::ownClass() {
  static const RecordClass own = makeRecordClass<Twin>("Twin", nullptr);
  return own;
}

}  // namespace VelWhiteBoard
