#pragma once

#include <memory>
#include <utility>

#include "platform/platform_wrapper.h"
#include "simulation/simulated_platform.h"

namespace linewatch {

/// A simulated platform in which a test overrides single roles.
class ForwardingPlatform : public PlatformWrapper {
 public:
  explicit ForwardingPlatform(simulation::World world = {})
      : ForwardingPlatform(simulation::SimulatedPlatform::make(std::move(world))) {}

  simulation::SimulatedPlatform& simulated() { return *simulated_; }

 private:
  explicit ForwardingPlatform(std::shared_ptr<simulation::SimulatedPlatform> simulated)
      : PlatformWrapper(*simulated), simulated_(std::move(simulated)) {}

  std::shared_ptr<simulation::SimulatedPlatform> simulated_;
};

}  // namespace linewatch
