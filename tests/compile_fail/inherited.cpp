// A name of the base class counts too. Compiled twice: with -DNAME=width it must compile, with
// -DNAME=x it must not, since the base has an x.
#include "VelWhiteBoard/foundation/records/property_table.h"
#include "VelWhiteBoard/vectors/strokes.h"

namespace VelWhiteBoard {

#define TEXT_OF(name) #name
#define QUOTED(name) TEXT_OF(name)

class Derived : public VectorOf<Derived, VelWbVecPoint> {
 public:
  double width = 0;

  static const RecordClass& ownClass();

  template <class Visitor>
  static constexpr void properties(Visitor&& visit) {
    VelWbVecPoint::properties(visit);
    visit(property<&Derived::width>(QUOTED(NAME)));
  }
};

const RecordClass& Derived::ownClass() {
  static const RecordClass own = makeRecordClass<Derived>("Derived", &VelWbVecPoint::ownClass());
  return own;
}

}  // namespace VelWhiteBoard
