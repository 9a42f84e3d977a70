#pragma once

#include <memory>
#include <utility>

#include <gtest/gtest.h>

#include "simulation/simulated_platform.h"

namespace linewatch {

/// A test with an installed simulated platform. The platform is removed after the members of the test are
/// gone.
class PlatformTest : public testing::Test {
 protected:
  PlatformTest() { install(); }
  ~PlatformTest() override { installPlatform(nullptr); }

  /// Installs a new platform in place of the current one.
  void install(simulation::World world = {}) {
    platform_ = simulation::SimulatedPlatform::make(std::move(world));
    installPlatform(platform_);
  }

  std::shared_ptr<simulation::SimulatedPlatform> platform_;
};

}  // namespace linewatch
