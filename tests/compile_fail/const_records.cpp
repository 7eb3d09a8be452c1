// A shared reference to a const record must not become one through which the record can be changed.
// Compiled twice: with -DTO=const VelWbVecLine it must compile, with -DTO=VelWbVecLine it must not.
#include <memory>

#include "VelWhiteBoard/vectors/strokes.h"

namespace VelWhiteBoard {

bool isLine(const std::shared_ptr<const VelWbBaseVector>& vector) {
  return recordPointerCast<TO>(vector) != nullptr;
}

}  // namespace VelWhiteBoard
