#pragma once

#include <gtest/gtest.h>

#include "VelWhiteBoard/tools/tool_manager.h"

namespace VelWhiteBoard {

/// The shared tool manager as a fresh process has it, and put back to that afterwards: the tests of
/// one executable may run one after the other in one process.
class FreshToolManager : public ::testing::Test {
 protected:
  FreshToolManager() { manager.init(); }
  ~FreshToolManager() override { manager.init(); }

  VWBToolManager& manager = VWBToolManager::sharedManager();
};

}  // namespace VelWhiteBoard
