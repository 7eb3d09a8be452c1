// Lets a failing test show a record instead of its bytes.
#pragma once

#include <concepts>
#include <ostream>

#include "VelWhiteBoard/foundation/records/record.h"

namespace VelWhiteBoard {

template <std::derived_from<Record> T>
void PrintTo(const T& record, std::ostream* stream) {
  *stream << record.description();
}

}  // namespace VelWhiteBoard
