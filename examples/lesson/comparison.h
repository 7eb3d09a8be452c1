// Two lists of records, compared one by one.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <string>

namespace lesson {

/// The first difference between two lists as a piece of a sentence, such as "entry 3 (line u1_210)
/// differs in path"; empty when every record equals its counterpart.
std::string firstDifference(const VelWhiteBoard::VectorList& left,
                            const VelWhiteBoard::VectorList& right);

}  // namespace lesson
