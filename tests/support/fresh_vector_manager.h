#pragma once

#include <chrono>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/values/clock.h"
#include "VelWhiteBoard/services/vector_manager.h"
#include "VelWhiteBoard/tools/tool_manager.h"

#include "tests/support/manual_clock.h"

namespace VelWhiteBoard {

/// The shared manager as a fresh process has it, at the moment 1700000012.345.
class FreshVectorManager : public ::testing::Test {
 protected:
  FreshVectorManager() : scope_(clock) {
    clock.setWallTime(std::chrono::milliseconds(1'700'000'012'345));
    clock.setMediaTime(77.5);
    manager.init();
    VWBToolManager::sharedManager().init();
  }
  ~FreshVectorManager() override {
    manager.init();
    VWBToolManager::sharedManager().init();
  }

  ManualClock clock;
  VelWbVectorManager& manager = VelWbVectorManager::shareManager();

 private:
  const ScopedClock scope_;
};

}  // namespace VelWhiteBoard
