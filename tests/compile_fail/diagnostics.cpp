// A client and the library must agree on the layout of a value. Compiled twice: with
// -DJSON_DIAGNOSTICS=0 it must compile, with -DJSON_DIAGNOSTICS=1, which gives each value another
// member, it must not.
#include "VelWhiteBoard/VelWhiteBoard.h"

namespace VelWhiteBoard {

Array offsetOf(const VelWbVecLine& line) { return line.offset.value_or(Array()); }

}  // namespace VelWhiteBoard
