#pragma once

#include <memory>
#include <utility>

#include <gtest/gtest.h>

#include "simulation/simulated_platform.h"

namespace linewatch {

/// A test on a simulated platform, which stays installed until what the test itself holds is gone.
class PlatformTest : public testing::Test {
 protected:
  PlatformTest() { install(); }
  ~PlatformTest() override { installPlatform(nullptr); }

  /// Another platform takes the place of the one before.
  void install(simulation::World world = {}) {
    platform_ = simulation::SimulatedPlatform::make(std::move(world));
    installPlatform(platform_);
  }

  std::shared_ptr<simulation::SimulatedPlatform> platform_;
};

}  // namespace linewatch
