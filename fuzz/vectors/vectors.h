// Vectors as the bytes want them.
#pragma once

#include <memory>

#include "VelWhiteBoard/vectors/base_vector.h"
#include "VelWhiteBoard/vectors/commands.h"

#include "fuzz/check.h"

namespace fuzz {

/// A vector of any class, with any type and any values in its properties.
VelWhiteBoard::VectorPtr makeVector(Decisions& decisions);

/// A page out of a few, so that sessions come back to them.
std::shared_ptr<VelWhiteBoard::VelWbVecSwitchPage> makePage(Decisions& decisions);

}  // namespace fuzz
